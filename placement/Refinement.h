#pragma once

#include "placement/Ascent.h"
#include "placement/Kernels.h"

namespace placement {

/// A pose with its score.
struct ScoredPose {
    Pose pose;
    double score = 0;
};

/// Climbs to the local maximum of a pose's score, see Ascent.h: in six unknowns, the shift and the rotation
/// times the model's radius of gyration, so that all six are lengths by which the model's points move.
ScoredPose Refine(const Volume &volume, const WeightedPoints &points, double gyration, const Pose &start,
                  const RefinementSteps &steps);

} // namespace placement
