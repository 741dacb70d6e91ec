#include "hosts/report/Packing.h"

#include "TemporaryFolder.h"
#include "formats/files/ReadBytes.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>

using namespace report;

TEST(Packing, GzipIsReadBack) {
    std::string bytes;
    for (int i = 0; i < 100000; ++i)
        bytes += char(i % 7);
    const std::string packed = Gzip(bytes);
    EXPECT_LT(packed.size(), bytes.size() / 100);
    formats::ByteSource source("packed", packed);
    EXPECT_EQ(formats::ReadBytes(source, bytes.size()), bytes);
}

TEST(Packing, Base64IsThatOfTheStandard) {
    EXPECT_EQ(Base64(""), "");
    EXPECT_EQ(Base64("foobar"), "Zm9vYmFy");
    EXPECT_EQ(Base64(std::string("\0\xff", 2)), "AP8=");
}

TEST(Packing, APictureIsAPngOfItsSize) {
    const std::array<std::uint8_t, 6> pixels{0, 50, 100, 150, 200, 250};
    const std::string png = GreyPng(pixels, 3);
    EXPECT_TRUE(png.starts_with("\x89PNG\r\n\x1a\n"));
    EXPECT_EQ(png.substr(8, 25),
              std::string("\0\0\0\x0dIHDR\0\0\0\x03\0\0\0\x02\x08\0\0\0\0", 21) + png.substr(29, 4));
    // The chunk's check sum, from another implementation.
    EXPECT_EQ(png.substr(29, 4), std::string("\xb8\x1f\x39\xc6", 4));
    EXPECT_TRUE(png.ends_with(std::string("\0\0\0\0IEND\xae\x42\x60\x82", 12)));
}

TEST(Packing, ChecksumsAreThoseOfTheFilesBytes) {
    TemporaryFolder folder;
    std::ofstream(folder.File("a")) << "abc";
    EXPECT_EQ(ChecksumOf(folder.File("a")),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(ChecksumOf(folder.File("none")), "");
    EXPECT_EQ(ChecksumOf("/dev/zero"), "");
    EXPECT_EQ(PolicyDigest("abc"), "sha256-ungWv48Bz+pBQUDeXa4iI7ADYaOWF3qctBD/YfIAFa0=");
}
