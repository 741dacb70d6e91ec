#include "solutions/Solution.h"

#include <gmock/gmock.h>

using namespace VARNO;

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

SolutionScore Solution(float x, float y, float z, double score, std::vector<double> extraScores = {}) {
    SolutionScore solution;
    solution.translation = Vertex(x, y, z, false);
    solution.score = score;
    solution.extraScores = std::move(extraScores);
    return solution;
}

} // namespace

TEST(SolutionScore, StartsAsARejectedPose) {
    const SolutionScore solution;
    EXPECT_EQ(solution.score, -1.0);
    EXPECT_EQ(solution.rotation.w(), 1);
    EXPECT_EQ(solution.rotation.x(), 0);
    EXPECT_EQ(solution.rotation.y(), 0);
    EXPECT_EQ(solution.rotation.z(), 0);
    EXPECT_EQ(solution.translation, Vertex());
    EXPECT_THAT(solution.extraScores, IsEmpty());
}

TEST(SolutionScore, ComparesByScoreAlone) {
    EXPECT_TRUE(Solution(9, 9, 9, 1, {9}) < Solution(0, 0, 0, 2));
    EXPECT_FALSE(Solution(0, 0, 0, 2) < Solution(9, 9, 9, 1));
    EXPECT_FALSE(Solution(0, 0, 0, 1) < Solution(9, 9, 9, 1, {9}));
    EXPECT_FALSE(Solution(0, 0, 0, NAN) < Solution(0, 0, 0, 1));
    EXPECT_FALSE(Solution(0, 0, 0, 1) < Solution(0, 0, 0, NAN));
}

TEST(SolutionScore, CopiesAreDeep) {
    const SolutionScore original = Solution(0, 0, 0, 1, {2, 3});
    SolutionScore copy = original;
    copy.extraScores[0] = 9;
    EXPECT_THAT(original.extraScores, ElementsAre(2, 3));
}
