#pragma once

#include "hosts/common/WarningSink.h"

#include "formats/maps/MapFile.h"
#include "formats/structures/StructureFile.h"

namespace hosts {

/// Files read into the model; `warn` gets what was left out or read differently from what the file says.
/// Throw FileError.
VARNO::Clump *LoadStructure(const std::string &file, const WarningSink &warn,
                            formats::StructureReport *report = nullptr);
VARNO::Grid *LoadMap(const std::string &file, const WarningSink &warn, formats::MapReport *report = nullptr);

} // namespace hosts
