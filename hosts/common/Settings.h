#pragma once

#include "hosts/common/WarningSink.h"

namespace hosts {

/// Settings of section "Morvanex" as numbers, read as the set-up dialog reads its fields: a value that is not
/// a number of the kind counts as 0, with a warning of file, section, key and value.
int IntegerSetting(const std::string &key, const WarningSink &warn);
double NumberSetting(const std::string &key, const WarningSink &warn);

} // namespace hosts
