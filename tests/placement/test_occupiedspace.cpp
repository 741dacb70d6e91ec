#include "placement/OccupiedSpace.h"

#include "SyntheticModel.h"

#include <gtest/gtest.h>

using namespace placement;

TEST(OccupiedSpace, AModelOverlapsItselfWholly) {
    const PointModel model = MakePointModel(RandomModel(100, 1));
    const Pose pose{RotationBy({1, 2, 3}), {10, -2000, 30}};
    OccupiedSpace occupied;
    EXPECT_EQ(occupied.Overlap(model, pose), 0);
    occupied.Add(model, pose);
    EXPECT_EQ(occupied.Overlap(model, pose), 1);
}

TEST(OccupiedSpace, AnotherTurnOverlapsAndANeighbourDoesNot) {
    const PointModel model = MakePointModel(RandomModel(100, 1));
    OccupiedSpace occupied;
    occupied.Add(model, {});
    EXPECT_GT(occupied.Overlap(model, {RotationBy({2, 0, 0}), {}}), 0.3);
    EXPECT_LT(occupied.Overlap(model, {RotationBy({2, 0, 0}), {1.8 * model.radius, 0, 0}}), 0.05);
    EXPECT_EQ(occupied.Overlap(model, {{}, {3 * model.radius, 0, 0}}), 0);
}

TEST(OccupiedSpace, FarAwayIsStillSomewhere) {
    const PointModel model = MakePointModel(RandomModel(5, 1));
    OccupiedSpace occupied;
    occupied.Add(model, {RotationBy({}), {1e12, -1e12, 0}});
    EXPECT_EQ(occupied.Overlap(model, {RotationBy({}), {0, 0, 0}}), 0);
}
