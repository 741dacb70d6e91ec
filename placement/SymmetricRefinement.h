#pragma once

#include "placement/Refinement.h"
#include "placement/Symmetry.h"

#include <vector>

namespace placement {

/// One pose, and the symmetry by which its copies follow.
struct SymmetricPose {
    Pose pose;
    Symmetry symmetry;
    Pose frame;       ///< where the group stands
    double score = 0; ///< summed over the copies
};

/// What may move while a symmetric pose is refined.
struct SymmetricFreedom {
    bool pose = true;
    bool axis = true; ///< the main axis' direction
    bool turn = true; ///< of the frame about the main axis
    bool centre = true;
    bool helix = true; ///< rise and twist
};

/// What a symmetric refinement goes by.
struct SymmetricJob {
    const Volume &volume; ///< the filtered map
    const WeightedPoints &points;
    double gyration = 0; ///< of the points, Å
    /// Those that give the copies: all of a group, or all but the first where the points are the map itself.
    std::vector<SymmetryOperator> operators;
    SymmetricFreedom freedom{};
};

/// The sum of the copies' scores.
double SymmetricScore(const SymmetricJob &job, const SymmetricPose &at);

/// Climbs to the local maximum of that sum, as Refine does for one pose: in the pose's six unknowns, six of
/// the frame, and a helix' rise and twist, each as a length by which the copies move. What the copies do not
/// depend on, like the turn of a frame about its only axis, stays as it is.
SymmetricPose RefineSymmetric(const SymmetricJob &job, const SymmetricPose &start,
                              const RefinementSteps &steps);

} // namespace placement
