#include "placement/MapPoints.h"

#include "SyntheticModel.h"

#include <gtest/gtest.h>

using namespace placement;

TEST(MapPoints, LieInTheDensity) {
    const std::vector<ModelAtom> atoms = RandomModel(80, 1);
    const Volume map = DensityOf(atoms, 8, {2, 2, 2}, 20);
    const MapPoints points = PointsOf(map, 8, 1);
    EXPECT_EQ(points.resolution, 8);
    ASSERT_GT(points.points.size(), 100u);
    const PointModel model = MakePointModel(atoms), density = MakePointModel(points.points);
    EXPECT_LT(Length(model.centre - density.centre), 1.5);
    EXPECT_NEAR(density.gyration, model.gyration, 0.2 * model.gyration);
    for (const ModelAtom &point : points.points)
        EXPECT_GT(point.electrons, 0);
}

TEST(MapPoints, ConsecutiveOnesLieCloseTogether) {
    const MapPoints points = PointsOf(DensityOf(RandomModel(80, 1), 8, {2, 2, 2}, 20), 8, 1);
    double sum = 0;
    for (std::size_t i = 1; i < points.points.size(); ++i) {
        EXPECT_EQ(points.points[i].residue, i);
        sum += Length(points.points[i].position - points.points[i - 1].position);
    }
    // Voxels are 2.5 Å wide, the model is more than ten times that.
    EXPECT_LT(sum / double(points.points.size() - 1), 5);
}

TEST(MapPoints, OfALargeMapTheyAreFewerAndItsResolutionCoarser) {
    const Volume map = DensityOf(RandomModel(3000, 1), 5, {1.6, 1.6, 1.6}, 10);
    const MapPoints points = PointsOf(map, 5, 2);
    EXPECT_LE(points.points.size(), 10000u);
    EXPECT_GT(points.points.size(), 6000u);
    EXPECT_GT(points.resolution, 5);
}

TEST(MapPoints, AConstantMapHasNone) {
    const Volume map{{20, 20, 20}, {2, 2, 2}, {}, LargeVector<float>(8000, 3)};
    EXPECT_TRUE(PointsOf(map, 8, 1).points.empty());
}
