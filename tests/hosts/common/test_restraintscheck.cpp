#include "hosts/common/RestraintsCheck.h"

#include "DataMaker.h"
#include "ModelGuard.h"
#include "TemporaryFolder.h"
#include "formats/files/FileError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace hosts;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

/// The error of a file with that content, without the file's name.
std::string ErrorOf(const std::string &content) {
    const TemporaryFolder folder;
    const std::string file = folder.Write("restraints.txt", content);
    try {
        LoadRestraints(file);
    } catch (const formats::FileError &error) {
        return std::string(error.what()).substr(file.size());
    }
    return "no error";
}

std::string ErrorOfPath(const std::string &path) {
    try {
        LoadRestraints(path);
    } catch (const formats::FileError &error) {
        return error.what();
    }
    return "no error";
}

} // namespace

TEST(LoadRestraints, TakesRecordsSeparatedByAnyWhiteSpace) {
    EXPECT_EQ(ErrorOf("LYS6 10.5 -3.25 7.0\n"), "no error");
    EXPECT_EQ(ErrorOf("LYS6\t10.5\t-3.25 7.0  VAL26 1 2e1\n\n+3 \r\n  \n"), "no error");
    EXPECT_EQ(ErrorOf("\xEF\xBB\xBFLYS6 1 2 3"), "no error");
    EXPECT_EQ(ErrorOf("LYS6 1.e1 2. \u22123"), "no error");
}

TEST(LoadRestraints, NamesLineAndWordThatIsNoNumber) {
    EXPECT_EQ(ErrorOf("LYS6 1 2 3\n\nVAL26 1 2x 3\n"),
              ": line 3: '2x', a coordinate of 'VAL26', is not a number");
    EXPECT_EQ(ErrorOf("LYS 6 1 2 3\n"), ": line 1: the record of '3' has fewer than three coordinates");
    EXPECT_EQ(ErrorOf("LYS6 1 2\nVAL26 1 2 3\n"),
              ": line 2: 'VAL26', a coordinate of 'LYS6', is not a number");
    EXPECT_EQ(ErrorOf("LYS6 1 2 nan\n"), ": line 1: 'nan', a coordinate of 'LYS6', is not a number");
    EXPECT_EQ(ErrorOf("LYS6 1 2 1e99\n"), ": line 1: '1e99', a coordinate of 'LYS6', is not a number");
    EXPECT_EQ(ErrorOf("LYS6 1,5 2 3\n"), ": line 1: '1,5', a coordinate of 'LYS6', is not a number");
    EXPECT_EQ(ErrorOf("LYS6 1 2 3\nVAL26\n"),
              ": line 2: the record of 'VAL26' has fewer than three coordinates");
}

TEST(LoadRestraints, RefusesWhatIsNoText) {
    EXPECT_EQ(ErrorOf(std::string("LYS6 1 2 3\n\0", 12)), ": is not a text file");
    EXPECT_EQ(ErrorOf("LYS6 1 2 3\n\xE9\n"), ": is not a text file");
    EXPECT_EQ(ErrorOf("MAP \x01\x02"), ": is not a text file");
    EXPECT_EQ(ErrorOf("LYS6 1 2 3\nVAL26 1 2 3\xC3"), ": is not a text file");
    EXPECT_EQ(ErrorOf(""), ": holds no restraint");
    EXPECT_EQ(ErrorOf(" \n\t\n"), ": holds no restraint");
}

TEST(LoadRestraints, RefusesWhatTheEngineDoesNotRead) {
    const TemporaryFolder folder;
    EXPECT_EQ(ErrorOfPath(folder.File("absent")),
              folder.File("absent") + ": cannot be read: No such file or directory");
    EXPECT_THAT(ErrorOfPath(folder.Path()), HasSubstr("directory"));
    EXPECT_EQ(ErrorOfPath("/dev/null"), "/dev/null: is not a regular file");
    EXPECT_EQ(ErrorOfPath("/dev/zero"), "/dev/zero: is not a regular file");
    const std::string pipe = folder.File("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(ErrorOfPath(pipe), pipe + ": is not a regular file");
    EXPECT_EQ(ErrorOfPath(folder.Write("compressed", "\x1f\x8b\x08")),
              folder.File("compressed") + ": is compressed; restraints are read as plain text");
    EXPECT_THAT(ErrorOfPath("/proc/cpuinfo"), StartsWith("/proc/cpuinfo: line "));
}

TEST(UnknownResidues, AreThoseThatNoResidueWithAPositionMatches) {
    const ModelGuard guard;
    using VARNO::DataMaker;
    VARNO::Compound *chain = DataMaker::makeChain(DataMaker::makeClump("c"), "A", true);
    const auto add = [&](const std::string &number, const std::string &atom) {
        VARNO::Compound *residue = DataMaker::makeGroup(chain, "ALA", number);
        DataMaker::makeAtom(residue, "C", atom, "1", {1, 2, 3, true}, 1, "", 0, 0);
    };
    add("1", "CA");
    add("2", "CB");
    const std::vector<fit::RestraintRecord> records{{"ALA1", {}}, {"ALA2", {}}, {"ala1", {}},
                                                    {"GLY9", {}}, {"ALA1", {}}, {"", {}}};
    EXPECT_THAT(UnknownResidues(records, chain), ElementsAre("ALA2", "ala1", "GLY9"));
}
