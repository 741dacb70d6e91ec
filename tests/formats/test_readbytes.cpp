#include "FileError.h"
#include "ReadBytes.h"
#include "TemporaryFolder.h"

#include <bzlib.h>
#include <gmock/gmock.h>
#include <zlib.h>

namespace {

using namespace VARNO;
using testing::HasSubstr;

constexpr std::size_t limit = 1 << 24;

/// Text of that many bytes that does not pack to nothing.
std::string Text(std::size_t size) {
    std::string text;
    for (unsigned i = 0; text.size() < size; ++i)
        text += std::to_string(i * 2654435761u) + '\n';
    text.resize(size);
    return text;
}

std::string Gzipped(const std::string &text) {
    z_stream stream = {};
    deflateInit2(&stream, 6, Z_DEFLATED, MAX_WBITS + 16, 8, Z_DEFAULT_STRATEGY);
    std::string packed(deflateBound(&stream, text.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(text.data()));
    stream.avail_in = unsigned(text.size());
    stream.next_out = reinterpret_cast<Bytef *>(packed.data());
    stream.avail_out = unsigned(packed.size());
    EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

std::string Bzipped(const std::string &text) {
    unsigned size = unsigned(text.size()) * 2 + 1000;
    std::string packed(size, '\0');
    EXPECT_EQ(BZ2_bzBuffToBuffCompress(packed.data(), &size, const_cast<char *>(text.data()),
                                       unsigned(text.size()), 9, 0, 0),
              BZ_OK);
    packed.resize(size);
    return packed;
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

TEST(ReadBytes, UnpacksByContentNotByName) {
    TemporaryFolder folder;
    for (const std::size_t size : {0, 1, 1 << 20, 3'000'000}) {
        const std::string text = Text(size);
        EXPECT_EQ(ReadBytes(folder.Write("a.pdb", Gzipped(text)), limit), text);
        EXPECT_EQ(ReadBytes(folder.Write("b.map", Bzipped(text)), limit), text);
        EXPECT_EQ(ReadBytes(folder.Write("c.gz", text), limit), text);
    }
}

TEST(ReadBytes, JoinsStreamsAndIgnoresWhatFollowsThem) {
    TemporaryFolder folder;
    EXPECT_EQ(ReadBytes(folder.Write("a", Gzipped("one ") + Gzipped("two") + std::string(512, '\0')), limit),
              "one two");
    EXPECT_EQ(ReadBytes(folder.Write("b", Bzipped("one ") + Bzipped("two") + "end"), limit), "one two");
}

TEST(ReadBytes, RefusesATruncatedOrDamagedStream) {
    TemporaryFolder folder;
    const std::string text = Text(300'000);
    const std::string gzip = Gzipped(text), bzip2 = Bzipped(text);
    for (const std::size_t part : {std::size_t(2), std::size_t(11), gzip.size() / 2, gzip.size() - 1})
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

TEST(ReadBytes, StopsAtTheLimit) {
    TemporaryFolder folder;
    const std::string zeros(std::size_t(5) << 20, '\0');
    const std::size_t four = std::size_t(4) << 20;
    EXPECT_THAT(ErrorOf(folder.Write("plain", zeros), four), HasSubstr("plain: holds more than 4 MiB"));
    EXPECT_THAT(ErrorOf(folder.Write("bomb.gz", Gzipped(zeros)), four), HasSubstr("holds more than 4 MiB"));
    EXPECT_THAT(ErrorOf(folder.Write("bomb.bz2", Bzipped(zeros)), four), HasSubstr("holds more than 4 MiB"));
    EXPECT_EQ(ErrorOf("/dev/zero", four), "/dev/zero: holds more than 4 MiB");
    EXPECT_EQ(ReadBytes(folder.File("bomb.gz"), zeros.size()), zeros);
}

} // namespace
