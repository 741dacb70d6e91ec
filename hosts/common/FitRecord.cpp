#include "hosts/common/FitRecord.h"

#include "base/Words.h"

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

std::vector<std::string> WarningsOf(const FitRecord &record, const std::string &outOfReach) {
    std::vector<std::string> warnings;
    if (!outOfReach.empty())
        warnings.push_back(outOfReach);
    if (record.poses.accepted == 0)
        warnings.push_back("no pose was accepted: the target clashes with the fixed chains everywhere");
    if (std::size_t(record.options.models) > record.solutions.size())
        warnings.push_back(base::Counted(std::size_t(record.options.models), "model") +
                           " were asked for, only " + base::Counted(record.solutions.size(), "solution") +
                           " kept");
    return warnings;
}

} // namespace hosts
