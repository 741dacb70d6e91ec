#include "placement/Rotations.h"

#include "SyntheticModel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numbers>

using namespace placement;

namespace {

double AngleBetween(const Matrix &a, const Matrix &b) {
    double trace = 0;
    for (std::size_t i = 0; i < 9; ++i)
        trace += a[i] * b[i];
    return std::acos(std::clamp((trace - 1) / 2, -1.0, 1.0));
}

} // namespace

TEST(Rotations, NoTurnIsFarFromOneOfTheSet) {
    const double step = 20 * std::numbers::pi / 180;
    const std::vector<Matrix> set = SpreadRotations(RotationsForStep(step));
    std::mt19937 random(2);
    double farthest = 0;
    for (int i = 0; i < 1000; ++i) {
        const Matrix rotation = RandomRotation(random);
        double nearest = 10;
        for (const Matrix &member : set)
            nearest = std::min(nearest, AngleBetween(rotation, member));
        farthest = std::max(farthest, nearest);
    }
    // The best possible covering of cells of step³ would reach half of √3 steps.
    EXPECT_LT(farthest, 1.3 * step);
}

TEST(Rotations, TheirNumberIsThatOfTheCells) {
    EXPECT_EQ(RotationsForStep(30 * std::numbers::pi / 180), 550u);
    EXPECT_EQ(RotationsForStep(10), 24u);
}
