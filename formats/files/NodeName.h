#pragma once

#include <string>

namespace formats {

/// The name of the node that a file is read into: the file's name without its folder, an ending .gz or .bz2,
/// and one further extension. "maps/emd_3197.map.gz" gives "emd_3197", "Ubi-12.5.mrc" gives "Ubi-12.5".
std::string NodeName(const std::string &file);

} // namespace formats
