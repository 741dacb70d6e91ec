#pragma once

#include "Types.h"
#include "fit/Restraints.h"

#include <cstdint>
#include <vector>

namespace VARNO {
class Residue;
}

namespace fit {

/// From the user's selection to the plain data that scoring needs.

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

/// The residues of the solid that are near the target.
struct Solid {
    std::vector<TaggedPoint> points; ///< in the order of the selection
    VARNO::Vertex low, high;         ///< corners of their bounding box, Å
    std::size_t invalidResidues = 0; ///< left out because the model has no position for them
};

/// The residues closer than `inclusionDistance` (Å, strictly) to the centre. Entries that are null, no
/// residues or no longer in the model are passed by.
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

/// The cube of translations: `count` (odd) along each direction, `step` Å apart, centred on zero; x varies
/// slowest and z fastest. Empty for a negative count.
std::vector<VARNO::Vertex> TranslationOffsets(int count, double step);

/// `count`, or the next number where it is even.
int OddCount(int count);

/// Everything of a fit that can be found out without changing anything: the model, the log and the parameters
/// are as they were.
struct Survey {
    std::vector<RestraintRecord> records;
    Target target;
    float inclusionDistance = 0; ///< Å
    Solid solid;
};

/// Looks at `m_Target`, `m_Solid`, the restraints file and the setting "Marginal".
Survey SurveyFit();

/// What a search runs on.
struct Preparation {
    const VARNO::Grid *map = nullptr;     ///< null: no density term
    const VARNO::Grid *keepOut = nullptr; ///< null: no collision test
    Target target;
    std::vector<VARNO::Vertex> axes;    ///< unit vectors
    std::vector<VARNO::Vertex> offsets; ///< Å
    double angleStep = 0;               ///< radians
};

/// Turns the survey into what the search runs on: makes `TCount` odd, adds the keep-out grid to the model,
/// and tells the debug channel what was found.
Preparation PrepareFit(const Survey &survey, const VARNO::Grid *map);

} // namespace fit
