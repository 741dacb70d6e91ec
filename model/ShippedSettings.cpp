#include "ShippedSettings.h"

#include <algorithm>
#include <iterator>

namespace VARNO {

namespace {

struct Shipped {
    std::string_view section, key;
    const char *value;
};

constexpr Shipped settings[] = {
    {"Morvanex", "Axis", "2"},        {"Morvanex", "RotationStep", "10.0"},
    {"Morvanex", "TransNum", "5"},    {"Morvanex", "TransStep", "5.0"},
    {"Morvanex", "TopList", "100"},   {"Morvanex", "Output", "morvanex.log"},
    {"Morvanex", "Marginal", "60.0"},
};

} // namespace

const char *ShippedSetting(std::string_view section, std::string_view key) {
    const auto found = std::ranges::find_if(
        settings, [&](const Shipped &one) { return one.section == section && one.key == key; });
    return found == std::end(settings) ? nullptr : found->value;
}

} // namespace VARNO
