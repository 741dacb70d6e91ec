#include "search/PoseSample.h"

#include "base/Statistics.h"
#include "fit/Rotations.h"
#include "search/PoseScorer.h"

#include <algorithm>

namespace search {

/// The sample is every pose whose number is a multiple of total / size, rounded down.
PoseSample SamplePoses(const fit::Preparation &fit, std::uint64_t size) {
    const std::uint64_t offsets = fit.offsets.size();
    fit::Rotations rotations(fit);
    const std::uint64_t total = offsets * rotations.Count();
    size = std::min(size, total);
    PoseScorer scorer(fit);
    std::vector<double> scores;
    for (std::uint64_t i = 0; i < size; ++i) {
        const std::uint64_t number = i * (total / size) + i * (total % size) / size;
        scorer.Rotate(rotations.At(number / offsets));
        const SolutionScore pose = scorer.Score(fit.offsets[number % offsets]);
        if (pose.IsAccepted())
            scores.push_back(pose.score);
    }
    const base::Statistics statistics = base::StatisticsOf(scores);
    return {statistics.count, statistics.mean, statistics.SampleDeviation()};
}

} // namespace search
