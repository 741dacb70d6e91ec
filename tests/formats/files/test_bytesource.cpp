#include "Compress.h"
#include "TemporaryFolder.h"
#include "formats/files/ByteSource.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <random>

#include <unistd.h>

using namespace formats;
using testing::HasSubstr;

namespace {

/// Reads in pieces of odd sizes.
std::string AllOf(const std::string &path) {
    ByteSource source(path);
    std::string all;
    for (std::size_t size = 1;; size = size * 3 % 200'003) {
        std::string piece(size, '\0');
        piece.resize(source.Read(piece));
        all += piece;
        if (piece.size() < size)
            return all;
    }
}

std::string ErrorOf(const std::function<void()> &action) {
    try {
        action();
    } catch (const FileError &error) {
        return error.what();
    }
    return "no error";
}

std::string Noise(std::size_t size) {
    std::mt19937 random(1);
    std::string bytes(size, '\0');
    for (char &byte : bytes)
        byte = char(random());
    return bytes;
}

} // namespace

TEST(ByteSource, ReadsAPlainFile) {
    TemporaryFolder folder;
    for (const std::size_t size : {0u, 1u, 65'535u, 65'536u, 65'537u, 400'000u})
        EXPECT_EQ(AllOf(folder.Write("plain", Noise(size))), Noise(size)) << size;
}

