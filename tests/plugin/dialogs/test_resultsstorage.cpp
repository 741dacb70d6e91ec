#include "ResultsStorage.h"

#include "DialogTest.h"

#include "base/Memory.h"

#include <filesystem>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

class ResultsStorage : public DialogTest {
protected:
    std::list<SolutionScore> Load(const std::string &path) {
        return LoadResults(QString::fromStdString(path));
    }
    std::string Pipe() {
        std::string path = folder.File("pipe");
        EXPECT_EQ(mkfifo(path.c_str(), 0600), 0);
        return path;
    }
};

TEST_F(ResultsStorage, NullNamesAreSilent) {
    EXPECT_THAT(LoadResults(QString()), IsEmpty());
    SaveResults(QString(), {Scored(1)});
    EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(ResultsStorage, AbsentFileHoldsNothing) {
    EXPECT_THAT(Load(folder.File("absent")), IsEmpty());
    EXPECT_THAT(Warnings(), ElementsAre(folder.File("absent") + ": No such file or directory"));
}

TEST_F(ResultsStorage, OnlyRegularFilesAreRead) {
    for (const std::string &path : {folder.Path(), Pipe(), std::string("/dev/zero")}) {
        messages.Clear();
        EXPECT_THAT(Load(path), IsEmpty());
        EXPECT_THAT(Warnings(), ElementsAre(path + ": not a regular file"));
    }
}

TEST_F(ResultsStorage, OnlyRegularFilesAreWritten) {
    for (const std::string &path : {folder.Path(), Pipe()}) {
        messages.Clear();
        SaveResults(QString::fromStdString(path), {Scored(1)});
        EXPECT_THAT(Warnings(), ElementsAre(path + ": not a regular file"));
    }
}

TEST_F(ResultsStorage, FileThatMayNotBeReadHoldsNothing) {
    if (geteuid() == 0)
        GTEST_SKIP() << "root may read every file";
    const std::string path = folder.Write("secret", "1 2 3 4 5 6 7 88\n");
    std::filesystem::permissions(path, std::filesystem::perms::none);
    EXPECT_THAT(Load(path), IsEmpty());
    EXPECT_THAT(Warnings(), ElementsAre(path + ": Permission denied"));
}

TEST_F(ResultsStorage, AFileThatDoesNotFitIntoMemoryIsNotRead) {
    const std::string path = folder.Write("huge", "1 2 3 4 5 6 7 88\n");
    std::filesystem::resize_file(path, std::uintmax_t(base::MemoryLimit()) + 1);
    EXPECT_THAT(Load(path), IsEmpty());
    EXPECT_THAT(Warnings(), ElementsAre(AllOf(StartsWith(path + ": loading it would need more than "),
                                              EndsWith(" GiB of memory, three quarters of this machine's"))));
}

TEST_F(ResultsStorage, AFileThatNeverEndsIsReadToItsSize) {
    EXPECT_THAT(Load("/proc/self/status"), IsEmpty());
}

TEST_F(ResultsStorage, BinaryContentIsSurvived) {
    std::string bytes("\0\xff\xfe 1 2\0\n", 10);
    for (int i = 0; i < 10; ++i)
        bytes += bytes;
    EXPECT_THAT(Load(folder.Write("binary", bytes)), IsEmpty());
}

TEST_F(ResultsStorage, ALineWithoutEndIsSurvived) {
    std::string words;
    for (int i = 0; i < 100'000; ++i)
        words += "1 ";
    EXPECT_THAT(Load(folder.Write("long", words)).size(), testing::Le(1u));
}

TEST_F(ResultsStorage, SavedListIsReadBack) {
    const QString path = QString::fromStdString(folder.File("results"));
    SaveResults(path, {Scored(1), Scored(2)});
    const auto read = LoadResults(path);
    ASSERT_THAT(read, SizeIs(2));
    EXPECT_EQ(read.front().score, 1.0);
    EXPECT_EQ(read.back().score, 2.0);
}
