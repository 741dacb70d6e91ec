#pragma once

#include "placement/Confidence.h"
#include "placement/SelfPoses.h"
#include "placement/SymmetricRefinement.h"

#include <optional>

namespace placement {

/// Which symmetry is looked for.
struct SymmetryRequest {
    std::optional<Symmetry> symmetry; ///< not set: whichever the map has; a helix of the rise 0: any helix
    std::optional<Point> axis;        ///< direction of the main axis, held
    std::optional<Point> centre;      ///< a point of the main axis, the centre of T, O and I, held
    std::optional<Pose> frame;        ///< all of it, held; then the symmetry is set too

    /// Whether a symmetry is one that is looked for.
    bool Asks(const Symmetry &other) const {
        return !symmetry ||
               (symmetry->kind == other.kind && (other.IsHelical() || symmetry->fold == other.fold));
    }
    /// What may move while it is refined, with the pose of a model or without.
    SymmetricFreedom Freedom(bool pose) const {
        return {.pose = pose,
                .axis = !axis && !frame,
                .turn = !frame,
                .centre = !centre && !frame,
                .helix = !frame};
    }
    /// Whether axis and centre are held, so that nothing is left to be chosen among many.
    bool IsHeld() const { return frame || (symmetry && axis && centre); }
    bool IsAnyHelix() const { return symmetry && symmetry->IsHelical() && symmetry->rise == 0; }
};

/// A symmetry of a map and what speaks for it: the correlations of the filtered map with itself, moved by
/// each of the group's operators.
struct MapSymmetry {
    Symmetry symmetry{};    ///< C1 where none was found
    Pose frame{};           ///< where it stands
    bool found = false;     ///< by its own evidence
    double correlation = 0; ///< mean over the operators
    double weakest = 0;     ///< of the operators
    double wrong = 0;       ///< the best correlation after a motion that is none of the group's
    double logExpected = 0; ///< ln of the number of wrong motions that are expected to correlate as well
    double probability = 0; ///< that it is none of them
    double resolution = 0;  ///< Å, at which the map was compared
    /// Where none was found: what came nearest; the evidence is its own.
    std::optional<Symmetry> tried{};
};

/// Finds the symmetry that a map has: the motions that lay it upon itself (SelfPoses.h), the groups and
/// helices that they suggest (SymmetryGuesses.h), each refined on the map in axis, centre, rise and twist. Of
/// those the largest is named
///
///   - whose mean correlation stands out of those after other motions, with a probability of at least 0.95,
///     by the tail of what chance does (Confidence.h),
///   - whose operators all correlate nearly as well, and
///   - better than the motions halfway between two of them: a map that is only round has no symmetry.
///
/// The map's own density decides, whatever stands in it; where parts of it do not follow the symmetry, it
/// stands out less. Where the request holds axis or centre, only what they allow is tried. A cancelled search
/// finds none.
MapSymmetry FindMapSymmetry(const VolumeView &map, double resolution, const SymmetryRequest &request,
                            unsigned threads, Monitor &monitor);

} // namespace placement
