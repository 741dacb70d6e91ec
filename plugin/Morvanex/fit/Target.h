#pragma once

#include "Types.h"
#include "fit/Restraints.h"

#include <vector>

namespace VARNO {
class Compound;
class Residue;
} // namespace VARNO

namespace fit {

/// The target as points.
struct Target {
    std::vector<TaggedPoint> points;       ///< one per residue with a position, in model order
    VARNO::Vertex centre;                  ///< their unweighted mean, Å; not a number without any point
    std::vector<RestraintPair> restraints; ///< in the order of residues, then of records
    std::size_t invalidResidues = 0;       ///< left out because the model has no position for them
};

/// The key by which a restraint names a residue: name and sequence identifier, "ALA12", without white space
/// at the ends.
QString RestraintKey(const VARNO::Residue &residue);

/// The residues of a chain as points, and the restraints that name one of them. A residue may match several
/// records and a record several residues. Residues without a position are left out.
Target CollectTarget(VARNO::Compound *chain, const std::vector<RestraintRecord> &records);

} // namespace fit
