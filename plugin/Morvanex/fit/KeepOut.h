#pragma once

#include "Types.h"

#include "Grid.h"

#include <vector>

namespace fit {

/// The residues of the solid that are near the target.
struct Solid {
    std::vector<TaggedPoint> points; ///< in the order of the selection
    VARNO::Vertex low, high;         ///< corners of their bounding box, Å
    std::size_t invalidResidues = 0; ///< left out because the model has no position for them
};

/// The residues closer than `inclusionDistance` (Å, strictly) to the centre. Entries that are null, not
/// residues or no longer in the model are skipped.
Solid CollectSolid(const std::vector<VARNO::Compound *> &residues, const VARNO::Vertex &centre,
                   float inclusionDistance);

/// Where the keep-out grid of a solid lies: nodes 2.0 Å apart, centred on the solid's box widened by 8.5 Å.
struct KeepOutLayout {
    static constexpr float spacing = 2.0f;
    /// Distance in Å up to which a solid point fills the grid.
    static constexpr float reach = 6.0f;

    double nodes[3];      ///< along x, y, z; whole numbers, possibly beyond what memory can hold
    VARNO::Vertex origin; ///< Å
};

KeepOutLayout LayOutKeepOut(const Solid &solid);

/// Adds the grid "GridFix" to the model: each node holds the greatest 6.0 - d over all solid points at a
/// distance d <= 6.0 Å from it, else 0.0. Null when the model refuses additions, or without solid points.
const VARNO::Grid *BuildKeepOut(const Solid &solid);

} // namespace fit
