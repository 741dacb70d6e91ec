#pragma once

#include "formats/structures/ParsedModel.h"

namespace formats {

/// A chain of the model tree: a polymer, or the ligands and waters of the same identifier.
struct AssembledChain {
    std::string identifier; ///< " " where it is blank
    bool polymer = false;
    gemmi::PolymerType kind = gemmi::PolymerType::Unknown; ///< of a polymer
    std::vector<gemmi::Residue> residues;
};

struct AssembledModel {
    std::vector<AssembledChain> chains;
    std::size_t alternates = 0; ///< atoms left out as another alternate location
    std::size_t unplaced = 0;   ///< atoms left out for a coordinate that is not finite
    std::size_t repeated = 0;   ///< atoms that have the name of another of their residue
};

/// Puts the chains together from the parts of a file: for each identifier, in the order of the file, its
/// polymer and then its ligands and waters, where it has them.
///
/// A polymer continues over the parts of its identifier, across gaps marked with TER and across other chains
/// between them, until one of its atoms is repeated: that begins another copy, which becomes a chain of its
/// own with the same identifier. Of alternate locations the first of each atom stays, of several residues at
/// one place of the sequence the first.
AssembledModel AssembleChains(std::vector<gemmi::Chain> parts);

} // namespace formats
