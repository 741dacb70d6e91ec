#include "hosts/common/FitRecord.h"

#include <algorithm>

namespace hosts {

std::vector<RankedSolution> RankByScore(const std::list<SolutionScore> &solutions) {
    std::vector<RankedSolution> ranked;
    for (auto it = solutions.rbegin(); it != solutions.rend(); ++it)
        ranked.push_back({&*it, 0, ranked.size() + 1});
    std::ranges::stable_sort(ranked, [](const RankedSolution &a, const RankedSolution &b) {
        return b.solution->score < a.solution->score;
    });
    for (std::size_t i = 0; i < ranked.size(); ++i)
        ranked[i].rank = i + 1;
    return ranked;
}

} // namespace hosts
