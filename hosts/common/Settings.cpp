#include "hosts/common/Settings.h"

#include "base/Numbers.h"

#include "Config.h"

using VARNO::Config;

namespace hosts {

namespace {

constexpr const char *section = "Morvanex";

std::string TextOf(const std::string &key) {
    return Config::GetSetting(section, key).ToString();
}

void WarnOf(const std::string &key, const std::string &kind, const WarningSink &warn) {
    warn(Config::GetUserFile() + ": section " + section + ": " + key + "=" + TextOf(key) + " is not " + kind +
         "; it counts as 0");
}

} // namespace

int IntegerSetting(const std::string &key, const WarningSink &warn) {
    const std::optional<int> number = base::ReadInteger(TextOf(key));
    if (!number)
        WarnOf(key, "a whole number up to 2147483647", warn);
    return number.value_or(0);
}

double NumberSetting(const std::string &key, const WarningSink &warn) {
    const std::optional<double> number = base::ReadNumber(TextOf(key));
    if (!number)
        WarnOf(key, "a number", warn);
    return number.value_or(0);
}

} // namespace hosts
