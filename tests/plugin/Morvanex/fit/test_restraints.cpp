#include "fit/Restraints.h"

#include "TemporaryFolder.h"
#include "TestData.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::string Text(const fit::RestraintRecord &record) {
    std::string text = record.residue.toStdString();
    for (const unsigned i : {0u, 1u, 2u})
        text += ' ' + QString::number(record.position[i]).toStdString();
    return text;
}

std::vector<std::string> Texts(const std::string &file) {
    std::vector<std::string> texts;
    for (const fit::RestraintRecord &record : fit::ReadRestraints(QString::fromStdString(file)))
        texts.push_back(Text(record));
    return texts;
}

std::vector<std::string> Records(const std::string &bytes) {
    const TemporaryFolder folder;
    return Texts(folder.Write("restraints.txt", bytes));
}

} // namespace

TEST(Restraints, OneRecordPerLine) {
    EXPECT_THAT(Records("ALA12 10.5 -3.25 7.0\nGLY-3 1 2 3"),
                ElementsAre("ALA12 10.5 -3.25 7", "GLY-3 1 2 3"));
}

TEST(Restraints, AnyWhiteSpaceSeparates) {
    EXPECT_THAT(Records("\n ALA12\t10.5\n-3.25\r\n7.0 GLY3 1 2 3"),
                ElementsAre("ALA12 10.5 -3.25 7", "GLY3 1 2 3"));
}

TEST(Restraints, WhiteSpaceAtTheEndGivesOneRecordWithoutAName) {
    EXPECT_THAT(Records("ALA12 1 2 3\n"), ElementsAre("ALA12 1 2 3", " 0 0 0"));
    EXPECT_THAT(Records("ALA12 1 2 3  \n\n\n"), ElementsAre("ALA12 1 2 3", " 0 0 0"));
    EXPECT_THAT(Records(" "), ElementsAre(" 0 0 0"));
}

TEST(Restraints, AnEmptyFileHoldsNone) {
    EXPECT_THAT(Records(""), IsEmpty());
}

TEST(Restraints, NothingInARecordIsChecked) {
    EXPECT_THAT(Records("ALA12 1"), ElementsAre("ALA12 1 0 0"));
    EXPECT_THAT(Records("ALA12"), ElementsAre("ALA12 0 0 0"));
    EXPECT_THAT(Records("1 2 3 4"), ElementsAre("1 2 3 4"));
    EXPECT_THAT(Records("ALA12 1e1 -2.5E-1 +3"), ElementsAre("ALA12 10 -0.25 3"));
}

TEST(Restraints, AWordThatIsNoNumberIsZeroAndShiftsNothing) {
    EXPECT_THAT(Records("LYS6 abc 2 3 GLY3 1 2 3"), ElementsAre("LYS6 0 2 3", "GLY3 1 2 3"));
    EXPECT_THAT(Records("LYS6 1.5x 2,5 3\nGLY3 1 2 3"), ElementsAre("LYS6 0 0 3", "GLY3 1 2 3"));
    EXPECT_THAT(Records("ALA12 one two three GLY3 1 2 3"), ElementsAre("ALA12 0 0 0", "GLY3 1 2 3"));
}

TEST(Restraints, NumbersMayLackDigitsBehindThePoint) {
    EXPECT_THAT(Records("LYS6 1.e1 -2.5e+00 3.\nGLY3 -1.e-01 .5 0."),
                ElementsAre("LYS6 10 -2.5 3", "GLY3 -0.1 0.5 0"));
}

TEST(Restraints, TheMinusSignOfPrintedTextIsOne) {
    EXPECT_THAT(Records("LYS6 \u22121.5 2 3"), ElementsAre("LYS6 -1.5 2 3"));
}

TEST(Restraints, NumbersTooLargeAreInfinite) {
    EXPECT_THAT(Records("LYS6 1e99 -1e99 1e-99"), ElementsAre("LYS6 inf -inf 0"));
}

TEST(Restraints, EveryFaultIsSaidWithItsLine) {
    std::vector<std::string> faults;
    const auto records = fit::ParseRestraints(
        "LYS6 a 2 3\n\nVAL26 1 b\ninf GLY \xc3", [&faults](std::size_t line, const QString &text) {
            faults.push_back(std::to_string(line) + ": " + text.toStdString());
        });
    EXPECT_EQ(records.size(), 3u);
    EXPECT_THAT(faults,
                ElementsAre("0: is not a text file", "1: 'a', a coordinate of 'LYS6', is not a number",
                            "3: 'b', a coordinate of 'VAL26', is not a number",
                            "4: 'inf', a coordinate of 'VAL26', is not a number",
                            "4: the record of 'GLY' has fewer than three coordinates",
                            "4: '\xef\xbf\xbd', a coordinate of 'GLY', is not a number"));
}

TEST(Restraints, AFileOfAnotherEncodingIsReadByItsByteOrderMark) {
    EXPECT_THAT(Records("\xef\xbb\xbfLYS6 1 2 3"), ElementsAre("LYS6 1 2 3"));
    EXPECT_THAT(Records(std::string("\xff\xfeK\0 \0\x31\0 \0\x32\0 \0\x33\0", 16)), ElementsAre("K 1 2 3"));
}

TEST(Restraints, ABinaryFileEnds) {
    std::string bytes;
    for (int i = 0; i < 5000; ++i)
        bytes += char(i * 37 % 256);
    EXPECT_FALSE(Records(bytes).empty());
}

TEST(Restraints, AFileThatCannotBeReadHoldsNone) {
    const TemporaryFolder folder;
    EXPECT_THAT(Texts(folder.File("absent.txt")), IsEmpty());
    EXPECT_THAT(Texts(folder.Path()), IsEmpty());
    EXPECT_THAT(Texts(""), IsEmpty());
    EXPECT_THAT(Texts("/dev/zero"), IsEmpty());
}

TEST(Restraints, APipeThatNobodyWritesToIsNotWaitedFor) {
    const TemporaryFolder folder;
    const std::string pipe = folder.File("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_THAT(Texts(pipe), IsEmpty());
}

TEST(Restraints, ARealFile) {
    REQUIRE_TEST_DATA();
    EXPECT_THAT(Texts(TestDataFolder() + "/cases/ubi_restraints/restraints.txt"),
                ElementsAre("LYS6 27.69 37.19 14.2", "VAL26 33.59 25.08 13", "LYS48 21.61 26.91 22.99",
                            "HIS68 26.19 34 17.67", " 0 0 0"));
}

TEST(Restraints, ARealFileWithOddities) {
    REQUIRE_TEST_DATA();
    EXPECT_THAT(Texts(TestDataFolder() + "/cases/ubi_restraints/restraints_odd.txt"),
                ElementsAre("LYS6 27.69 37.19 14.2", "VAL26 33.59 25.08 13", "LYS48 21.61 26.91 22.99",
                            "ALA999 1 2 3", "his68 1 2 3", "LYS6 10.5 -3.25 7", "HIS68 26.19 34 17.67",
                            " 0 0 0"));
}
