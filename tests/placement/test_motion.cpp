#include "placement/Motion.h"

#include "SyntheticModel.h"

#include <gtest/gtest.h>

#include <numbers>

using namespace placement;

namespace {

void ExpectNear(const Point &a, const Point &b, double tolerance) {
    EXPECT_LT(Length(a - b), tolerance) << a.x << ' ' << a.y << ' ' << a.z;
}

Motion RandomMotion(unsigned seed) {
    std::mt19937 random(seed);
    std::normal_distribution<double> normal(0, 20);
    const Matrix rotation = RandomRotation(random);
    return {rotation, {normal(random), normal(random), normal(random)}};
}

} // namespace

TEST(Motion, IsUndoneByItsInverse) {
    const Motion motion = RandomMotion(1);
    const Point p{3, -4, 5};
    ExpectNear(InverseOf(motion) * (motion * p), p, 1e-9);
    ExpectNear((motion * RandomMotion(2)) * p, motion * (RandomMotion(2) * p), 1e-9);
}

TEST(Motion, MovesAPoseAsItMovesItsPoints) {
    const Motion motion = RandomMotion(3);
    const Pose pose{RandomMotion(4).rotation, {1, 2, 3}}, moved = Moved(motion, pose);
    const Point ofModel{7, 8, 9};
    ExpectNear(moved.rotation * ofModel + moved.centre, motion * (MotionInto(pose) * ofModel), 1e-9);
}

TEST(Motion, IsAScrew) {
    for (unsigned seed = 0; seed < 20; ++seed) {
        const Motion motion = RandomMotion(seed);
        const Screw screw = ScrewOf(motion, {5, 6, 7});
        EXPECT_GE(screw.turn, 0);
        EXPECT_LE(screw.turn, std::numbers::pi);
        // A point of the axis goes along the axis alone, and any other turns about it as well.
        ExpectNear(motion * screw.point, screw.point + screw.rise * screw.axis, 1e-6);
        const Point p{30, -10, 4};
        ExpectNear(motion * p,
                   screw.point + RotationBy(screw.turn * screw.axis) * (p - screw.point) +
                       screw.rise * screw.axis,
                   1e-6);
        EXPECT_NEAR(Dot(screw.point - Point{5, 6, 7}, screw.axis), 0, 1e-6);
    }
}

TEST(Motion, AShiftAloneIsAScrewWithoutTurn) {
    const Screw screw = ScrewOf({{1, 0, 0, 0, 1, 0, 0, 0, 1}, {0, 3, 4}}, {1, 1, 1});
    EXPECT_EQ(screw.turn, 0);
    EXPECT_DOUBLE_EQ(screw.rise, 5);
    ExpectNear(screw.axis, {0, 0.6, 0.8}, 1e-12);
    ExpectNear(screw.point, {1, 1, 1}, 1e-12);
}

TEST(Motion, AFrameHasItsMainAxisAlongZ) {
    const Matrix frame = FrameOf({1, 2, 3}, {3, 1, 0});
    ExpectNear(frame * Point{0, 0, 1}, Unit({1, 2, 3}), 1e-12);
    EXPECT_GT(Dot(frame * Point{1, 0, 0}, {3, 1, 0}), 0);
    ExpectNear(Cross(frame * Point{1, 0, 0}, frame * Point{0, 1, 0}), frame * Point{0, 0, 1}, 1e-12);
    EXPECT_NEAR(Dot(PerpendicularTo({1, 2, 3}), {1, 2, 3}), 0, 1e-12);
    EXPECT_NEAR(Dot(PerpendicularTo({5, 0, 0}), {5, 0, 0}), 0, 1e-12);
}
