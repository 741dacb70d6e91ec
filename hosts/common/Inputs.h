#pragma once

#include "hosts/common/WarningSink.h"

#include "formats/maps/MapFile.h"
#include "formats/structures/StructureFile.h"

namespace hosts {

/// Where a host's structures and maps come from by name. What it hands out must live as long as what is made
/// of it.
class InputSource {
public:
    virtual ~InputSource() = default;
    /// Throws FileError.
    virtual VARNO::Clump *Structure(const std::string &name, formats::StructureReport &report) = 0;
    /// Throws FileError. The caller may change the grid's values.
    virtual VARNO::Grid *Map(const std::string &name, formats::MapReport &report) = 0;
    /// Whether it is a density map, by what it holds; no where it cannot be read, or only once.
    virtual bool IsMap(const std::string &name) const;
};

/// Files, each read into the model.
InputSource &InputFiles();

/// Structures and maps of a source; `warn` gets what was left out or read differently from what the file
/// says. Throw FileError.
VARNO::Clump *LoadStructure(const std::string &file, const WarningSink &warn,
                            formats::StructureReport *report = nullptr, InputSource &source = InputFiles());
VARNO::Grid *LoadMap(const std::string &file, const WarningSink &warn, formats::MapReport *report = nullptr,
                     InputSource &source = InputFiles());

} // namespace hosts
