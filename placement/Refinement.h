#pragma once

#include "placement/Kernels.h"

namespace placement {

/// A pose with its score.
struct ScoredPose {
    Pose pose;
    double score = 0;
};

/// How far a refinement may go.
struct RefinementSteps {
    int max = 0;        ///< steps of the minimiser
    double first = 0;   ///< length of the first one, Å
    double longest = 0; ///< of any, Å
};

/// Climbs to the local maximum of a pose's score: BFGS (Nocedal & Wright 2006, 6.1) in six unknowns, the
/// shift and the rotation times the model's radius of gyration, so that all six are lengths by which the
/// model's points move. Each step is halted until the score grows (Armijo).
ScoredPose Refine(const Volume &volume, const WeightedPoints &points, double gyration, const Pose &start,
                  const RefinementSteps &steps);

} // namespace placement
