#include "solutions/FitLog.h"

#include "Messages.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>

#include <sys/resource.h>
#include <sys/stat.h>

using testing::IsEmpty;

namespace {

/// No file can grow beyond so many bytes while it lives, as on a disk that is full.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    rlimit m_before{};
    void (*m_handler)(int) = std::signal(SIGXFSZ, SIG_IGN);
};

class FitLogTest : public testing::Test {
protected:
    ~FitLogTest() override {
        EXPECT_THAT(messages.Warnings(), IsEmpty());
        EXPECT_THAT(messages.Debug(), IsEmpty());
    }

    void Open(const std::string &file, bool logging) { log.Open(QString::fromStdString(file), logging); }

    const Messages messages;
    const TemporaryFolder folder;
    solutions::FitLog log;
};

} // namespace

TEST_F(FitLogTest, WritesLinesWhenLogging) {
    const std::string file = folder.Write("poses.log", "from an earlier fit\n");
    Open(file, true);
    ASSERT_TRUE(log.IsWriting());
    log.Stream() << "a line\n";
    EXPECT_TRUE(log.Flush());
    EXPECT_EQ(ReadFile(file), "a line\n");
}

TEST_F(FitLogTest, EmptiesTheFileEvenWithoutLogging) {
    const std::string file = folder.Write("poses.log", "from an earlier fit\n");
    Open(file, false);
    EXPECT_FALSE(log.IsWriting());
    EXPECT_TRUE(log.Flush());
    EXPECT_EQ(ReadFile(file), "");
}

TEST_F(FitLogTest, CreatesTheFileEvenWithoutLogging) {
    Open(folder.File("poses.log"), false);
    EXPECT_EQ(ReadFile(folder.File("poses.log")), "");
}

TEST_F(FitLogTest, AnEmptyNameOpensNothing) {
    Open("", true);
    EXPECT_FALSE(log.IsWriting());
    EXPECT_TRUE(log.Flush());
}

TEST_F(FitLogTest, AFileThatCannotBeOpenedIsNotReported) {
    for (const std::string &file : {folder.Path(), folder.File("absent/poses.log")}) {
        Open(file, true);
        EXPECT_FALSE(log.IsWriting());
        EXPECT_TRUE(log.Flush());
    }
    EXPECT_FALSE(std::filesystem::exists(folder.File("absent")));
}

TEST_F(FitLogTest, APipeThatNobodyReadsIsNotWaitedFor) {
    const std::string pipe = folder.File("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    Open(pipe, true);
    EXPECT_FALSE(log.IsWriting());
}

TEST_F(FitLogTest, AFullDiskIsSaidOnceAndEndsTheLog) {
    Open("/dev/full", true);
    ASSERT_TRUE(log.IsWriting());
    log.Stream() << "a line\n";
    EXPECT_FALSE(log.Flush());
    EXPECT_EQ(log.ErrorText(), "No space left on device");
    EXPECT_FALSE(log.IsWriting());
    EXPECT_TRUE(log.Flush());
}

TEST_F(FitLogTest, AFullDiskIsFoundWhereTheLinesOutgrowTheBuffers) {
    Open("/dev/full", true);
    for (int i = 0; i < 10000; ++i)
        log.Stream() << "a line of some length, to fill whatever buffers there are\n";
    EXPECT_FALSE(log.Flush());
    EXPECT_EQ(log.ErrorText(), "No space left on device");
}

TEST_F(FitLogTest, TheReasonIsKnownWhereAPartOfTheLinesIsWritten) {
    for (const int lines : {2, 200}) {
        solutions::FitLog full;
        full.Open(QString::fromStdString(folder.File(std::to_string(lines))), true);
        for (int i = 0; i < lines; ++i)
            full.Stream() << "a line of some length, to fill whatever buffers there are\n";
        const FileSizeLimit limit(100);
        EXPECT_FALSE(full.Flush());
        EXPECT_EQ(full.ErrorText(), "File too large");
    }
}
