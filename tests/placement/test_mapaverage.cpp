#include "placement/MapAverage.h"

#include "SyntheticAssembly.h"

#include <gtest/gtest.h>

using namespace placement;

namespace {

double Deviation(const Volume &a, const Volume &b) {
    double squares = 0;
    for (std::size_t i = 0; i < a.values.size(); ++i)
        squares += std::pow(double(a.values[i]) - double(b.values[i]), 2);
    return std::sqrt(squares / double(a.values.size()));
}

double Deviation(const Volume &a) {
    double mean = 0;
    for (const float value : a.values)
        mean += double(value) / double(a.values.size());
    Volume constant = a;
    std::ranges::fill(constant.values, float(mean));
    return Deviation(a, constant);
}

/// The difference that is more than a constant.
double Difference(const Volume &a, const Volume &b) {
    Volume difference = a;
    for (std::size_t i = 0; i < a.values.size(); ++i)
        difference.values[i] -= b.values[i];
    return Deviation(difference);
}

} // namespace

TEST(MapAverage, ASymmetricMapStaysAsItIs) {
    const SyntheticAssembly assembly("C5", 80, 1);
    const Volume map = DensityOf(assembly.atoms, 8, {2.2, 2.2, 2.2}, 15);
    const Volume mean = AverageOver(MotionsOf(assembly.symmetry, assembly.frame), map, 8, 2);
    ASSERT_EQ(mean.count, map.count);
    EXPECT_EQ(Length(mean.origin - map.origin), 0);
    EXPECT_LT(Difference(mean, map), 0.02 * Deviation(map));
}

TEST(MapAverage, NoiseFallsByTheRootOfTheCopies) {
    const SyntheticAssembly assembly("O", 60, 1);
    const Volume clean = DensityOf(assembly.atoms, 8, {2.2, 2.2, 2.2}, 15);
    Volume noisy = clean;
    AddNoise(noisy, 1, 1);
    const std::vector<Motion> motions = MotionsOf(assembly.symmetry, assembly.frame);
    // What the resolution itself leaves of the noise is not what the copies do.
    const Volume once = AverageOver(std::span(motions).first(1), noisy, 8, 2);
    const Volume mean = AverageOver(motions, noisy, 8, 2);
    EXPECT_LT(Difference(mean, clean), 1.5 / std::sqrt(24) * Difference(once, clean));
}

TEST(MapAverage, FineVoxelsBecomeAsCoarseAsTheResolutionAllows) {
    const Volume map = DensityOf(RandomModel(40, 1), 12, {1, 1, 1}, 15);
    const std::vector<Motion> none(1);
    const Volume mean = AverageOver(none, map, 12, 1);
    EXPECT_NEAR(mean.spacing[0], 3.24, 1e-9);
    for (std::size_t axis = 0; axis < 3; ++axis)
        EXPECT_NEAR(double(mean.count[axis]) * mean.spacing[axis],
                    double(map.count[axis]) * map.spacing[axis], 3.3);
}

TEST(MapAverage, WhatLiesOutsideTakesNoPart) {
    const SyntheticAssembly assembly("H:20,50", 60, 1);
    const Volume map = DensityOf(assembly.atoms, 8, {2.2, 2.2, 2.2}, 2);
    const Volume mean = AverageOver(MotionsOf(assembly.symmetry, assembly.frame, 1), map, 8, 1);
    for (const float value : mean.values)
        EXPECT_TRUE(std::isfinite(value));
}
