#include "TemporaryFolder.h"
#include "formats/files/FileError.h"
#include "formats/files/ReplaceFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <thread>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace formats;
using testing::StartsWith;

namespace fs = std::filesystem;

namespace {

void Put(const std::string &path, const std::string &text) {
    ReplaceFile(path, [&](std::ostream &out) { out << text; });
}

std::string ErrorOf(const std::function<void()> &action) {
    try {
        action();
    } catch (const FileError &error) {
        return error.what();
    }
    return "no error";
}

std::size_t EntriesOf(const TemporaryFolder &folder) {
    return std::size_t(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()));
}

/// Lets no file of the process grow beyond a limit, as a full disk would.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &m_before);
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{bytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    rlimit m_before;
    void (*m_handler)(int);
};

} // namespace

TEST(ReplaceFile, MakesANewFile) {
    TemporaryFolder folder;
    Put(folder.File("new"), "bytes\n");
    EXPECT_EQ(ReadFile(folder.File("new")), "bytes\n");
    EXPECT_EQ(EntriesOf(folder), 1u);
}

TEST(ReplaceFile, GivesANewFileThePermissionsOfTheUmask) {
    TemporaryFolder folder;
    const mode_t before = umask(0027);
    Put(folder.File("new"), "x");
    umask(before);
    EXPECT_EQ(fs::status(folder.File("new")).permissions(), fs::perms(0640));
}

TEST(ReplaceFile, ReplacesAFileAndKeepsItsPermissions) {
    TemporaryFolder folder;
    const std::string path = folder.Write("old", "a longer text than the new one");
    fs::permissions(path, fs::perms(0604));
    Put(path, "short");
    EXPECT_EQ(ReadFile(path), "short");
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0604));
    EXPECT_EQ(EntriesOf(folder), 1u);
}

TEST(ReplaceFile, ShowsTheOldFileUntilAllIsWritten) {
    TemporaryFolder folder;
    const std::string path = folder.Write("file", "old");
    ReplaceFile(path, [&](std::ostream &out) {
        out << "new" << std::flush;
        EXPECT_EQ(ReadFile(path), "old");
    });
    EXPECT_EQ(ReadFile(path), "new");
}

TEST(ReplaceFile, FollowsSymbolicLinks) {
    TemporaryFolder folder;
    fs::create_directory(folder.File("deep"));
    folder.Write("deep/real", "old");
    fs::create_symlink("deep/second", folder.File("first"));
    fs::create_symlink("real", folder.File("deep/second"));
    Put(folder.File("first"), "new");
    EXPECT_TRUE(fs::is_symlink(folder.File("first")));
    EXPECT_TRUE(fs::is_symlink(folder.File("deep/second")));
    EXPECT_EQ(ReadFile(folder.File("deep/real")), "new");
}

TEST(ReplaceFile, MakesTheFileThatADanglingLinkNames) {
    TemporaryFolder folder;
    fs::create_symlink("later", folder.File("link"));
    Put(folder.File("link"), "new");
    EXPECT_TRUE(fs::is_symlink(folder.File("link")));
    EXPECT_EQ(ReadFile(folder.File("later")), "new");
}

TEST(ReplaceFile, RefusesALoopOfLinks) {
    TemporaryFolder folder;
    fs::create_symlink("b", folder.File("a"));
    fs::create_symlink("a", folder.File("b"));
    EXPECT_THAT(ErrorOf([&] { Put(folder.File("a"), "x"); }),
                StartsWith(folder.File("a") + ": cannot be written: "));
}

TEST(ReplaceFile, LeavesTheOldFileWhenTheWriterThrows) {
    TemporaryFolder folder;
    const std::string path = folder.Write("file", "old");
    EXPECT_THROW(ReplaceFile(path,
                             [](std::ostream &out) {
                                 out << "half";
                                 throw std::out_of_range("too many atoms");
                             }),
                 std::out_of_range);
    EXPECT_EQ(ReadFile(path), "old");
    EXPECT_EQ(EntriesOf(folder), 1u);
}

