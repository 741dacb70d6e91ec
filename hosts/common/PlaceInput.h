#pragma once

#include "hosts/common/Inputs.h"
#include "hosts/common/PlaceOptions.h"
#include "hosts/common/SolidFiles.h"

#include "Grid.h"
#include "formats/maps/MapFile.h"
#include "formats/structures/StructureFile.h"
#include "placement/PreparedMap.h"

namespace hosts {

/// A residue that takes part in a search.
struct PlacedResidue {
    std::string chain, label; ///< "A", "ALA12"
};

/// A model that is to be placed.
struct PlaceModel {
    std::string file;
    std::vector<VARNO::Chain *> chains; ///< that move together
    formats::StructureFormat format = formats::StructureFormat::Pdb;
    std::vector<placement::ModelAtom> atoms; ///< of those chains, without hydrogens
    std::vector<PlacedResidue> residues;     ///< by the atoms' residue numbers
    std::size_t lowConfidence = 0;           ///< residues left out for it
};

/// The files of a placement, read into the model: of one model, or of the parts of an assembly.
struct PlaceInput : PlaceModel {
    std::vector<PlaceModel> parts; ///< of an assembly
    VARNO::Grid *map = nullptr;
    /// The map, where it is prepared for many models at this resolution: not set, or it has to outlive this.
    placement::PreparedMap *prepared = nullptr;
    bool ruleOut = false; ///< whether one filter may rule a model out, see PlacementParameters
    formats::MapReport mapReport;
    double resolution = 0;                        ///< Å, as given or as estimated
    std::vector<SolidFile> fixed;                 ///< what is already in place
    std::vector<placement::ModelAtom> neighbours; ///< the atoms of its chains, without hydrogens
    placement::SymmetryRequest symmetry;          ///< where one is looked for
};

/// Reads the map, the model or the parts of an assembly, and what is already in place. `warn` hears what the
/// readers took differently from how it stands, and of fixed residues that lie outside of the map. Throws
/// FileError, also where no atom is left to be placed and for a part that is a map, and ParameterError for a
/// chain that no fixed file has and for what only a map as the model has.
PlaceInput ReadPlaceInput(const PlaceOptions &options, const WarningSink &warn,
                          InputSource &source = InputFiles());

/// The map's resolution in Å, as given or as estimated with the model, or the largest part.
double ResolutionOf(const PlaceOptions &options, const PlaceInput &input);

/// The map as the search takes it; valid as long as the map is.
placement::VolumeView ViewOf(const VARNO::Grid &map);

/// The chains' atoms for a search. Hydrogens, atoms of unknown elements and residues whose mean B factor lies
/// below `minBFactor` are left out; the last are counted. Throws FileError where no atom is left.
void CollectModelAtoms(PlaceModel &model, std::optional<double> minBFactor);

} // namespace hosts
