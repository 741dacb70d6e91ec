#include "hosts/report/SceneMap.h"

#include "formats/maps/MapFile.h"

#include <gmock/gmock.h>

using namespace report;
using ::testing::ElementsAre;

namespace {

placement::Volume Ramp(std::size_t nx, std::size_t ny, std::size_t nz) {
    placement::Volume volume{{nx, ny, nz}, {2, 3, 4}, {10, 20, 30}, {}};
    for (std::size_t i = 0; i < nx * ny * nz; ++i)
        volume.values.push_back(float(i));
    return volume;
}

} // namespace

TEST(SceneMap, IsTheWholeMapWhereThatIsSmall) {
    const placement::Volume map = Ramp(4, 3, 2);
    const SceneMap scene = ReduceMap(map, {}, 24);
    EXPECT_EQ(scene.step, 1u);
    EXPECT_EQ(scene.cropped, map.count);
    EXPECT_EQ(scene.volume.values, map.values);
}

TEST(SceneMap, HoldsTheVoxelsRoundTheBox) {
    Box box;
    box.Include({16, 26, 38}, 1); // voxel 3, 2, 2
    const SceneMap scene = ReduceMap(Ramp(8, 8, 8), box, 1000);
    EXPECT_THAT(scene.cropped, ElementsAre(3u, 3u, 3u));
    EXPECT_DOUBLE_EQ(scene.volume.origin.x, 14);
    EXPECT_DOUBLE_EQ(scene.volume.origin.y, 23);
    EXPECT_DOUBLE_EQ(scene.volume.origin.z, 34);
    EXPECT_FLOAT_EQ(scene.volume.values[scene.volume.Index(1, 1, 1)], 3 + 8 * (2 + 8 * 2));
}

TEST(SceneMap, OfABoxOutsideOfTheMapIsTheWholeMap) {
    Box box;
    box.Include({1000, 1000, 1000}, 5);
    EXPECT_THAT(ReduceMap(Ramp(8, 8, 8), box, 1000).cropped, ElementsAre(8u, 8u, 8u));
}

TEST(SceneMap, AveragesNeighboursUntilItIsSmallEnough) {
    const SceneMap scene = ReduceMap(Ramp(5, 4, 4), {}, 12);
    EXPECT_EQ(scene.step, 2u);
    EXPECT_THAT(scene.volume.count, ElementsAre(3u, 2u, 2u));
    EXPECT_THAT(scene.volume.spacing, ElementsAre(4, 6, 8));
    EXPECT_DOUBLE_EQ(scene.volume.origin.x, 11);
    EXPECT_FLOAT_EQ(scene.volume.values[0], (0 + 1 + 5 + 6 + 20 + 21 + 25 + 26) / 8.f);
    EXPECT_FLOAT_EQ(scene.volume.values[2], (4 + 9 + 24 + 29) / 4.f);
}

TEST(SceneMap, InBytesIsAMapThatStandsWhereItDid) {
    const placement::Volume volume = Ramp(4, 3, 2);
    const std::string bytes = ByteMap(volume);
    formats::ByteSource source("map", bytes);
    formats::MapReport report;
    const auto grid = formats::ReadFreeMap(source, &report);
    EXPECT_EQ(report.mode, 0);
    EXPECT_TRUE(report.warnings.empty());
    EXPECT_EQ(grid->Dimensions()[0], 4u);
    EXPECT_EQ(grid->Dimensions()[2], 2u);
    EXPECT_FLOAT_EQ(grid->Spacing()[2], 4);
    EXPECT_FLOAT_EQ(grid->Origin()[0], 10);
    // What the view makes of the bytes: DMIN to DMAX over the words 40 and 41.
    const double step = 23.0 / 255;
    for (std::size_t i = 0; i < volume.values.size(); ++i)
        EXPECT_NEAR(step * double(grid->Values()[i]) + (0 + 23 + step) / 2, double(volume.values[i]),
                    step / 2 + 1e-6);
    EXPECT_EQ(bytes.substr(156, 8), std::string("\x80\xff\xff\xff\x7f\0\0\0", 8));
}

TEST(SceneMap, InBytesMayBeConstant) {
    placement::Volume volume = Ramp(2, 2, 2);
    volume.values.assign(8, 7);
    EXPECT_EQ(ByteMap(volume).size(), 1024u + 8);
}
