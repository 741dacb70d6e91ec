#include "placement/Refinement.h"

#include "SyntheticModel.h"

#include "placement/DistinctPlaces.h"

#include <gtest/gtest.h>

using namespace placement;

TEST(Refinement, ComesBackFromADisplacedPose) {
    const std::vector<ModelAtom> atoms = RandomModel(80, 1);
    const PointModel model = MakePointModel(atoms);
    const Volume map = DensityOf(atoms, 10, {1, 1, 1}, 15);
    const WeightedPoints points(model.points, model.weights);
    const Pose truth{{1, 0, 0, 0, 1, 0, 0, 0, 1}, model.centre};
    std::mt19937 random(2);
    std::normal_distribution<double> normal;
    for (int i = 0; i < 10; ++i) {
        const Pose start{RotationBy(0.1 * Point{normal(random), normal(random), normal(random)}),
                         model.centre + Point{normal(random), normal(random), normal(random)}};
        const ScoredPose found = Refine(map, points, model.gyration, start, {50, 0.5, 3});
        // The density's maximum under the points lies a little beside the model that it was made of.
        EXPECT_LT(std::sqrt(SquaredRmsd(model, found.pose, truth)), 0.8);
        EXPECT_GT(found.score, ScorePose(map, points, start).score);
        EXPECT_NEAR(found.score, ScorePose(map, points, found.pose).score, 1e-6 * found.score);
    }
}

TEST(Refinement, EndsAtOnceWhereThereIsNoSlope) {
    const PointModel model = MakePointModel(RandomModel(10, 1));
    const Volume map{{4, 4, 4}, {50, 50, 50}, {-100, -100, -100}, LargeVector<float>(64, 2)};
    const ScoredPose found =
        Refine(map, WeightedPoints(model.points, model.weights), model.gyration, {}, {20, 1, 3});
    EXPECT_EQ(Length(found.pose.centre), 0);
}

TEST(Refinement, AModelOfOnePointOnlyMoves) {
    const std::vector<ModelAtom> atom{{{30, 30, 30}, 6, 0, 0, true}};
    const PointModel model = MakePointModel(atom);
    const Volume map = DensityOf(atom, 8, {1, 1, 1}, 20);
    const ScoredPose found = Refine(map, WeightedPoints(model.points, model.weights), model.gyration,
                                    {{1, 0, 0, 0, 1, 0, 0, 0, 1}, {31, 29, 30.5}}, {50, 0.5, 3});
    EXPECT_LT(Length(found.pose.centre - Point{30, 30, 30}), 0.5);
}
