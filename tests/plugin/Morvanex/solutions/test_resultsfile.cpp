#include "solutions/RecordBytes.h"
#include "solutions/ResultsFile.h"

#include <QBuffer>

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

using namespace VARNO;

namespace {

std::string Written(const std::list<SolutionScore> &solutions) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    solutions::WriteResults(buffer, solutions);
    return buffer.data().toStdString();
}

solutions::ResultsRead ReadText(const std::string &text) {
    QBuffer buffer;
    buffer.setData(QByteArray::fromStdString(text));
    buffer.open(QIODevice::ReadOnly);
    return solutions::ReadResults(buffer);
}

std::vector<double> Scores(const std::list<SolutionScore> &solutions) {
    std::vector<double> scores;
    for (const SolutionScore &solution : solutions)
        scores.push_back(solution.score);
    return scores;
}

const std::string comment = "# w Rx Ry Rz Tx Ty Tz score [extra scores...]\n";

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

TEST(ResultsLine, LineOfARecordWithExtraScores) {
    EXPECT_EQ(Solution(12.5, -3.25, 0.75, 41.208, {10.42, 7.03}).getLine(),
              "  1.00   0.00   0.00   0.00  12.50  -3.25   0.75    41.208  10.42   7.03");
}

TEST(ResultsLine, LineOfZeros) {
    EXPECT_EQ(Solution(0, 0, 0, 0).getLine(), "  1.00   0.00   0.00   0.00   0.00   0.00   0.00     0.000");
}

TEST(ResultsLine, LineHoldsAllFourComponentsOfTheRotationInOrder) {
    SolutionScore solution = Solution(0, 0, 0, 0);
    solution.rotation.Set(0.125, -0.25, 0.5, -0.75);
    EXPECT_EQ(solution.getLine().left(27), "  0.12  -0.25   0.50  -0.75");
}

TEST(ResultsLine, WideNumbersPushTheLineApart) {
    EXPECT_EQ(Solution(-123.456f, 1234.5f, 0, -123456.7891, {1000.125}).getLine(),
              "  1.00   0.00   0.00   0.00 -123.46 1234.50   0.00 -123456.789 1000.12");
}

TEST(ResultsLine, ALineHoldsEightNumbersAndTheExtraScores) {
    EXPECT_EQ(split(Solution(1, 2, 3, 4).getLine()).size(), 8u);
    EXPECT_EQ(split(Solution(1, 2, 3, 4, {5, 6, 7}).getLine()).size(), 11u);
}

TEST(ResultsLine, FormatComment) {
    EXPECT_EQ(SolutionScore().getFormatComment(), "# w Rx Ry Rz Tx Ty Tz score [extra scores...]");
    EXPECT_EQ(Solution(1, 2, 3, 4, {5}).getFormatComment(), SolutionScore::getFormatComment());
}

