#pragma once

#include <optional>
#include <string>
#include <vector>

namespace report {

/// Scores of what a search found, and which of them stand for right answers.
struct ScoreList {
    std::vector<double> scores; ///< best first
    std::size_t found = 0;      ///< the first ones, that are marked
    /// Mean and standard deviation of the scores of all poses, where they are known.
    std::optional<double> mean, deviation;
};

/// How the scores are distributed, as an SVG picture: bars, a mark at each of those that are found, and the
/// curve of all poses. Scores that are not finite are left out; empty where
/// none is left, or one without anything to compare it with.
std::string HistogramSvg(const ScoreList &list);

/// A model of a ranking.
struct RankedModel {
    double expected = 0; ///< wrong places that are expected to score as well
    bool isFound = false;
};

/// How the models of a screen rank, as an SVG picture: E, the number of wrong places expected, on a
/// logarithmic scale over the rank.
std::string RankingSvg(const std::vector<RankedModel> &models);

} // namespace report
