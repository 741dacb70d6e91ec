#pragma once

#include "formats/maps/MapFile.h"
#include "formats/structures/StructureFile.h"

namespace Batch {

/// Files brought into the model; what was left out or read differently from how it stands is told on standard
/// error. Throw FileError.
VARNO::Clump *LoadStructure(const std::string &file, formats::StructureReport *report = nullptr);
VARNO::Grid *LoadMap(const std::string &file, formats::MapReport *report = nullptr);

} // namespace Batch
