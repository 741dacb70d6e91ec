#include "Compress.h"
#include "DataAdder.h"
#include "Listener.h"
#include "MapBytes.h"
#include "ModelGuard.h"
#include "TemporaryFolder.h"
#include "formats/files/FileError.h"
#include "formats/maps/MapFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <random>
#include <thread>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace formats;
using namespace VARNO;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace fs = std::filesystem;

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

/// A folder of its own, and a model that is empty again after the test.
class MapFile : public testing::Test {
protected:
    const Grid &Read(const std::string &bytes) { return *ReadMap(m_folder.Write("map", bytes), &m_report); }

    /// The error without the file's name in front.
    std::string ErrorOf(const std::string &bytes) { return ErrorOfFile(m_folder.Write("map", bytes)); }

    std::string ErrorOfFile(const std::string &path) {
        return ErrorIn(path, [&] { ReadMap(path, &m_report); });
    }

    std::string ErrorIn(const std::string &path, const std::function<void()> &action) {
        try {
            action();
        } catch (const FileError &error) {
            EXPECT_THAT(error.what(), StartsWith(path + ": "));
            return std::string(error.what()).substr(std::min(path.size() + 2, std::strlen(error.what())));
        }
        return "no error";
    }

    ModelGuard m_guard;
    TemporaryFolder m_folder;
    MapReport m_report;
};

std::vector<float> ValuesOf(const Grid &grid) {
    return {grid.Values().begin(), grid.Values().end()};
}

MapBytes SmallMap() {
    return MapBytes(2, 3, 1).CountingVoxels(6);
}

std::size_t NodesOfTheModel() {
    const Space *space = Space::instance();
    return std::size_t(space->PartEnd() - space->PartBegin());
}

struct NoisyGrid : Grid {
    NoisyGrid()
        : Grid("noise", {5, 4, 3}, {-12.345f, 67.89f, 0.0625f}, {1.1f, 2.2f, 3.3f}, {90, 90, 90}) {
        std::mt19937 random(7);
        for (float &value : Values())
            value = std::normal_distribution<float>(3, 10)(random);
    }
};

std::int32_t IntAt(const std::string &bytes, std::size_t word) {
    std::int32_t value;
    std::memcpy(&value, bytes.data() + 4 * (word - 1), 4);
    return value;
}

float FloatAt(const std::string &bytes, unsigned word) {
    return std::bit_cast<float>(IntAt(bytes, word));
}

/// Whatever the file stores first, this is the value of voxel (x, y, z).
float ValueAt(unsigned x, unsigned y, unsigned z) {
    return float(x + 10 * y + 100 * z);
}

} // namespace

