#include "PlainFit.h"
#include "fit/Rotations.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

/// Three axes and angles of 2 radians: 3 about each.
fit::Preparation ThreeAxes() {
    fit::Preparation fit;
    for (const Point &axis : {Point{1, 0, 0}, Point{0, 1, 0}, Point{0, 0, 1}})
        fit.axes.emplace_back(axis[0], axis[1], axis[2], false);
    fit.angleStep = 2;
    return fit;
}

std::array<double, 4> NumbersOf(const VARNO::Quaternion &q) {
    return {q.w(), q.x(), q.y(), q.z()};
}

} // namespace

TEST(Angles, AQuarterTurnIsTakenThreeTimes) {
    EXPECT_EQ(fit::Angles(std::numbers::pi / 2).Count(), 3u);
    EXPECT_EQ(PlainAngles(std::numbers::pi / 2).size(), 3u);
}

TEST(Angles, AWholeTurnOrMoreIsNeverTaken) {
    EXPECT_EQ(fit::Angles(fit::fullTurn).Count(), 0u);
    EXPECT_EQ(fit::Angles(7).Count(), 0u);
    EXPECT_EQ(fit::Angles(std::nextafter(fit::fullTurn, 0)).Count(), 1u);
}

TEST(Angles, AreCountedAsTheyAddUp) {
    for (int parts = 1; parts < 1000; ++parts)
        EXPECT_EQ(fit::Angles(fit::fullTurn / parts).Count(), PlainAngles(fit::fullTurn / parts).size())
            << parts;
}

TEST(Angles, RoundingMayLeaveTheLastStepBelowTheTurn) {
    int beforeTheTurn = 0, atTheTurn = 0;
    for (std::uint64_t parts = 1; parts < 1000; ++parts)
        ++(fit::Angles(fit::fullTurn / double(parts)).Count() == parts ? atTheTurn : beforeTheTurn);
    EXPECT_GT(atTheTurn, 0);
    EXPECT_GT(beforeTheTurn, 0);
}

TEST(Angles, AStepMustBePositiveAndLargeEnoughToAddUp) {
    EXPECT_TRUE(fit::GrowsToFullTurn(0.1));
    EXPECT_TRUE(fit::GrowsToFullTurn(1e-15));
    EXPECT_TRUE(fit::GrowsToFullTurn(7));
    EXPECT_FALSE(fit::GrowsToFullTurn(4e-16));
    EXPECT_FALSE(fit::GrowsToFullTurn(0));
    EXPECT_FALSE(fit::GrowsToFullTurn(-0.1));
    EXPECT_FALSE(fit::GrowsToFullTurn(NAN));
    const double below = std::nextafter(fit::fullTurn, 0);
    EXPECT_GT(below + 1e-15, below);
    EXPECT_EQ(below + 4e-16, below);
}

TEST(Rotations, AreTheIdentityThenEveryAngleAboutEveryAxis) {
    const fit::Preparation fit = ThreeAxes();
    fit::Rotations rotations(fit);
    EXPECT_EQ(rotations.PerAxis(), 3u);
    ASSERT_EQ(rotations.Count(), 10u);
    EXPECT_EQ(NumbersOf(rotations.At(0)), (std::array<double, 4>{1, 0, 0, 0}));
    for (std::size_t axis = 0; axis < 3; ++axis)
        for (std::size_t angle = 1; angle <= 3; ++angle) {
            std::array<double, 4> expected = {std::cos(double(angle)), 0, 0, 0};
            expected[1 + axis] = std::sin(double(angle));
            EXPECT_EQ(NumbersOf(rotations.At(axis * 3 + angle)), expected) << axis << ' ' << angle;
        }
}

TEST(Rotations, AreTheSameInWhateverOrderTheyAreAskedFor) {
    const fit::Preparation fit = ThreeAxes();
    fit::Rotations backwards(fit);
    for (std::uint64_t number = backwards.Count(); number-- > 0;)
        for (int repeat = 0; repeat < 2; ++repeat)
            EXPECT_EQ(NumbersOf(backwards.At(number)), NumbersOf(fit::Rotations(fit).At(number))) << number;
}