TEST(ReplaceFile, LeavesTheOldFileWhenTheDiskIsFull) {
    TemporaryFolder folder;
    const std::string path = folder.Write("file", "old");
    std::string error;
    {
        const FileSizeLimit limit(100'000);
        error = ErrorOf([&] { Put(path, std::string(300'000, 'x')); });
    }
    EXPECT_EQ(error, path + ": cannot be written: File too large");
    EXPECT_EQ(ReadFile(path), "old");
    EXPECT_EQ(EntriesOf(folder), 1u);
}

TEST(ReplaceFile, NoticesAFullDiskAtTheLastFlush) {
    TemporaryFolder folder;
    std::string error;
    {
        const FileSizeLimit limit(10);
        error = ErrorOf([&] { Put(folder.File("file"), "less than a buffer"); });
    }
    EXPECT_EQ(error, folder.File("file") + ": cannot be written: File too large");
    EXPECT_EQ(EntriesOf(folder), 0u);
}

TEST(ReplaceFile, WritesStraightToADevice) {
    EXPECT_EQ(ErrorOf([] { Put("/dev/full", "x"); }),
              "/dev/full: cannot be written: No space left on device");
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
    EXPECT_EQ(ErrorOf([] { Put("/dev/null", "x"); }), "no error");
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST(ReplaceFile, LeavesNothingWhenItIsKilled) {
    TemporaryFolder folder;
    if (const int unnamed = open(folder.Path().c_str(), O_TMPFILE | O_WRONLY, 0600); unnamed >= 0)
        close(unnamed);
    else
        GTEST_SKIP() << "this file system has no files without a name";
    folder.Write("file", "old");
    const auto killed = testing::KilledBySignal(SIGKILL);
    EXPECT_EXIT(ReplaceFile(folder.File("file"),
                            [](std::ostream &out) {
                                out << std::string(1'000'000, 'x') << std::flush;
                                raise(SIGKILL);
                            }),
                killed, "");
    EXPECT_EQ(ReadFile(folder.File("file")), "old");
    EXPECT_EQ(EntriesOf(folder), 1u);
}

TEST(ReplaceFile, RefusesANameThatIsNotUtf8) {
    TemporaryFolder folder;
    EXPECT_EQ(ErrorOf([&] { Put(folder.File("caf\xe9"), "x"); }),
              folder.File("caf\xe9") + ": cannot be written: its name is not UTF-8");
    EXPECT_EQ(EntriesOf(folder), 0u);
    Put(folder.File("café"), "x");
    EXPECT_EQ(ReadFile(folder.File("café")), "x");
}

TEST(ReplaceFile, WaitsForTheReaderOfAPipe) {
    TemporaryFolder folder;
    const std::string path = folder.File("pipe"), bytes(1'000'000, 'x');
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    std::string read;
    std::thread reader([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(150));
        read = ReadFile(path);
    });
    EXPECT_EQ(ErrorOf([&] { Put(path, bytes); }), "no error");
    reader.join();
    EXPECT_EQ(read, bytes);
}

/// Signals that are held back while a file is written must still end the wait.
class PipeWithoutReader : public testing::TestWithParam<int> {
protected:
    PipeWithoutReader() {
        mkfifo(m_path.c_str(), 0600);
        sigset_t held;
        sigemptyset(&held);
        sigaddset(&held, GetParam());
        pthread_sigmask(SIG_BLOCK, &held, &m_before);
    }
    ~PipeWithoutReader() override {
        sigset_t held;
        sigemptyset(&held);
        sigaddset(&held, GetParam());
        int taken = 0;
        sigwait(&held, &taken);
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    }

    TemporaryFolder m_folder;
    const std::string m_path = m_folder.File("pipe"),
                      m_refusal = m_path + ": cannot be written: nothing reads the pipe";

private:
    sigset_t m_before;
};

TEST_P(PipeWithoutReader, IsGivenUpAtASignal) {
    raise(GetParam());
    EXPECT_EQ(ErrorOf([&] { Put(m_path, "x"); }), m_refusal);
}

TEST_P(PipeWithoutReader, IsGivenUpAtASignalOnceItIsFull) {
    const int reader = open(m_path.c_str(), O_RDONLY | O_NONBLOCK);
    raise(GetParam());
    EXPECT_EQ(ErrorOf([&] { Put(m_path, std::string(1'000'000, 'x')); }), m_refusal);
    close(reader);
}

INSTANTIATE_TEST_SUITE_P(EachSignal, PipeWithoutReader, testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST(ReplaceFile, AppendsToAStreamOfTheProcessThatIsARegularFile) {
    TemporaryFolder folder;
    const std::string path = folder.Write("log", "before, ");
    std::FILE *opened = std::fopen(path.c_str(), "a");
    ASSERT_TRUE(opened);
    Put("/dev/fd/" + std::to_string(fileno(opened)), "written, ");
    std::fputs("after", opened);
    std::fclose(opened);
    EXPECT_EQ(ReadFile(path), "before, written, after");
}

TEST(ReplaceFile, RefusesWhatCannotBeAFile) {
    TemporaryFolder folder;
    folder.Write("file", "old");
    EXPECT_EQ(ErrorOf([&] { Put(folder.Path(), "x"); }),
              folder.Path() + ": cannot be written: it is a directory");
    EXPECT_EQ(ErrorOf([&] { Put(folder.File("new/"), "x"); }),
              folder.File("new/") + ": cannot be written: it names no file");
    EXPECT_EQ(ErrorOf([&] { Put(folder.File("file/below"), "x"); }),
              folder.File("file/below") + ": cannot be written: Not a directory");
    EXPECT_EQ(ErrorOf([&] { Put(folder.File("absent/new"), "x"); }),
              folder.File("absent/new") +
                  ": cannot be written, no file can be made in its folder: No such file or directory");
    EXPECT_EQ(ErrorOf([] { Put("", "x"); }), ": cannot be written: it names no file");
}

TEST(ReplaceFile, RefusesAFileWithoutWritePermission) {
    if (geteuid() == 0)
        GTEST_SKIP() << "root may write everything";
    TemporaryFolder folder;
    const std::string path = folder.Write("file", "old");
    fs::permissions(path, fs::perms(0444));
    EXPECT_EQ(ErrorOf([&] { Put(path, "x"); }), path + ": cannot be written: Permission denied");
    EXPECT_EQ(ReadFile(path), "old");
}

TEST(CheckReplaceable, FindsTheSameErrorsAndChangesNothing) {
    TemporaryFolder folder;
    const std::string path = folder.Write("file", "old");
    EXPECT_NO_THROW(CheckReplaceable(path));
    EXPECT_NO_THROW(CheckReplaceable(folder.File("new")));
    EXPECT_NO_THROW(CheckReplaceable("/dev/stdout"));
    EXPECT_THROW(CheckReplaceable(folder.Path()), FileError);
    EXPECT_THROW(CheckReplaceable(folder.File("absent/new")), FileError);
    EXPECT_EQ(ReadFile(path), "old");
    EXPECT_EQ(EntriesOf(folder), 1u);
}
