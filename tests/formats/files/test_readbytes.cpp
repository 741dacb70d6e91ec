#include "Compress.h"
#include "TemporaryFolder.h"
#include "formats/files/FileError.h"
#include "formats/files/ReadBytes.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace {

using namespace formats;
using testing::HasSubstr;

constexpr std::size_t limit = 1 << 24;

/// Text of that many bytes that does not compress to nothing.
std::string Text(std::size_t size) {
    std::string text;
    for (unsigned i = 0; text.size() < size; ++i)
        text += std::to_string(i * 2654435761u) + '\n';
    text.resize(size);
    return text;
}

std::string ErrorOf(const std::string &file, std::size_t most = limit) {
    try {
        ReadBytes(file, most);
    } catch (const FileError &error) {
        return error.what();
    }
    return "no error";
}

TEST(ReadBytes, GivesAPlainFileAsItStands) {
    TemporaryFolder folder;
    const std::string text = Text(3'000'000);
    EXPECT_EQ(ReadBytes(folder.Write("plain", text), limit), text);
    EXPECT_EQ(ReadBytes(folder.Write("empty", ""), limit), "");
}

TEST(ReadBytes, DecompressesByContentNotByName) {
    TemporaryFolder folder;
    for (const std::size_t size : {0, 1, 1 << 20, 3'000'000}) {
        const std::string text = Text(size);
        EXPECT_EQ(ReadBytes(folder.Write("a.pdb", Gzip(text)), limit), text);
        EXPECT_EQ(ReadBytes(folder.Write("b.map", Bzip2(text)), limit), text);
        EXPECT_EQ(ReadBytes(folder.Write("c.gz", text), limit), text);
    }
}

TEST(ReadBytes, JoinsStreamsAndIgnoresWhatFollowsThem) {
    TemporaryFolder folder;
    EXPECT_EQ(ReadBytes(folder.Write("a", Gzip("one ") + Gzip("two") + std::string(512, '\0')), limit),
              "one two");
    EXPECT_EQ(ReadBytes(folder.Write("b", Bzip2("one ") + Bzip2("two") + "end"), limit), "one two");
}

TEST(ReadBytes, RefusesATruncatedOrDamagedStream) {
    TemporaryFolder folder;
    const std::string text = Text(300'000);
    const std::string gzip = Gzip(text), bzip2 = Bzip2(text);
    for (const std::size_t part : {std::size_t(3), std::size_t(11), gzip.size() / 2, gzip.size() - 1})
        EXPECT_THAT(ErrorOf(folder.Write("cut.gz", gzip.substr(0, part))),
                    HasSubstr("cut.gz: byte " + std::to_string(part) + ": the gzip stream ends too early"));
    EXPECT_THAT(ErrorOf(folder.Write("cut.bz2", bzip2.substr(0, bzip2.size() / 2))),
                HasSubstr("the bzip2 stream ends too early"));
    std::string damaged = gzip;
    damaged[gzip.size() - 6] ^= 1; // in the checksum
    EXPECT_THAT(ErrorOf(folder.Write("bad.gz", damaged)), HasSubstr("the gzip stream is damaged"));
    damaged = bzip2;
    damaged[bzip2.size() / 2] ^= 1;
    EXPECT_THAT(ErrorOf(folder.Write("bad.bz2", damaged)), HasSubstr("the bzip2 stream is damaged"));
}

TEST(ReadBytes, RefusesWhatIsNoReadableFile) {
    TemporaryFolder folder;
    EXPECT_EQ(ErrorOf(folder.File("none")),
              folder.File("none") + ": cannot be read: No such file or directory");
    EXPECT_EQ(ErrorOf(folder.Path()), folder.Path() + ": cannot be read: Is a directory");
    EXPECT_EQ(ErrorOf("-"), "-: cannot be read: No such file or directory");
}

TEST(CheckIsRegular, RefusesWhatWouldMakeAReaderWait) {
    TemporaryFolder folder;
    const std::string pipe = folder.File("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const auto errorOf = [](const std::string &file) {
        try {
            CheckIsRegular(file);
        } catch (const FileError &error) {
            return std::string(error.what());
        }
        return std::string("no error");
    };
    EXPECT_EQ(errorOf(pipe), pipe + ": is not a regular file");
    EXPECT_EQ(errorOf("/dev/zero"), "/dev/zero: is not a regular file");
    EXPECT_EQ(errorOf(folder.Path()), folder.Path() + ": cannot be read: Is a directory");
    EXPECT_EQ(errorOf(folder.Write("file", "x")), "no error");
    EXPECT_EQ(errorOf(folder.File("absent")), "no error");
}

TEST(ReadBytes, StopsAtTheLimit) {
    TemporaryFolder folder;
    const std::string zeros(std::size_t(5) << 20, '\0');
    const std::size_t four = std::size_t(4) << 20;
    EXPECT_THAT(ErrorOf(folder.Write("plain", zeros), four), HasSubstr("plain: holds more than 4 MiB"));
    EXPECT_THAT(ErrorOf(folder.Write("bomb.gz", Gzip(zeros)), four), HasSubstr("holds more than 4 MiB"));
    EXPECT_THAT(ErrorOf(folder.Write("bomb.bz2", Bzip2(zeros)), four), HasSubstr("holds more than 4 MiB"));
    EXPECT_EQ(ErrorOf("/dev/zero", four), "/dev/zero: holds more than 4 MiB");
    EXPECT_EQ(ReadBytes(folder.File("bomb.gz"), zeros.size()), zeros);
}

} // namespace
