#include "solutions/RecordBytes.h"
#include "solutions/ResultsFile.h"

#include <QBuffer>

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

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

} // namespace

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