TEST_F(MapFile, AddsAGridNamedAfterTheFileToTheModel) {
    const Grid *grid = ReadMap(m_folder.Write("emd_1.map.gz", SmallMap()));
    EXPECT_EQ(grid->GetName(), "emd_1");
    EXPECT_TRUE(grid->IsAttached());
    EXPECT_EQ(NodesOfTheModel(), 1u);
    EXPECT_EQ(grid->Dimensions(), (Vector<unsigned, 3>(2, 3, 1)));
    EXPECT_EQ(grid->Spacing(), (Vector<float, 3>(2, 2, 2)));
    EXPECT_EQ(grid->Origin(), (Vector<float, 3>(0, 0, 0)));
    EXPECT_EQ(grid->Angles(), (Vector<float, 3>(90, 90, 90)));
    EXPECT_THAT(ValuesOf(*grid), ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST_F(MapFile, SaysWhatTheHeaderSaid) {
    Read(SmallMap().Text(57, "a title   ").Int(56, 1));
    EXPECT_EQ(m_report.compression, "");
    EXPECT_EQ(m_report.mode, 2);
    EXPECT_FALSE(m_report.bigEndian);
    EXPECT_EQ(m_report.axisOrder, "XYZ");
    EXPECT_EQ(m_report.originSource, "NSTART");
    EXPECT_EQ(m_report.title, "a title");
    EXPECT_EQ(m_report.minimum, 1);
    EXPECT_EQ(m_report.maximum, 6);
    EXPECT_EQ(m_report.mean, 3.5);
    EXPECT_DOUBLE_EQ(m_report.deviation, std::sqrt(35.0 / 12));
    EXPECT_THAT(m_report.warnings, IsEmpty());
}

TEST_F(MapFile, TakesALabelThatIsNoTextForNone) {
    Read(SmallMap().Text(57, "\x07\x80\xff memory"));
    EXPECT_EQ(m_report.title, "");
}

TEST_F(MapFile, TellsTheModelOfOneAddition) {
    Listener listener;
    Compound *grid = ReadMap(m_folder.Write("map", SmallMap()));
    ASSERT_EQ(listener.notices.size(), 1u);
    EXPECT_THAT(listener.notices[0].nodes, ElementsAre(grid));
}

TEST_F(MapFile, AddsNothingWhenTheModelRefuses) {
    Space::instance()->SetReadOnly(true);
    EXPECT_EQ(ErrorOf(SmallMap()), "the model accepts no additions at present");
    Space::instance()->SetReadOnly(false);
    {
        DataAdder<Space> other(Space::instance());
        EXPECT_EQ(ErrorOf(SmallMap()), "the model accepts no additions at present");
    }
    EXPECT_EQ(NodesOfTheModel(), 0u);
}

TEST_F(MapFile, ReadsAGridOfItsOwnWithoutTouchingTheModel) {
    const std::string path = m_folder.Write("map", SmallMap());
    const Grid &added = *ReadMap(path);
    Space::instance()->SetReadOnly(true);
    ByteSource source(path);
    const std::unique_ptr<Grid> grid = ReadFreeMap(source, &m_report);
    Space::instance()->SetReadOnly(false);
    EXPECT_EQ(NodesOfTheModel(), 1u);
    EXPECT_EQ(grid->GetParent(), nullptr);
    EXPECT_TRUE(std::ranges::equal(grid->Values(), added.Values()));
    EXPECT_EQ(m_report.mode, 2);
}

TEST_F(MapFile, AddsNothingWhenTheFileIsBad) {
    EXPECT_NE(ErrorOf(SmallMap().Int(4, 3)), "no error");
    EXPECT_NE(ErrorOf(MapBytes(2, 3, 1).CountingVoxels(5)), "no error");
    EXPECT_EQ(NodesOfTheModel(), 0u);
}

TEST_F(MapFile, ReadsEveryModeInBothByteOrders) {
    for (const bool big : {false, true}) {
        SCOPED_TRACE(big ? "big-endian" : "little-endian");
        EXPECT_THAT(ValuesOf(Read(MapBytes(3, 1, 1, 0, big)
                                      .Voxel(std::int8_t(-128))
                                      .Voxel(std::int8_t(127))
                                      .Voxel(std::int8_t(-1)))),
                    ElementsAre(-128, 127, -1));
        EXPECT_THAT(ValuesOf(Read(MapBytes(3, 1, 1, 1, big)
                                      .Voxel(std::int16_t(-32768))
                                      .Voxel(std::int16_t(32767))
                                      .Voxel(std::int16_t(258)))),
                    ElementsAre(-32768, 32767, 258));
        EXPECT_THAT(ValuesOf(Read(MapBytes(3, 1, 1, 2, big).Voxel(1.5f).Voxel(-3e38f).Voxel(1e-45f))),
                    ElementsAre(1.5f, -3e38f, 1e-45f));
        EXPECT_THAT(ValuesOf(Read(MapBytes(3, 1, 1, 6, big)
                                      .Voxel(std::uint16_t(65535))
                                      .Voxel(std::uint16_t(32768))
                                      .Voxel(std::uint16_t(258)))),
                    ElementsAre(65535, 32768, 258));
        EXPECT_EQ(m_report.bigEndian, big);
        EXPECT_THAT(m_report.warnings, IsEmpty());
    }
}

TEST_F(MapFile, ReadsHalfFloats) {
    MapBytes bytes(9, 1, 1, 12);
    for (const int half : {0x3c00, 0xc100, 0x7bff, 0x0001, 0x03ff, 0x0400, 0x8001, 0x7c00, 0xfe00})
        bytes.Voxel(std::uint16_t(half));
    EXPECT_THAT(ValuesOf(Read(bytes)),
                ElementsAre(1.0f, -2.5f, 65504.0f, 0x1p-24f, 0x1.ff8p-15f, 0x1p-14f, -0x1p-24f, 0.0f, 0.0f));
    EXPECT_THAT(m_report.warnings, ElementsAre("2 of 9 voxels are not finite and were read as 0"));
}

TEST_F(MapFile, ReadsEveryAxisOrder) {
    const int size[] = {2, 3, 4};
    const int start[] = {-5, 7, 11};
    for (const std::string order : {"XYZ", "XZY", "YXZ", "YZX", "ZXY", "ZYX"}) {
        SCOPED_TRACE(order);
        const unsigned c = unsigned(order[0] - 'X'), r = unsigned(order[1] - 'X'),
                       s = unsigned(order[2] - 'X');
        MapBytes bytes{size[c], size[r], size[s]};
        bytes.Int(5, start[c]).Int(6, start[r]).Int(7, start[s]);
        bytes.Int(8, 20).Int(9, 30).Int(10, 40).Float(11, 20).Float(12, 60).Float(13, 120);
        bytes.Int(17, int(c + 1)).Int(18, int(r + 1)).Int(19, int(s + 1));
        int at[3];
        for (at[s] = 0; at[s] < size[s]; ++at[s])
            for (at[r] = 0; at[r] < size[r]; ++at[r])
                for (at[c] = 0; at[c] < size[c]; ++at[c])
                    bytes.Voxel(ValueAt(at[0], at[1], at[2]));
        const Grid &grid = Read(bytes);
        ASSERT_EQ(grid.Dimensions(), (Vector<unsigned, 3>(2, 3, 4)));
        EXPECT_EQ(grid.Spacing(), (Vector<float, 3>(1, 2, 3)));
        EXPECT_EQ(grid.Origin(), (Vector<float, 3>(-5, 14, 33)));
        EXPECT_EQ(m_report.axisOrder, order);
        for (int z = 0; z < 4; ++z)
            for (int y = 0; y < 3; ++y)
                for (int x = 0; x < 2; ++x)
                    EXPECT_EQ(grid.GetValue(unsigned(x), unsigned(y), unsigned(z)), ValueAt(x, y, z))
                        << x << y << z;
    }
}

TEST_F(MapFile, ReadsAxesThatNameNoneInOrderAndSaysSo) {
    const auto warning = [&](int columns, int rows, int sections) {
        EXPECT_EQ(Read(SmallMap().Int(17, columns).Int(18, rows).Int(19, sections)).Dimensions(),
                  (Vector<unsigned, 3>(2, 3, 1)));
        return m_report.warnings.size() == 1 ? m_report.warnings[0] : "";
    };
    EXPECT_EQ(warning(0, 0, 0), "MAPC MAPR MAPS (word 17): 0, 0, 0 name no axes; read as 1, 2, 3");
    EXPECT_EQ(warning(10, 11, 12), "MAPC MAPR MAPS (word 17): 10, 11, 12 name no axes; read as 1, 2, 3");
    EXPECT_EQ(warning(-1, 4, INT32_MIN),
              "MAPC MAPR MAPS (word 17): -1, 4, -2147483648 name no axes; read as 1, 2, 3");
}

TEST_F(MapFile, TakesTheOriginFromTheStartIndicesWhereTheOriginWordsAreZero) {
    EXPECT_EQ(Read(SmallMap().Int(5, -50).Int(6, 1).Int(7, 3)).Origin(), (Vector<float, 3>(-100, 2, 6)));
    EXPECT_EQ(m_report.originSource, "NSTART");
    EXPECT_THAT(m_report.warnings, IsEmpty());
}

TEST_F(MapFile, TakesTheOriginWordsWhereOneIsNotZeroAndNeverAddsTheStartIndices) {
    EXPECT_EQ(Read(SmallMap().Int(5, -50).Int(6, 1).Int(7, 3).Float(51, -30.25f)).Origin(),
              (Vector<float, 3>(0, -30.25f, 0)));
    EXPECT_EQ(m_report.originSource, "ORIGIN");
    EXPECT_THAT(m_report.warnings, IsEmpty());
}

TEST_F(MapFile, TakesOriginWordsThatAreNoiseForZero) {
    EXPECT_EQ(Read(SmallMap().Int(5, 4).Float(50, 1e-7f).Float(51, -0.0f).Int(52, 17)).Origin(),
              (Vector<float, 3>(8, 0, 0)));
    EXPECT_EQ(m_report.originSource, "NSTART");
}

TEST_F(MapFile, PassesOverOriginWordsThatAreNoPosition) {
    for (const auto &[value, text] : {std::pair(notANumber, "nan"), {-infinity, "-inf"}, {2e6f, "2e+06"}}) {
        EXPECT_EQ(Read(SmallMap().Int(5, 4).Float(50, 12).Float(51, value)).Origin(),
                  (Vector<float, 3>(8, 0, 0)));
        EXPECT_EQ(m_report.originSource, "NSTART");
        EXPECT_THAT(m_report.warnings, ElementsAre(std::string("ORIGIN Y (word 51): ") + text +
                                                   " Å is not a position; NSTART is used"));
    }
}

TEST_F(MapFile, DividesTheCellByTheSamplesNotByTheVoxels) {
    EXPECT_EQ(Read(SmallMap().Int(8, 8).Int(9, 4).Int(10, 2)).Spacing(), (Vector<float, 3>(0.5f, 1.5f, 1)));
}

TEST_F(MapFile, TakesTheVoxelsForSamplesThatAreZero) {
    // File order is z, x, y: the grid is 3 x 1 x 2.
    const MapBytes bytes = SmallMap().Int(17, 3).Int(18, 1).Int(19, 2).Int(8, 0).Int(9, 0).Int(10, 0);
    EXPECT_EQ(Read(MapBytes(bytes).Float(11, 3).Float(12, 1).Float(13, 2)).Spacing(),
              (Vector<float, 3>(1, 1, 1)));
    EXPECT_THAT(m_report.warnings, ElementsAre("MX (word 8): 0 samples; read as the number of voxels, 3",
                                               "MY (word 9): 0 samples; read as the number of voxels, 1",
                                               "MZ (word 10): 0 samples; read as the number of voxels, 2"));
}

TEST_F(MapFile, FindsTheByteOrderWhereTheStampIsAbsentOrWrong) {
    const auto warning = [&](bool big, const std::string &stamp) {
        EXPECT_THAT(ValuesOf(Read(MapBytes(3, 1, 1, 2, big).CountingVoxels(3).Stamp(stamp))),
                    ElementsAre(1, 2, 3));
        EXPECT_EQ(m_report.bigEndian, big);
        return m_report.warnings.size() == 1 ? m_report.warnings[0] : "";
    };
    const std::string little = "; read as little-endian, as the dimensions show";
    const std::string big = "; read as big-endian, as the dimensions show";
    EXPECT_EQ(warning(false, ""), "MACHST (word 54): 00 00 00 00 is not a machine stamp" + little);
    EXPECT_EQ(warning(true, ""), "MACHST (word 54): 00 00 00 00 is not a machine stamp" + big);
    EXPECT_EQ(warning(false, std::string("\0\0DD", 4)),
              "MACHST (word 54): 00 00 44 44 is not a machine stamp" + little);
    EXPECT_EQ(warning(false, "\x11\x11"),
              "MACHST (word 54): 11 11 00 00 is the wrong machine stamp" + little);
    EXPECT_EQ(warning(true, "DA"), "MACHST (word 54): 44 41 00 00 is the wrong machine stamp" + big);
    EXPECT_EQ(warning(false, "DA"), "");
    EXPECT_EQ(warning(false, "DD  "), "");
    EXPECT_EQ(warning(false, "D@"), "");
}

TEST_F(MapFile, FindsTheByteOrderOfTheLargestAndSmallestDimensions) {
    for (const bool big : {false, true})
        for (const int count : {1, 255, 256, 65535}) {
            const std::string voxels(std::size_t(count), '\x05');
            EXPECT_EQ(Read(MapBytes(count, 1, 1, 0, big).Append(voxels).Stamp("")).Dimensions()[0],
                      unsigned(count));
            EXPECT_EQ(m_report.bigEndian, big);
        }
}

TEST_F(MapFile, ReadsAnOldHeaderAndSaysSo) {
    EXPECT_THAT(ValuesOf(Read(SmallMap().Text(53, std::string(4, '\0')))), ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_THAT(m_report.warnings,
                ElementsAre("MAP (word 53): the word \"MAP \" is missing; read as an old header"));
}

TEST_F(MapFile, PassesOverAnExtendedHeaderAndWhatFollowsTheVoxels) {
    const MapBytes bytes =
        MapBytes(2, 1, 1).Int(24, 80).Append(std::string(80, 'x')).CountingVoxels(2).Append("end");
    for (const std::string &compressed : {std::string(bytes), Gzip(bytes), Bzip2(bytes)})
        EXPECT_THAT(ValuesOf(Read(compressed)), ElementsAre(1, 2));
}

TEST_F(MapFile, ReadsVoxelsThatAreNotFiniteAsZeroAndCountsThem) {
    EXPECT_THAT(
        ValuesOf(Read(
            MapBytes(5, 1, 1).Voxel(1.0f).Voxel(notANumber).Voxel(infinity).Voxel(-infinity).Voxel(-5.0f))),
        ElementsAre(1, 0, 0, 0, -5));
    EXPECT_EQ(m_report.minimum, -5);
    EXPECT_EQ(m_report.maximum, 1);
    EXPECT_EQ(m_report.mean, -2);
    EXPECT_EQ(m_report.deviation, 3);
    EXPECT_THAT(m_report.warnings, ElementsAre("3 of 5 voxels are not finite and were read as 0"));
}

TEST_F(MapFile, RefusesAHeaderWordThatMakesNoSense) {
    const auto ints = [&](unsigned word, int value) { return ErrorOf(SmallMap().Int(word, value)); };
    const auto floats = [&](unsigned word, float value) { return ErrorOf(SmallMap().Float(word, value)); };
    EXPECT_EQ(ints(1, 0), "NX (word 1): 0 voxels, must be 1 to 65535");
    EXPECT_EQ(ints(2, -20), "NY (word 2): -20 voxels, must be 1 to 65535");
    EXPECT_EQ(ints(3, 2'000'000), "NZ (word 3): 2000000 voxels, must be 1 to 65535");
    EXPECT_EQ(ints(4, 3), "MODE (word 4): 3 is not supported, only 0, 1, 2, 6 and 12 are");
    EXPECT_EQ(ints(4, 101), "MODE (word 4): 101 is not supported, only 0, 1, 2, 6 and 12 are");
    EXPECT_EQ(ints(4, -1), "MODE (word 4): -1 is not supported, only 0, 1, 2, 6 and 12 are");
    EXPECT_EQ(ints(5, 1'000'000), "NXSTART (word 5): 1000000 puts the map's first voxel at 2e+06 Å");
    EXPECT_EQ(ints(7, -2'000'000'000),
              "NZSTART (word 7): -2000000000 puts the map's first voxel at -4e+09 Å");
    EXPECT_EQ(ints(8, -1), "MX (word 8): -1 samples, must be 0 to 65535");
    EXPECT_EQ(ints(10, 1 << 30), "MZ (word 10): 1073741824 samples, must be 0 to 65535");
    EXPECT_EQ(floats(11, 0), "CELLA X (word 11): 0 Å is not a cell length, so the scale is unknown");
    EXPECT_EQ(floats(12, -4), "CELLA Y (word 12): -4 Å is not a cell length, so the scale is unknown");
    EXPECT_EQ(floats(13, notANumber),
              "CELLA Z (word 13): nan Å is not a cell length, so the scale is unknown");
    EXPECT_EQ(floats(13, infinity), "CELLA Z (word 13): inf Å is not a cell length, so the scale is unknown");
    EXPECT_EQ(floats(11, 4e-10f),
              "CELLA X (word 11): 4e-10 Å make voxels of 2e-10 Å, must be 0.001 to 1000 Å");
    EXPECT_EQ(floats(11, 3e38f),
              "CELLA X (word 11): 3e+38 Å make voxels of 1.5e+38 Å, must be 0.001 to 1000 Å");
    EXPECT_EQ(ErrorOf(SmallMap().Float(11, 0).Float(14, 0)),
              "CELLA X (word 11): 0 Å is not a cell length, so the scale is unknown");
    EXPECT_EQ(floats(14, 0), "CELLB ALPHA (word 14): 0 degrees: the cell is not orthogonal");
    EXPECT_EQ(floats(15, 94.326f), "CELLB BETA (word 15): 94.326 degrees: the cell is not orthogonal");
    EXPECT_EQ(floats(16, notANumber), "CELLB GAMMA (word 16): nan degrees: the cell is not orthogonal");
    EXPECT_EQ(ints(17, 2), "MAPC MAPR MAPS (word 17): 2, 2, 3 do not name each axis once");
    EXPECT_EQ(ints(18, 2'000'000'000),
              "MAPC MAPR MAPS (word 17): 1, 2000000000, 3 do not name each axis once");
    EXPECT_EQ(ints(24, -80), "NSYMBT (word 24): -80 bytes of extended header, must be 0 to 67108864");
    EXPECT_EQ(ints(24, 2'000'000'000),
              "NSYMBT (word 24): 2000000000 bytes of extended header, must be 0 to 67108864");
}

TEST_F(MapFile, NamesTheWordOfTheAxisInFileOrder) {
    EXPECT_THAT(ErrorOf(SmallMap().Int(17, 3).Int(18, 1).Int(19, 2).Int(5, 1'000'000)),
                StartsWith("NXSTART (word 5): 1000000 "));
}

TEST_F(MapFile, AllowsAnglesThatAreRightUpToRounding) {
    EXPECT_NO_THROW(Read(SmallMap().Float(14, 90.001f).Float(15, 89.995f)));
    EXPECT_THAT(ErrorOf(SmallMap().Float(14, 90.02f)), StartsWith("CELLB ALPHA (word 14): 90.02 degrees"));
}

TEST_F(MapFile, RefusesAFileOfAnotherKind) {
    std::string text;
    while (text.size() < 3000)
        text += "ATOM      1  N   ALA A   1      11.104   6.134  -6.504  1.00  0.00\n";
    EXPECT_EQ(ErrorOf(text),
              "NX (word 1): 1297044545 voxels, and no \"MAP \" in word 53: not an MRC/CCP4 map");
}

TEST_F(MapFile, RefusesAMapThatEndsTooEarly) {
    const std::string whole = MapBytes(2, 3, 1).Int(24, 80).Append(std::string(80, 'x')).CountingVoxels(6);
    ASSERT_EQ(whole.size(), 1128u);
    EXPECT_EQ(ErrorOf(""), "the file is empty");
    for (const std::size_t size : {1u, 4u, 500u, 1023u}) {
        const std::string place = "byte " + std::to_string(size);
        EXPECT_EQ(ErrorOf(whole.substr(0, size)),
                  place + ": the map ends too early, a header takes 1024 bytes");
        EXPECT_EQ(ErrorOf(Gzip(whole.substr(0, size))),
                  place + ": the map ends too early, a header takes 1024 bytes");
    }
    for (const std::size_t size : {1024u, 1025u, 1103u, 1104u, 1108u, 1127u})
        for (const std::string &bytes :
             {whole.substr(0, size), Gzip(whole.substr(0, size)), Bzip2(whole.substr(0, size))})
            EXPECT_EQ(ErrorOf(bytes), "byte " + std::to_string(size) +
                                          ": the map ends too early, its header " +
                                          "promises 1128 bytes (2 x 3 x 1 voxels of 4)");
}

TEST_F(MapFile, DecompressesByContentNotByName) {
    const auto read = [&](const std::string &name, const std::string &bytes) {
        const Grid *grid = ReadMap(m_folder.Write(name, bytes), &m_report);
        EXPECT_THAT(ValuesOf(*grid), ElementsAre(1, 2, 3, 4, 5, 6));
        return m_report.compression;
    };
    EXPECT_EQ(read("a.map", Gzip(SmallMap())), "gzip");
    EXPECT_EQ(read("b.map.gz", Bzip2(SmallMap())), "bzip2");
    EXPECT_EQ(read("c.map.gz", SmallMap()), "");
    EXPECT_EQ(read("d.map.bz2", SmallMap()), "");
}

TEST_F(MapFile, RefusesACompressedFileThatIsCutOffOrDamaged) {
    const std::string gzip = Gzip(SmallMap()), bzip2 = Bzip2(SmallMap());
    for (const std::size_t missing : {1u, 8u, 30u}) {
        EXPECT_EQ(ErrorOf(gzip.substr(0, gzip.size() - missing)),
                  "byte " + std::to_string(gzip.size() - missing) + ": the gzip stream ends too early");
        EXPECT_EQ(ErrorOf(bzip2.substr(0, bzip2.size() - missing)),
                  "byte " + std::to_string(bzip2.size() - missing) + ": the bzip2 stream ends too early");
    }
    std::string damaged = gzip;
    damaged[gzip.size() - 5] ^= 1;
    EXPECT_THAT(ErrorOf(damaged), HasSubstr("the gzip stream is damaged"));
}

TEST_F(MapFile, ReadsAPipe) {
    const std::string whole = SmallMap(), pipe = m_folder.File("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string &bytes : {whole, whole + "trailing", Gzip(whole), Bzip2(whole)}) {
        std::thread writer([&] { std::ofstream(pipe, std::ios::binary) << bytes; });
        const Grid *grid = ReadMap(pipe);
        writer.join();
        EXPECT_THAT(ValuesOf(*grid), ElementsAre(1, 2, 3, 4, 5, 6));
    }
    for (const std::string &bytes : {whole.substr(0, 1040), Gzip(whole.substr(0, 1040))}) {
        std::thread writer([&] { std::ofstream(pipe, std::ios::binary) << bytes; });
        EXPECT_EQ(
            ErrorOfFile(pipe),
            "byte 1040: the map ends too early, its header promises 1048 bytes (2 x 3 x 1 voxels of 4)");
        writer.join();
    }
}

TEST_F(MapFile, ReadsBytesInMemory) {
    const std::string whole = SmallMap();
    for (const std::string &bytes : {whole, Gzip(whole), Bzip2(whole)}) {
        ByteSource source("folder/name.map", bytes);
        const Grid *grid = ReadMapFrom(source);
        EXPECT_EQ(grid->GetName(), "name");
        EXPECT_THAT(ValuesOf(*grid), ElementsAre(1, 2, 3, 4, 5, 6));
    }
    EXPECT_EQ(ErrorIn("name",
                      [&] {
                          ByteSource source("name", std::string_view(whole).substr(0, 1000));
                          ReadMapFrom(source);
                      }),
              "byte 1000: the map ends too early, a header takes 1024 bytes");
}

TEST_F(MapFile, RefusesWhatIsNoMap) {
    EXPECT_EQ(ErrorOfFile(m_folder.File("absent")), "cannot be read: No such file or directory");
    EXPECT_EQ(ErrorOfFile(m_folder.Path()), "cannot be read: Is a directory");
    for (const std::string endless : {"/dev/zero", "/proc/cpuinfo"})
        EXPECT_THAT(ErrorOfFile(endless),
                    AllOf(StartsWith("NX (word 1): "), EndsWith(": not an MRC/CCP4 map")));
}

TEST_F(MapFile, SaysThatTheMemoryRanOut) {
#ifdef MORVANEX_SANITIZED
    GTEST_SKIP() << "the sanitizer's own memory is beyond any limit";
#endif
    const std::string path = m_folder.Write("map", MapBytes(1000, 1000, 1000, 0));
    fs::resize_file(path, 1024 + 1'000'000'000);
    const auto readInLittle = [&] {
        rlimit limit;
        limit.rlim_cur = limit.rlim_max = 1'000'000'000;
        setrlimit(RLIMIT_AS, &limit);
        std::fputs(ErrorOfFile(path).c_str(), stderr);
        std::exit(0);
    };
    EXPECT_EXIT(readInLittle(), testing::ExitedWithCode(0), "no memory for 1000000000 voxels");
}

TEST_F(MapFile, RefusesAFileWithoutReadPermission) {
    if (geteuid() == 0)
        GTEST_SKIP() << "root may read everything";
    const std::string path = m_folder.Write("map", SmallMap());
    fs::permissions(path, fs::perms::none);
    EXPECT_EQ(ErrorOfFile(path), "cannot be read: Permission denied");
}

TEST_F(MapFile, RefusesAMapThatTheMachineCannotHold) {
    const std::string path = m_folder.Write("map", MapBytes(65535, 65535, 1000, 0));
    std::error_code tooLarge;
    fs::resize_file(path, 1024 + 65535ull * 65535 * 1000, tooLarge);
    if (tooLarge)
        GTEST_SKIP() << "no file of 4 TB can be made here";
    EXPECT_THAT(ErrorOfFile(path),
                StartsWith("NX NY NZ (words 1 to 3): 4294836225000 voxels take 16383500 MiB, more than three "
                           "quarters of the machine's "));
}

TEST_F(MapFile, ReadsBackWhatItWrote) {
    const NoisyGrid grid;
    WriteMap(m_folder.File("map.mrc"), grid, "noise");
    const Grid &back = *ReadMap(m_folder.File("map.mrc"), &m_report);
    EXPECT_EQ(back.Dimensions(), grid.Dimensions());
    EXPECT_EQ(back.Origin(), grid.Origin());
    for (unsigned axis = 0; axis < 3; ++axis)
        EXPECT_FLOAT_EQ(back.Spacing()[axis], grid.Spacing()[axis]);
    EXPECT_EQ(ValuesOf(back), ValuesOf(grid));
    EXPECT_EQ(m_report.originSource, "ORIGIN");
    EXPECT_EQ(m_report.title, "noise");
    EXPECT_THAT(m_report.warnings, IsEmpty());
}

TEST_F(MapFile, ReadsBackAGridOfManyPortions) {
    Grid grid("large", {70'000 / 100, 100, 3}, {0, 0, 0}, {1, 1, 1}, {90, 90, 90});
    for (std::size_t i = 0; i < grid.Values().size(); ++i)
        grid.Values()[i] = float(i);
    WriteMap(m_folder.File("map"), grid, "");
    EXPECT_EQ(ValuesOf(*ReadMap(m_folder.File("map"))), ValuesOf(grid));
}

TEST_F(MapFile, WritesTheHeaderThatTheFormatAsksFor) {
    Grid grid("g", {2, 1, 1}, {1.5f, 0, -2}, {3, 4, 5}, {90, 90, 90});
    grid.SetValue(0, 0, 0, -1);
    grid.SetValue(1, 0, 0, 4);
    WriteMap(m_folder.File("map"), grid, "made by a test");
    const std::string bytes = ReadFile(m_folder.File("map"));
    ASSERT_EQ(bytes.size(), 1024u + 8);
    const int counts[] = {2, 1, 1, 2, 0, 0, 0, 2, 1, 1};
    for (unsigned i = 0; i < 10; ++i)
        EXPECT_EQ(IntAt(bytes, i + 1), counts[i]) << "word " << i + 1;
    const float cell[] = {6, 4, 5, 90, 90, 90};
    for (unsigned i = 0; i < 6; ++i)
        EXPECT_EQ(FloatAt(bytes, i + 11), cell[i]) << "word " << i + 11;
    for (unsigned i = 0; i < 3; ++i)
        EXPECT_EQ(IntAt(bytes, i + 17), int(i + 1)) << "word " << i + 17;
    EXPECT_EQ(FloatAt(bytes, 20), -1);
    EXPECT_EQ(FloatAt(bytes, 21), 4);
    EXPECT_EQ(FloatAt(bytes, 22), 1.5f);
    EXPECT_EQ(IntAt(bytes, 23), 1);
    EXPECT_EQ(IntAt(bytes, 24), 0);
    EXPECT_EQ(IntAt(bytes, 28), 20140);
    EXPECT_EQ(FloatAt(bytes, 50), 1.5f);
    EXPECT_EQ(FloatAt(bytes, 51), 0);
    EXPECT_EQ(FloatAt(bytes, 52), -2);
    EXPECT_EQ(bytes.substr(208, 8), std::string("MAP \x44\x44\0\0", 8));
    EXPECT_EQ(FloatAt(bytes, 55), 2.5f);
    EXPECT_EQ(IntAt(bytes, 56), 1);
    EXPECT_EQ(bytes.substr(224, 16), std::string("made by a test\0\0", 16));
    EXPECT_EQ(FloatAt(bytes, 257), -1);
    EXPECT_EQ(FloatAt(bytes, 258), 4);
}

TEST_F(MapFile, KeepsEightyCharactersOfTheTitle) {
    WriteMap(m_folder.File("map"), NoisyGrid(), std::string(80, 'a') + "b");
    ReadMap(m_folder.File("map"), &m_report);
    EXPECT_EQ(m_report.title, std::string(80, 'a'));
    EXPECT_EQ(ReadFile(m_folder.File("map"))[224 + 80], '\0');
}

TEST_F(MapFile, LeavesValuesThatAreNotFiniteOutOfTheStatisticsItWrites) {
    Grid grid("g", {3, 1, 1}, {0, 0, 0}, {1, 1, 1}, {90, 90, 90});
    grid.SetValue(0, 0, 0, notANumber);
    grid.SetValue(1, 0, 0, 2);
    grid.SetValue(2, 0, 0, infinity);
    WriteMap(m_folder.File("map"), grid, "");
    const std::string bytes = ReadFile(m_folder.File("map"));
    EXPECT_EQ(FloatAt(bytes, 20), 2);
    EXPECT_EQ(FloatAt(bytes, 21), 2);
    EXPECT_EQ(FloatAt(bytes, 22), 2);
    EXPECT_EQ(FloatAt(bytes, 55), 0);
    EXPECT_TRUE(std::isnan(FloatAt(bytes, 257)));
    EXPECT_EQ(IntAt(bytes, 56), 0);
}

TEST_F(MapFile, RefusesToWriteAGridThatCannotBeReadBack) {
    const std::string path = m_folder.Write("map", "old");
    const auto error = [&](const Grid &grid) { return ErrorIn(path, [&] { WriteMap(path, grid, ""); }); };
    EXPECT_EQ(error(Grid("g", {0, 1, 1}, {0, 0, 0}, {1, 1, 1}, {90, 90, 90})),
              "NX (word 1): 0 voxels, must be 1 to 65535");
    EXPECT_EQ(error(Grid("g", {1, 65536, 1}, {0, 0, 0}, {1, 1, 1}, {90, 90, 90})),
              "NY (word 2): 65536 voxels, must be 1 to 65535");
    EXPECT_EQ(error(Grid("g", {1, 1, 1}, {0, 0, 0}, {1, 1, 1}, {90, 90, 120})),
              "CELLB GAMMA (word 16): 120 degrees: the cell is not orthogonal");
    EXPECT_EQ(ReadFile(path), "old");
}

TEST_F(MapFile, SaysWhenTheDiskIsFull) {
    EXPECT_EQ(ErrorIn("/dev/full", [] { WriteMap("/dev/full", NoisyGrid(), ""); }),
              "cannot be written: No space left on device");
}

TEST_F(MapFile, IsReadWithoutTheModelOnAnotherThread) {
    const std::string path = m_folder.Write("map", SmallMap());
    std::unique_ptr<Grid> grid;
    std::thread([&] {
        ByteSource source(path);
        EXPECT_TRUE(IsMap(source));
        grid = ReadFreeMap(source);
    }).join();
    EXPECT_EQ(Space::instance()->PartBegin(), Space::instance()->PartEnd());
    EXPECT_EQ(grid->GetName(), "map");
    EXPECT_FALSE(grid->Values().empty());
}
