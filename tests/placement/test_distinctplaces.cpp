#include "placement/DistinctPlaces.h"

#include "SyntheticModel.h"

#include "placement/Symmetry.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace placement;

TEST(DistinctPlaces, TheRmsdIsThatOfThePoints) {
    const PointModel model = MakePointModel(RandomModel(50, 1));
    std::mt19937 random(1);
    for (int i = 0; i < 20; ++i) {
        const Pose a{RandomRotation(random), {1, 2, 3}}, b{RandomRotation(random), {4, -2, 1}};
        double sum = 0, weight = 0;
        for (std::size_t j = 0; j < model.points.size(); ++j) {
            const Point d =
                a.rotation * model.points[j] + a.centre - (b.rotation * model.points[j] + b.centre);
            sum += model.weights[j] * Dot(d, d);
            weight += model.weights[j];
        }
        EXPECT_NEAR(SquaredRmsd(model, a, b), sum / weight, 1e-9 * sum);
    }
}

TEST(DistinctPlaces, ThoseTakenDifferFromEachOtherAndTheRestFromNone) {
    const PointModel model = MakePointModel(RandomModel(50, 1));
    std::mt19937 random(5);
    std::uniform_real_distribution<double> place(-8, 8);
    std::vector<Pose> poses;
    for (int i = 0; i < 600; ++i)
        poses.push_back({RotationBy(0.05 * Point{place(random), place(random), place(random)}),
                         {place(random), place(random), place(random)}});
    constexpr double rmsd = 5;
    const std::vector<Pose> distinct = Distinct(model, poses, rmsd, poses.size());
    EXPECT_LT(distinct.size(), poses.size());
    const auto isNear = [&](const Pose &a, const Pose &b) { return SquaredRmsd(model, a, b) < rmsd * rmsd; };
    for (std::size_t i = 0; i < distinct.size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            ASSERT_FALSE(isNear(distinct[i], distinct[j]));
    for (const Pose &pose : poses)
        ASSERT_TRUE(std::ranges::any_of(distinct, [&](const Pose &other) {
            return isNear(pose, other) || SquaredRmsd(model, pose, other) == 0;
        }));
    EXPECT_EQ(Distinct(model, poses, rmsd, 7).size(), 7u);
}

TEST(DistinctPlaces, TheBestOfEachGroupStays) {
    const PointModel model = MakePointModel(RandomModel(50, 1));
    const Pose here, near{here.rotation, {0.5, 0, 0}}, far{here.rotation, {40, 0, 0}};
    const std::vector<ScoredPose> best = DistinctBest(model, {{near, 1}, {far, 2}, {here, 3}}, 2, 10);
    ASSERT_EQ(best.size(), 2u);
    EXPECT_EQ(best[0].score, 3);
    EXPECT_EQ(best[1].score, 2);
}

TEST(DistinctPlaces, CopiesOfAPlaceAreOne) {
    const PointModel model = MakePointModel(RandomModel(30, 1));
    const std::vector<Motion> mates = MotionsOf(Symmetry{SymmetryKind::Cyclic, 3}, {});
    DistinctPlaces places(model, 2, mates);
    const Pose pose{RotationBy({0.3, 0.2, 0.1}), {40, 5, 3}};
    EXPECT_TRUE(places.Add(pose));
    EXPECT_FALSE(places.Add(Moved(mates[1], pose)));
    EXPECT_FALSE(places.Add(Moved(mates[2], pose)));
    EXPECT_TRUE(places.Add({pose.rotation, -1 * pose.centre}));
}