TEST(ByteSource, DecompressesByContentNotByName) {
    TemporaryFolder folder;
    for (const std::string &bytes : {Noise(0), Noise(400'000), std::string(3'000'000, 'x')}) {
        EXPECT_EQ(AllOf(folder.Write("a.map", Gzip(bytes))), bytes);
        EXPECT_EQ(AllOf(folder.Write("b.gz", Bzip2(bytes))), bytes);
        EXPECT_EQ(AllOf(folder.Write("c.bz2", bytes)), bytes);
    }
}

TEST(ByteSource, SaysHowAFileIsCompressed) {
    TemporaryFolder folder;
    EXPECT_STREQ(NameOf(ByteSource(folder.Write("a", Gzip("x"))).GetCompression()), "gzip");
    EXPECT_STREQ(NameOf(ByteSource(folder.Write("b", Bzip2("x"))).GetCompression()), "bzip2");
    EXPECT_STREQ(NameOf(ByteSource(folder.Write("c", "BZ")).GetCompression()), "");
}

TEST(ByteSource, ReadsSeveralStreamsInARow) {
    TemporaryFolder folder;
    const std::string noise = Noise(100'000);
    EXPECT_EQ(AllOf(folder.Write("a", Gzip(noise) + Gzip("") + Gzip("end"))), noise + "end");
    EXPECT_EQ(AllOf(folder.Write("b", Bzip2(noise) + Bzip2("") + Bzip2("end"))), noise + "end");
}

TEST(ByteSource, FindsTheNextStreamWhereverTheBufferEnds) {
    TemporaryFolder folder;
    bool fillsTheBuffer = false;
    for (std::size_t size = 65'536 - 60; size < 65'536; ++size) {
        const std::string first = Gzip(Noise(size));
        fillsTheBuffer |= first.size() == 65'536;
        EXPECT_EQ(AllOf(folder.Write("a", first + Gzip("second"))), Noise(size) + "second");
    }
    EXPECT_TRUE(fillsTheBuffer);
}

TEST(ByteSource, IgnoresPaddingAfterTheLastStream) {
    TemporaryFolder folder;
    EXPECT_EQ(AllOf(folder.Write("a", Gzip("bytes") + std::string(512, '\0'))), "bytes");
    EXPECT_EQ(AllOf(folder.Write("b", Bzip2("bytes") + "\n")), "bytes");
}

TEST(ByteSource, RefusesAStreamThatIsCutOffAnywhere) {
    TemporaryFolder folder;
    for (const std::string &compressed : {Gzip(Noise(50)), Bzip2(Noise(50))})
        for (std::size_t size = 4; size < compressed.size(); ++size) {
            const std::string path = folder.Write("cut", compressed.substr(0, size));
            EXPECT_EQ(ErrorOf([&] { AllOf(path); }), path + ": byte " + std::to_string(size) + ": the " +
                                                         NameOf(CompressionOf(compressed)) +
                                                         " stream ends too early");
        }
}

TEST(ByteSource, RefusesADamagedStream) {
    TemporaryFolder folder;
    std::string gzip = Gzip(std::string(1000, 'x')), bzip2 = Bzip2(std::string(1000, 'x'));
    gzip[gzip.size() - 6] ^= 1;
    bzip2[bzip2.size() - 12] ^= 1;
    EXPECT_THAT(ErrorOf([&] { AllOf(folder.Write("a", gzip)); }),
                HasSubstr("the gzip stream is damaged: incorrect data check"));
    EXPECT_THAT(ErrorOf([&] { AllOf(folder.Write("b", bzip2)); }),
                HasSubstr("the bzip2 stream is damaged: incorrect data check"));
    EXPECT_THAT(ErrorOf([&] { AllOf(folder.Write("c", "BZhello")); }),
                HasSubstr("the bzip2 stream is damaged: incorrect header"));
}

TEST(ByteSource, SkipsAsManyBytesAsThereAre) {
    TemporaryFolder folder;
    const std::string noise = Noise(200'000);
    for (const std::string &bytes : {noise, Gzip(noise)}) {
        ByteSource source(folder.Write("a", bytes));
        EXPECT_EQ(source.Skip(150'001), 150'001u);
        char next = 0;
        EXPECT_EQ(source.Read({&next, 1}), 1u);
        EXPECT_EQ(next, noise[150'001]);
        EXPECT_EQ(source.Skip(1'000'000'000'000), 200'000u - 150'002u);
    }
}

TEST(ByteSource, ReadsBytesInMemory) {
    const std::string noise = Noise(200'000);
    for (const std::string &bytes : {noise, Gzip(noise), Bzip2(noise)}) {
        ByteSource source("name", bytes);
        EXPECT_EQ(source.StoredSize(), bytes.size());
        EXPECT_EQ(source.Skip(1'000'000), noise.size());
        EXPECT_EQ(source.Again().Skip(1'000'000), noise.size());
    }
    const std::string compressed = Gzip(noise).substr(0, 1000);
    EXPECT_EQ(ErrorOf([&] { ByteSource("name", compressed).Skip(1'000'000); }),
              "name: byte 1000: the gzip stream ends too early");
}

TEST(ByteSource, GivesPeekedBytesAgain) {
    TemporaryFolder folder;
    const std::string noise = Noise(200'000);
    for (const std::string &bytes : {noise, Gzip(noise)}) {
        ByteSource source(folder.Write("a", bytes));
        std::string read(199'990, '\0');
        const auto text = [](std::span<const char> span) { return std::string(span.begin(), span.end()); };
        EXPECT_EQ(text(source.Peek(10)), noise.substr(0, 10));
        EXPECT_EQ(text(source.Peek(3)), noise.substr(0, 3));
        EXPECT_EQ(text(source.Peek(100'000)), noise.substr(0, 100'000));
        EXPECT_EQ(source.Skip(5), 5u);
        EXPECT_EQ(text(source.Peek(10)), noise.substr(5, 10));
        EXPECT_EQ(source.Read(read), read.size());
        EXPECT_EQ(read, noise.substr(5, read.size()));
        EXPECT_EQ(text(source.Peek(1'000'000'000'000)), noise.substr(199'995));
        EXPECT_EQ(source.Skip(100), 5u);
        EXPECT_TRUE(source.Peek(1).empty());
    }
}

TEST(ByteSource, KnowsNoSizeOfWhatOnlyReadingTells) {
    TemporaryFolder folder;
    EXPECT_EQ(ByteSource(folder.Write("a", "four")).StoredSize(), 4u);
    EXPECT_EQ(ByteSource("/dev/zero").StoredSize(), std::nullopt);
    EXPECT_EQ(ByteSource("/proc/cpuinfo").StoredSize(), std::nullopt);
}

TEST(ByteSource, RefusesWhatIsNoFile) {
    TemporaryFolder folder;
    EXPECT_EQ(ErrorOf([&] { ByteSource(folder.File("absent")); }),
              folder.File("absent") + ": cannot be read: No such file or directory");
    EXPECT_EQ(ErrorOf([&] { ByteSource(folder.Path()); }),
              folder.Path() + ": cannot be read: Is a directory");
}

TEST(ByteSource, RefusesAFileWithoutReadPermission) {
    if (geteuid() == 0)
        GTEST_SKIP() << "root may read everything";
    TemporaryFolder folder;
    const std::string path = folder.Write("closed", "x");
    std::filesystem::permissions(path, std::filesystem::perms::none);
    EXPECT_EQ(ErrorOf([&] { ByteSource{path}; }), path + ": cannot be read: Permission denied");
}

TEST(ByteSource, TellsAWatcherHowManyBytesWereTaken) {
    TemporaryFolder folder;
    ByteSource source(folder.Write("a", std::string(200'000, 'x')));
    std::vector<std::uint64_t> seen;
    source.SetWatcher([&](std::uint64_t bytes) { seen.push_back(bytes); });
    EXPECT_EQ(source.Skip(300'000), 200'000u);
    EXPECT_GE(seen.size(), 3u);
    EXPECT_TRUE(std::ranges::is_sorted(seen));
    EXPECT_EQ(seen.back(), 200'000u);
}

TEST(ByteSource, IsStoppedByItsWatcherAlsoWhenItIsReadAgain) {
    struct Stop {};
    TemporaryFolder folder;
    ByteSource source(folder.Write("a", std::string(200'000, 'x')));
    source.SetWatcher([](std::uint64_t) { throw Stop(); });
    EXPECT_THROW(source.Skip(200'000), Stop);
    EXPECT_THROW(source.Again().Skip(200'000), Stop);
}