TEST(ResultsLine, AWrittenLineReadsBackRounded) {
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

TEST(ResultsLine, EightWordsLeaveNoExtraScores) {
    const SolutionScore read = FromLine("0.5 0.25 0.125 1 2 3 4 5.5");
    EXPECT_EQ(read.rotation.w(), 0.5);
    EXPECT_EQ(read.rotation.x(), 0.25);
    EXPECT_EQ(read.rotation.y(), 0.125);
    EXPECT_EQ(read.rotation.z(), 1);
    EXPECT_EQ(read.translation, Vertex(2, 3, 4, false));
    EXPECT_EQ(read.score, 5.5);
    EXPECT_THAT(read.extraScores, IsEmpty());
}

TEST(ResultsLine, WordsBeyondTheEighthBecomeExtraScores) {
    EXPECT_THAT(FromLine("1 0 0 0 0 0 0 5 1.5 x 2.5").extraScores, ElementsAre(1.5, 0.0, 2.5));
}

TEST(ResultsLine, WordsThatAreNoNumbersReadAsZero) {
    const SolutionScore read = FromLine("w 1,5 0x1 1.5e0 -- 2. .5 five");
    EXPECT_EQ(read.rotation.w(), 0);
    EXPECT_EQ(read.rotation.x(), 0);
    EXPECT_EQ(read.rotation.y(), 0);
    EXPECT_EQ(read.rotation.z(), 1.5);
    EXPECT_EQ(read.translation, Vertex(0, 2, 0.5f, false));
    EXPECT_EQ(read.score, 0);
}

TEST(ResultsLine, MissingWordsReadAsZero) {
    const SolutionScore read = FromLine("0.5 2.5");
    EXPECT_EQ(read.rotation.w(), 0.5);
    EXPECT_EQ(read.rotation.x(), 2.5);
    EXPECT_EQ(read.rotation.y(), 0);
    EXPECT_EQ(read.translation, Vertex());
    EXPECT_EQ(read.score, 0);
    EXPECT_THAT(read.extraScores, IsEmpty());
    EXPECT_EQ(FromLine("").rotation.w(), 0);
}

TEST(ResultsLine, ReadingLeavesTheLineAsItIs) {
    QString line = "1 0 0 0 0 0 0 5.5";
    SolutionScore().setFromLine(line);
    EXPECT_EQ(line, "1 0 0 0 0 0 0 5.5");
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

TEST(ResultsFile, AnEmptyListIsTheCommentAlone) {
    EXPECT_EQ(Written({}), comment);
}

TEST(ResultsFile, HoldsTheCommentThenTheListInItsOrder) {
    std::list<SolutionScore> solutions(2);
    solutions.front().score = 41.208;
    solutions.back().score = -2;
    solutions.back().extraScores = {10.42};
    EXPECT_EQ(Written(solutions), comment +
                                      "  1.00   0.00   0.00   0.00   0.00   0.00   0.00    41.208\n"
                                      "  1.00   0.00   0.00   0.00   0.00   0.00   0.00    -2.000  10.42\n");
}

TEST(ResultsFile, ReadsBackWhatWasWritten) {
    std::list<SolutionScore> solutions(3);
    solutions.front().score = 3;
    solutions.back().score = 0.5;
    const solutions::ResultsRead read = ReadText(Written(solutions));
    EXPECT_THAT(Scores(read.solutions), ElementsAre(3, -1, 0.5));
    EXPECT_THAT(read.skippedLines, IsEmpty());
}

TEST(ResultsFile, SkipsLinesThatBeginWithAHash) {
    const solutions::ResultsRead read =
        ReadText("# 1 2 3 4 5 6 7 8.5\n1 0 0 0 0 0 0 5.5\n#\n1 0 0 0 0 0 0 6.5 # word\n");
    EXPECT_THAT(Scores(read.solutions), ElementsAre(5.5, 6.5));
    EXPECT_THAT(read.skippedLines, IsEmpty());
}

TEST(ResultsFile, AHashBehindABlankIsNoComment) {
    EXPECT_THAT(Scores(ReadText(" # 0 0 0 0 0 0 5.5\n").solutions), ElementsAre(5.5));
}

TEST(ResultsFile, LinesWithFewerThanEightWordsAreSkippedAndNumbered) {
    const solutions::ResultsRead read =
        ReadText("#\n\n1 0 0 0 0 0 5.5\n1 0 0 0 0 0 0 5.5\n    \n1 0 0 0 0 0 0 5\n");
    EXPECT_THAT(Scores(read.solutions), ElementsAre(5.5));
    EXPECT_THAT(read.skippedLines, ElementsAre(2, 3, 5, 6)); // the last one for its one-letter last word
}

TEST(ResultsFile, ReadsFilesOfOtherSystemsAndWithoutALastLineEnd) {
    EXPECT_THAT(Scores(ReadText("#\r\n1 0 0 0 0 0 0 5.5\r\n1 0 0 0 0 0 0 6.5").solutions),
                ElementsAre(5.5, 6.5));
}

TEST(ResultsFile, AFileOfAnotherKindHoldsNothing) {
    const solutions::ResultsRead read = ReadText(std::string("\x7f"
                                                             "ELF\0\0\xff\xfe\n\0\1\2",
                                                             13));
    EXPECT_THAT(read.solutions, IsEmpty());
    EXPECT_THAT(read.skippedLines, ElementsAre(1, 2));
}

namespace {

solutions::ResultsRead ReadWithin(double memory, QByteArray text, double bytesBeside = 0) {
    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    return solutions::ReadResults(buffer, memory, bytesBeside);
}

} // namespace

TEST(ResultsFile, ReadingStopsWhereTheListWouldTakeMoreThanItsMemory) {
    const QByteArray lines = QByteArray("1 0 0 0 0 0 0 5.5 1.5 1.5\n").repeated(100);
    const double needed = 100 * solutions::RecordBytes(2);
    EXPECT_TRUE(ReadWithin(needed, lines).isWhole);
    EXPECT_FALSE(ReadWithin(needed - 1, lines).isWhole);
    EXPECT_TRUE(ReadWithin(needed + 100 * 50, lines, 50).isWhole);
    EXPECT_FALSE(ReadWithin(needed + 100 * 50 - 1, lines, 50).isWhole);
    EXPECT_LT(ReadWithin(needed / 2, lines).solutions.size(), 55u);
}

TEST(ResultsFile, ReadingStopsWhereSkippedLinesWouldTakeMoreThanItsMemory) {
    EXPECT_TRUE(ReadWithin(64000, QByteArray(1000, '\n')).isWhole);
    EXPECT_FALSE(ReadWithin(64000, QByteArray(1001, '\n')).isWhole);
}

TEST(ResultsFile, ReadingStopsAtALineWhoseWordsWouldTakeMoreThanItsMemory) {
    EXPECT_TRUE(ReadWithin(128000, QByteArray("1 ").repeated(499)).isWhole);
    const solutions::ResultsRead read =
        ReadWithin(128000, "1 0 0 0 0 0 0 5.5\n" + QByteArray("1 ").repeated(500));
    EXPECT_FALSE(read.isWhole);
    EXPECT_THAT(Scores(read.solutions), ElementsAre(5.5));
}

TEST(ResultsFile, ADeviceThatIsNotOpenHoldsNothing) {
    QBuffer buffer;
    const solutions::ResultsRead read = solutions::ReadResults(buffer);
    EXPECT_THAT(read.solutions, IsEmpty());
    EXPECT_THAT(read.skippedLines, IsEmpty());
}
