#include "hosts/common/FitRecord.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace hosts;

namespace {

SolutionScore Solution(double score) {
    SolutionScore solution;
    solution.score = score;
    return solution;
}

} // namespace

TEST(RankByScore, PutsTheBestFirstAndTheLaterOfEqualOnesBefore) {
    const std::list<SolutionScore> solutions{Solution(3), Solution(1), Solution(5), Solution(3)};
    std::vector<double> scores;
    std::vector<std::size_t> ranks, ranksInFile;
    for (const RankedSolution &ranked : RankByScore(solutions)) {
        scores.push_back(ranked.solution->score);
        ranks.push_back(ranked.rank);
        ranksInFile.push_back(ranked.rankInFile);
    }
    EXPECT_THAT(scores, testing::ElementsAre(5, 3, 3, 1));
    EXPECT_THAT(ranks, testing::ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(ranksInFile, testing::ElementsAre(2, 1, 4, 3));
}
