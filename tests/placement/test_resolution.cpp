#include "placement/Resolution.h"

#include "SyntheticModel.h"

#include <gtest/gtest.h>

using namespace placement;

namespace {

const std::vector<ModelAtom> &Atoms() {
    static const std::vector<ModelAtom> atoms = RandomModel(200, 1);
    return atoms;
}

Volume MapAt(double resolution, double voxel) {
    return DensityOf(Atoms(), resolution, {voxel, voxel, voxel}, 15);
}

double Estimate(const Volume &map, unsigned threads = 1) {
    return EstimateResolution(map, MakePointModel(Atoms()), threads);
}

} // namespace

TEST(EstimateResolution, TellsHowFarAMapIsBlurred) {
    for (const double resolution : {6.0, 8.0, 12.0, 18.0}) {
        const double estimate = Estimate(MapAt(resolution, resolution / 5));
        EXPECT_GT(estimate, resolution / 1.4) << resolution;
        EXPECT_LT(estimate, resolution * 1.4) << resolution;
    }
}

TEST(EstimateResolution, IsThatOfTheWavesAboveTheNoise) {
    Volume little = MapAt(5, 1.5), much = little;
    AddNoise(little, 1, 1);
    AddNoise(much, 4, 1);
    EXPECT_GT(Estimate(much), 1.3 * Estimate(little));
    EXPECT_LT(Estimate(little), 7);
}

TEST(EstimateResolution, IsNoFinerThanTheVoxels) {
    for (const double voxel : {2.0, 2.5, 3.0, 4.0})
        EXPECT_GE(Estimate(MapAt(5, voxel)), 2 * voxel) << voxel;
    EXPECT_LT(Estimate(MapAt(5, 2)), 7);
}

TEST(EstimateResolution, DoesNotDependOnScaleOffsetAndThreads) {
    Volume map = MapAt(8, 2);
    const double estimate = Estimate(map);
    for (float &value : map.values)
        value = 1000 * value - 50;
    EXPECT_NEAR(Estimate(map), estimate, 1e-6);
    EXPECT_EQ(Estimate(map, 3), Estimate(map));
}

TEST(EstimateResolution, AConstantMapAndATinyOneGiveSomeNumber) {
    Volume map{{20, 20, 20}, {2, 2, 2}, {}, LargeVector<float>(8000, 3)};
    EXPECT_GE(Estimate(map), 2);
    EXPECT_LE(Estimate(map), 60);
    const Volume tiny{{1, 2, 3}, {2, 2, 2}, {}, {0, 1, 2, 3, 4, 5}};
    EXPECT_GE(Estimate(tiny), 2);
    EXPECT_LE(Estimate(tiny), 60);
}
