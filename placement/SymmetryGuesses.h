#pragma once

#include "placement/PointModel.h"
#include "placement/Refinement.h"
#include "placement/Symmetry.h"

#include <span>
#include <vector>

namespace placement {

/// A symmetry that some motions suggest.
struct SymmetryGuess {
    Symmetry symmetry;
    Pose frame;
    /// The mean over its operators of the score of the motion that is the operator, 0 for one that is not
    /// among the motions. Of a helix those of as many steps as led to it.
    double support = 0;
};

/// The motion of a body that brings it from where it is into a pose.
Motion MotionOf(const PointModel &body, const Pose &pose);

/// The symmetries that contain some of the motions, those of each name ordered by their support and one of
/// each place. A motion gives cyclic groups by its angle, or helices where it also shifts along its axis; two
/// motions give those groups that have two operators with such angles and such an angle between their axes.
///
/// Motions are poses of the body with scores above 0, best first, and the same as an operator where they
/// bring the body within an RMSD of `tolerance` (Å) of it. Only the first ones lead to guesses.
std::vector<SymmetryGuess> GuessSymmetries(const PointModel &body, std::span<const ScoredPose> motions,
                                           double tolerance);

} // namespace placement
