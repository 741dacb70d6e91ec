#include "placement/MapInMap.h"

#include "SyntheticModel.h"

#include <gtest/gtest.h>

#include <numbers>

using namespace placement;

namespace {

constexpr double degree = std::numbers::pi / 180;

/// Two maps of one model: in place, and elsewhere, coarser and perhaps mirrored.
struct TwoMaps {
    Volume map, moved;
    MapMotion truth; ///< lays the second upon the first
};

TwoMaps MapsOf(std::size_t residues, unsigned seed, double resolution, double movedResolution,
               bool mirrored) {
    const std::vector<ModelAtom> atoms = RandomModel(residues, seed);
    std::mt19937 random(seed);
    TwoMaps maps;
    maps.truth = {mirrored, {RandomRotation(random), {25, -40, 13}}};
    const std::array<double, 3> voxel{2, 2, 2};
    maps.map = DensityOf(Moved(atoms, maps.truth.motion.rotation, maps.truth.motion.translation), resolution,
                         voxel, 20);
    maps.moved = DensityOf(atoms, movedResolution, {1.7, 1.7, 1.7}, 20);
    if (mirrored)
        for (std::size_t first = 0; first < maps.moved.values.size(); first += maps.moved.count[0])
            std::reverse(maps.moved.values.begin() + std::ptrdiff_t(first),
                         maps.moved.values.begin() + std::ptrdiff_t(first + maps.moved.count[0]));
    return maps;
}

PlacementParameters Parameters(double resolution) {
    PlacementParameters parameters;
    parameters.resolution = resolution;
    parameters.threads = 2;
    return parameters;
}

void ExpectTruth(const MapInMapResult &result, const TwoMaps &maps) {
    EXPECT_EQ(result.result.verdict, Verdict::Placed);
    EXPECT_EQ(result.motion.mirrored, maps.truth.mirrored);
    const Motion between = InverseOf(maps.truth.motion) * result.motion.motion;
    EXPECT_LT(AngleOf(between.rotation) / degree, 0.5);
    const Point middle =
        maps.moved.At(maps.moved.count[0] / 2, maps.moved.count[1] / 2, maps.moved.count[2] / 2);
    EXPECT_LT(Length(between * middle - middle), 0.2 * 2);
}

} // namespace

TEST(MapInMap, ATurnedMapIsLaidOnItself) {
    const TwoMaps maps = MapsOf(150, 3, 8, 8, false);
    Monitor monitor;
    const MapInMapResult result = FindMapInMap(maps.map, maps.moved, Parameters(8), monitor);
    EXPECT_EQ(result.hand, Hand::AsGiven);
    ExpectTruth(result, maps);
    EXPECT_LT(ResolutionAt(result.shells, 0.5), 8);
}

TEST(MapInMap, AMapOfAnotherResolutionIsLaidOnIt) {
    const TwoMaps maps = MapsOf(600, 4, 7, 12, false);
    Monitor monitor;
    const MapInMapResult result = FindMapInMap(maps.map, maps.moved, Parameters(12), monitor);
    EXPECT_EQ(result.hand, Hand::AsGiven);
    ExpectTruth(result, maps);
}

TEST(MapInMap, AMirroredMapIsToldAndTurnedBack) {
    const TwoMaps maps = MapsOf(150, 5, 8, 8, true);
    Monitor monitor;
    const MapInMapResult result = FindMapInMap(maps.map, maps.moved, Parameters(8), monitor);
    EXPECT_EQ(result.hand, Hand::Mirrored);
    ExpectTruth(result, maps);
    EXPECT_LT(ResolutionAt(result.shells, 0.5), 8);
}

TEST(MapInMap, AMapThatLiesNearlyRightIsRefined) {
    TwoMaps maps = MapsOf(400, 6, 8, 8, false);
    Monitor monitor;
    // Nearly: the moved map is sampled 3 Å and 10 degrees off.
    const Motion off{RotationBy({0, 10 * degree, 0}), {3, 0, 0}};
    const Motion nearly = InverseOf(off) * maps.truth.motion;
    const Lattice lattice{maps.map.count, maps.map.spacing, maps.map.origin};
    maps.moved = MovedMap(maps.moved, {false, nearly}, lattice, 1);
    maps.truth.motion = off;
    const MapInMapResult result = RefineMapInMap(maps.map, maps.moved, Parameters(8), monitor);
    ASSERT_EQ(result.result.verdict, Verdict::Refined);
    EXPECT_LT(AngleOf((InverseOf(off) * result.motion.motion).rotation) / degree, 0.5);
    EXPECT_EQ(result.hand, Hand::Unknown);
}

TEST(MapInMap, AConstantMapIsRefused) {
    const TwoMaps maps = MapsOf(60, 6, 8, 8, false);
    const Volume constant{{20, 20, 20}, {2, 2, 2}, {}, LargeVector<float>(8000, 3)};
    Monitor monitor;
    EXPECT_THROW(FindMapInMap(maps.map, constant, Parameters(8), monitor), std::invalid_argument);
    EXPECT_EQ(FindMapInMap(constant, maps.moved, Parameters(8), monitor).result.verdict, Verdict::NoDensity);
}
