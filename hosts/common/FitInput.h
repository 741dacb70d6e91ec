#pragma once

#include "hosts/common/FitOptions.h"
#include "hosts/common/Inputs.h"

#include "hosts/common/SolidFiles.h"

#include "fit/FitParameters.h"
#include "formats/maps/MapFile.h"
#include "formats/structures/StructureFile.h"

namespace hosts {

/// The files of a fit, read into the model.
struct FitInput {
    VARNO::Grid *map = nullptr;
    formats::MapReport mapReport;
    VARNO::Chain *target = nullptr;
    formats::StructureFormat targetFormat = formats::StructureFormat::Pdb;
    std::vector<SolidFile> solids;
    std::vector<fit::RestraintRecord> restraints;

    /// The residues of all solid files' chains that are used.
    std::vector<VARNO::Compound *> SolidResidues() const;
};

/// Reads the restraints, the target, the solids and the map. `warn` gets what the readers left out or read
/// differently from what the files say. Throws FileError, and ParameterError for a chain that no solid has.
FitInput ReadFitInput(const FitOptions &options, const WarningSink &warn, InputSource &source = InputFiles());

/// What the engine is asked to do with that input.
fit::FitParameters ParametersOf(const FitOptions &options, const FitInput &input);

} // namespace hosts
