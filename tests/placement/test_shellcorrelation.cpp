#include "placement/ShellCorrelation.h"

#include "SyntheticModel.h"

#include <gtest/gtest.h>

using namespace placement;

TEST(ShellCorrelation, OfAMapWithItselfIsOne) {
    const Volume map = DensityOf(RandomModel(60, 3), 6, {1.5, 1.5, 1.5}, 15);
    const std::vector<Shell> shells = ShellCorrelation(map, map, 1);
    ASSERT_GT(shells.size(), 10u);
    EXPECT_NEAR(shells.back().wavenumber, 1 / 3.0, 0.03);
    for (const Shell &shell : shells)
        EXPECT_NEAR(shell.correlation, 1, 1e-6) << shell.wavenumber;
}

TEST(ShellCorrelation, FallsWhereNoiseIsStrongerThanSignal) {
    const Volume map = DensityOf(RandomModel(60, 3), 8, {2, 2, 2}, 15);
    Volume a = map, b = map;
    AddNoise(a, 0.3, 1);
    AddNoise(b, 0.3, 2);
    const std::vector<Shell> shells = ShellCorrelation(a, b, 2);
    EXPECT_GT(shells.front().correlation, 0.95);
    EXPECT_LT(std::abs(shells.back().correlation), 0.1);
    EXPECT_GT(ResolutionAt(shells, 0.143), 1 / shells.back().wavenumber);
    EXPECT_LT(ResolutionAt(shells, 0.143), ResolutionAt(shells, 0.5));
}

TEST(ShellCorrelation, OfTheNegativeIsMinusOne) {
    const Volume map = DensityOf(RandomModel(60, 3), 6, {1.5, 1.5, 1.5}, 15);
    Volume negative = map;
    for (float &value : negative.values)
        value = -value;
    EXPECT_NEAR(ShellCorrelation(map, negative, 1)[3].correlation, -1, 1e-6);
}

TEST(ShellCorrelation, AnEmptyMapCorrelatesWithNothing) {
    const Volume map = DensityOf(RandomModel(60, 3), 6, {1.5, 1.5, 1.5}, 15);
    const Volume empty{map.count, map.spacing, map.origin, LargeVector<float>(map.values.size(), 0)};
    for (const Shell &shell : ShellCorrelation(map, empty, 1))
        EXPECT_EQ(shell.correlation, 0);
}

TEST(ShellCorrelation, TheResolutionLiesBetweenShells) {
    const std::vector<Shell> shells{{0.1, 1}, {0.2, 0.75}, {0.3, 0.25}, {0.4, 0.6}};
    EXPECT_NEAR(1 / ResolutionAt(shells, 0.5), 0.25, 1e-12);
    EXPECT_NEAR(1 / ResolutionAt(shells, 0.1), 0.4, 1e-12);
    EXPECT_EQ(ResolutionAt({{0.1, 0.4}, {0.2, 0.9}}, 0.5), 0);
    EXPECT_EQ(ResolutionAt({}, 0.5), 0);
}
