#pragma once

#include <string_view>

namespace VARNO {

/// What a key holds where the user's file has none: values that the host ships for its plug-ins, which have
/// none of their own. Null for every other key.
const char *ShippedSetting(std::string_view section, std::string_view key);

} // namespace VARNO
