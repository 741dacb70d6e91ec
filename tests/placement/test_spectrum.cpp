#include "placement/Spectrum.h"

#include "SyntheticModel.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace placement;

namespace {

/// White noise on a lattice of 1 Å.
Volume Noise(std::size_t edge) {
    Volume map{{edge, edge, edge}, {1, 1, 1}, {}, LargeVector<float>(edge * edge * edge, 0)};
    std::mt19937 random(7);
    std::normal_distribution<float> normal;
    for (float &value : map.values)
        value = normal(random);
    return map;
}

} // namespace

TEST(Spectrum, WhiteNoiseHasAFlatOne) {
    const Spectrum spectrum = TransformMap(Noise(48), 5, 1);
    // The mean of |F|² is the variance over the number of voxels. Noise of the faces is drawn out over the
    // padding, which adds to long waves.
    const double expected = 1 / std::pow(54.0, 3);
    for (double k = 0.08; k < 0.3; k += 0.02) {
        EXPECT_GT(spectrum.power.At(k) / expected, 0.6) << k;
        EXPECT_LT(spectrum.power.At(k) / expected, 2) << k;
    }
}

TEST(Spectrum, PowerBeyondTheResolutionIsSeen) {
    // Of white noise at 10 Å nearly all lies beyond, of a map of that resolution nearly nothing.
    EXPECT_GT(TransformMap(Noise(48), 10, 1).sharpShare, 0.9);
    const Volume map = DensityOf(RandomModel(100, 1), 10, {2, 2, 2}, 12);
    EXPECT_LT(TransformMap(map, 10, 1).sharpShare, 0.01);
}

TEST(Spectrum, SharpenedNoiseIsToldFromWhiteNoise) {
    Volume noise = Noise(48);
    EXPECT_NEAR(TransformMap(noise, 6, 1).sharpness, 1, 0.1);
    // The second difference along x strengthens the finest waves.
    for (std::size_t i = noise.values.size() - 1; i > 1; --i)
        noise.values[i] += noise.values[i - 2] - 2 * noise.values[i - 1];
    EXPECT_GT(TransformMap(noise, 6, 1).sharpness, 2);
    const Volume map = DensityOf(RandomModel(100, 1), 10, {2, 2, 2}, 12);
    EXPECT_LT(TransformMap(map, 10, 1).sharpness, 0.5);
}

TEST(Spectrum, DensityThatTheBoxCutsMakesNoEdge) {
    Volume cut = DensityOf(RandomModel(300, 2), 10, {2, 2, 2}, -8);
    const Spectrum spectrum = TransformMap(cut, 10, 1);
    // A model's density at 10 Å has fallen to exp(-2·(1.5)²) of its power at k = 1.5/10, an edge to k^-2.
    const Spectrum whole = TransformMap(DensityOf(RandomModel(300, 2), 10, {2, 2, 2}, 12), 10, 1);
    const auto fall = [](const Spectrum &s) { return s.power.At(0.15) / s.power.At(0.05); };
    EXPECT_LT(fall(spectrum), 30 * fall(whole));
}

TEST(Spectrum, AConstantMapHasNone) {
    const Volume map{{20, 20, 20}, {2, 2, 2}, {}, LargeVector<float>(8000, 3.5f)};
    EXPECT_EQ(TransformMap(map, 10, 1).strongest, 0);
}

TEST(Spectrum, ItIsThatOfTheWaves) {
    const Volume map = DensityOf(RandomModel(60, 3), 8, {2, 1.6, 1.8}, 10);
    const Spectrum spectrum = TransformMap(map, 8, 1);
    const RadialCurve power = RadialPower(spectrum.waves, 0.2, 2);
    EXPECT_EQ(power.At(0.1), spectrum.power.At(0.1));
    EXPECT_NEAR(power.step, 1 / *std::ranges::min_element(spectrum.waves.length), 1e-12);
}
