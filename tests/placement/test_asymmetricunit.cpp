#include "placement/AsymmetricUnit.h"

#include "placement/Symmetry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace placement;

TEST(AsymmetricUnit, HoldsOneCopyOfEveryPoint) {
    const Pose frame{FrameOf({1, 2, 3}, {1, 0, 0}), {5, 6, 7}};
    std::mt19937 random(1);
    std::normal_distribution<double> normal(0, 30);
    for (const char *name : {"C1", "C5", "D3", "O", "H:10,40"}) {
        const std::vector<Motion> motions = MotionsOf(ReadSymmetry(name).value(), frame, 20);
        const AsymmetricUnit unit(motions, frame.centre + Point{20, 7, 3});
        for (int i = 0; i < 200; ++i) {
            const Point p = frame.centre + Point{normal(random), normal(random), normal(random)};
            EXPECT_EQ(1, std::ranges::count_if(
                             motions, [&](const Motion &motion) { return unit.Holds(motion * p, 1e-9); }))
                << name;
        }
    }
}

TEST(AsymmetricUnit, AMarginReachesBeyondIt) {
    const AsymmetricUnit half(MotionsOf(ReadSymmetry("C2").value(), {}), {10, 0, 0});
    EXPECT_TRUE(half.Holds({1, 5, 0}, 0));
    EXPECT_FALSE(half.Holds({-1, 5, 0}, 0));
    EXPECT_TRUE(half.Holds({-1, 5, 0}, 2));
    EXPECT_FALSE(half.Holds({-5, 5, 0}, 2));
}
