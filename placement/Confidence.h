#pragma once

#include "placement/DistinctPlaces.h"

namespace placement {

/// The tail of the wrong places' scores. Scores of the wrong ones are sums of many independent terms, so that
/// the number of them above s falls like exp(-s²/b): b and the number follow from the distinct places of a
/// search itself, those that stand k-th to n-th, and extrapolate to the best one.
struct WrongTail {
    double scale = 0;  ///< b = (sk² - sn²)/ln(n/k)
    double square = 0; ///< sn²
    std::size_t number = 0;

    /// ln E: of the number of wrong places that are expected to score at least as well.
    double LogExpected(double score) const;
    /// p = 1/(1 + 8·E).
    double Probability(double score) const;
};

/// Of scores in descending order; n is at most 150, k a fifth of it. Fewer than six scores, or scores without
/// spread, give a tail that calls nothing probable.
WrongTail FitWrongTail(std::span<const double> scores);

/// How sure the best place of a list is.
struct Confidence {
    double logExpected = 0; ///< ln E of the best place
    double place = 0;       ///< probability that the place is right
    double otherTurns = 0;  ///< X: what other turns in the same hole weigh against the best one's 1
    double probability = 0; ///< that place and turn are right: place / (1 + X)
};

/// What another turn in the same hole weighs against the best one's 1: exp(-2·s1·(s1 - s)/b).
double TurnWeight(double bestScore, double score, const WrongTail &tail);

/// Of distinct poses, best first. X is the sum of the weights of those in the same hole.
Confidence ConfidenceOf(const PointModel &model, std::span<const ScoredPose> places, const WrongTail &tail);

} // namespace placement
