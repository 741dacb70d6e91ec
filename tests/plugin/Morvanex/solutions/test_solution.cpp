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

SolutionScore FromLine(const QString &line) {
    SolutionScore solution = Solution(9, 9, 9, 9, {9, 9});
    solution.setFromLine(line);
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

TEST(SolutionScore, LineOfARecordWithExtraScores) {
    EXPECT_EQ(Solution(12.5, -3.25, 0.75, 41.208, {10.42, 7.03}).getLine(),
              "  1.00   0.00   0.00   0.00  12.50  -3.25   0.75    41.208  10.42   7.03");
}

TEST(SolutionScore, LineOfZeros) {
    EXPECT_EQ(Solution(0, 0, 0, 0).getLine(), "  1.00   0.00   0.00   0.00   0.00   0.00   0.00     0.000");
}

TEST(SolutionScore, LineHoldsAllFourComponentsOfTheRotationInOrder) {
    SolutionScore solution = Solution(0, 0, 0, 0);
    solution.rotation.Set(0.125, -0.25, 0.5, -0.75);
    EXPECT_EQ(solution.getLine().left(27), "  0.12  -0.25   0.50  -0.75");
}

TEST(SolutionScore, WideNumbersPushTheLineApart) {
    EXPECT_EQ(Solution(-123.456f, 1234.5f, 0, -123456.7891, {1000.125}).getLine(),
              "  1.00   0.00   0.00   0.00 -123.46 1234.50   0.00 -123456.789 1000.12");
}

TEST(SolutionScore, ALineHoldsEightNumbersAndTheExtraScores) {
    EXPECT_EQ(split(Solution(1, 2, 3, 4).getLine()).size(), 8u);
    EXPECT_EQ(split(Solution(1, 2, 3, 4, {5, 6, 7}).getLine()).size(), 11u);
}

TEST(SolutionScore, FormatComment) {
    EXPECT_EQ(SolutionScore().getFormatComment(), "# w Rx Ry Rz Tx Ty Tz score [extra scores...]");
    EXPECT_EQ(Solution(1, 2, 3, 4, {5}).getFormatComment(), SolutionScore::getFormatComment());
}

TEST(SolutionScore, AWrittenLineReadsBackRounded) {
    SolutionScore written = Solution(12.346f, -3.254f, 0.75f, 41.2084, {10.424, 7.03});
    written.rotation.Set(0.3307889, 0.0022228, 0.5120525, -0.7927017);
    const SolutionScore read = FromLine(written.getLine());
    EXPECT_EQ(read.rotation.w(), double(0.33f));
    EXPECT_EQ(read.rotation.x(), 0.0);
    EXPECT_EQ(read.rotation.y(), double(0.51f));
    EXPECT_EQ(read.rotation.z(), double(-0.79f));
    EXPECT_EQ(read.translation, Vertex(12.35f, -3.25f, 0.75f, false));
    EXPECT_FALSE(read.translation.IsValid());
    EXPECT_EQ(read.score, double(41.208f)); // single precision, widened
    EXPECT_THAT(read.extraScores, ElementsAre(double(10.42f), double(7.03f)));
}

TEST(SolutionScore, EightWordsLeaveNoExtraScores) {
    const SolutionScore read = FromLine("0.5 0.25 0.125 1 2 3 4 5.5");
    EXPECT_EQ(read.rotation.w(), 0.5);
    EXPECT_EQ(read.rotation.x(), 0.25);
    EXPECT_EQ(read.rotation.y(), 0.125);
    EXPECT_EQ(read.rotation.z(), 1);
    EXPECT_EQ(read.translation, Vertex(2, 3, 4, false));
    EXPECT_EQ(read.score, 5.5);
    EXPECT_THAT(read.extraScores, IsEmpty());
}

TEST(SolutionScore, WordsBeyondTheEighthBecomeExtraScores) {
    EXPECT_THAT(FromLine("1 0 0 0 0 0 0 5 1.5 x 2.5").extraScores, ElementsAre(1.5, 0.0, 2.5));
}

TEST(SolutionScore, WordsThatAreNoNumbersReadAsZero) {
    const SolutionScore read = FromLine("w 1,5 0x1 1.5e0 -- 2. .5 five");
    EXPECT_EQ(read.rotation.w(), 0);
    EXPECT_EQ(read.rotation.x(), 0);
    EXPECT_EQ(read.rotation.y(), 0);
    EXPECT_EQ(read.rotation.z(), 1.5);
    EXPECT_EQ(read.translation, Vertex(0, 2, 0.5f, false));
    EXPECT_EQ(read.score, 0);
}

TEST(SolutionScore, MissingWordsReadAsZero) {
    const SolutionScore read = FromLine("0.5 2.5");
    EXPECT_EQ(read.rotation.w(), 0.5);
    EXPECT_EQ(read.rotation.x(), 2.5);
    EXPECT_EQ(read.rotation.y(), 0);
    EXPECT_EQ(read.translation, Vertex());
    EXPECT_EQ(read.score, 0);
    EXPECT_THAT(read.extraScores, IsEmpty());
    EXPECT_EQ(FromLine("").rotation.w(), 0);
}

TEST(SolutionScore, ReadingLeavesTheLineAsItIs) {
    QString line = "1 0 0 0 0 0 0 5.5";
    SolutionScore().setFromLine(line);
    EXPECT_EQ(line, "1 0 0 0 0 0 0 5.5");
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

TEST(Split, OnlyBlanksSeparate) {
    EXPECT_THAT(split("ab\tcd ef"), ElementsAre("ab\tcd", "ef"));
}

TEST(Split, BlanksAtTheEndsAndRunsOfThemGiveNoEmptyWords) {
    EXPECT_THAT(split("  a  bc "), ElementsAre("a", "bc"));
    EXPECT_THAT(split("    "), IsEmpty());
    EXPECT_THAT(split(""), IsEmpty());
}

TEST(Split, AWordAtTheEndIsReturnedWhole) {
    EXPECT_THAT(split("ab cd"), ElementsAre("ab", "cd"));
    EXPECT_THAT(split("ab"), ElementsAre("ab"));
}

TEST(Split, AWordOfOneCharacterAtTheEndIsNotReturned) {
    EXPECT_THAT(split("ab c"), ElementsAre("ab"));
    EXPECT_THAT(split("x"), IsEmpty());
}

TEST(Split, AWordOfOneCharacterElsewhereIsReturned) {
    EXPECT_THAT(split("a b cd"), ElementsAre("a", "b", "cd"));
    EXPECT_THAT(split("ab c "), ElementsAre("ab", "c"));
}
