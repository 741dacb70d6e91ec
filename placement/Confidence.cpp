#include "placement/Confidence.h"

#include "placement/Constants.h"

#include <algorithm>

namespace placement {

namespace {

/// The sign stays: a place below the background is a bad one.
double SignedSquare(double score) {
    return score * std::abs(score);
}

} // namespace

double WrongTail::LogExpected(double score) const {
    if (!(scale > 0))
        return std::log(double(std::max<std::size_t>(number, 1)));
    return std::log(double(number)) - (SignedSquare(score) - square) / scale;
}

double WrongTail::Probability(double score) const {
    return 1 / (1 + wrongPerExpected * std::exp(LogExpected(score)));
}

WrongTail FitWrongTail(std::span<const double> scores) {
    constexpr std::size_t fewest = 6;
    WrongTail tail;
    tail.number = std::min(scores.size(), backgroundPlaces);
    if (tail.number < fewest)
        return tail;
    const std::size_t from = tail.number * tailFrom / backgroundPlaces;
    tail.square = SignedSquare(scores[tail.number - 1]);
    tail.scale =
        (SignedSquare(scores[from - 1]) - tail.square) / std::log(double(tail.number) / double(from));
    return tail;
}

double TurnWeight(double bestScore, double score, const WrongTail &tail) {
    return std::exp(-2 * bestScore * (bestScore - score) / tail.scale);
}

Confidence ConfidenceOf(const PointModel &model, std::span<const ScoredPose> places, const WrongTail &tail) {
    Confidence confidence;
    if (places.empty() || !(tail.scale > 0))
        return confidence;
    const ScoredPose &best = places.front();
    confidence.logExpected = tail.LogExpected(best.score);
    confidence.place = tail.Probability(best.score);
    for (const ScoredPose &other : places.subspan(1))
        if (Length(other.pose.centre - best.pose.centre) < sameHole * model.gyration)
            confidence.otherTurns += TurnWeight(best.score, other.score, tail);
    confidence.probability = confidence.place / (1 + confidence.otherTurns);
    return confidence;
}

} // namespace placement
