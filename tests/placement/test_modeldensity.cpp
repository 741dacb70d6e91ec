#include "placement/ModelDensity.h"

#include "SyntheticModel.h"

#include <gtest/gtest.h>

using namespace placement;

namespace {

constexpr double resolution = 8;

Spectrum SpectrumOf(const Volume &map) {
    return TransformMap(map, resolution, 1);
}

} // namespace

TEST(ModelDensity, AtomsAreDensityOfTheMapsWidth) {
    const std::vector<ModelAtom> model = RandomModel(100, 1);
    const Spectrum map = SpectrumOf(DensityOf(model, resolution, {2, 2, 2}, 15));
    const Waves own = TransformAtoms(ScatterersOf(model), map, 1);
    const RadialCurve amplitude = FittedAmplitude(map.waves, own, map.power);
    for (const double k : {0.02, 0.06, 0.1, 0.12})
        EXPECT_NEAR(amplitude.At(k), 1, 0.05) << k;
}

TEST(ModelDensity, TheAmplitudeIsThatOfTheMap) {
    const std::vector<ModelAtom> model = RandomModel(100, 1);
    Volume map = DensityOf(model, resolution, {2, 2, 2}, 15);
    for (float &value : map.values)
        value = -3 * value;
    const Spectrum dark = SpectrumOf(map);
    const Waves own = TransformAtoms(ScatterersOf(model), dark, 1);
    EXPECT_EQ(FittedAmplitude(dark.waves, own, dark.power).At(0.08), 0) << "never below 0";
    for (float &value : map.values)
        value = -value;
    const Spectrum bright = SpectrumOf(map);
    EXPECT_NEAR(FittedAmplitude(bright.waves, own, bright.power).At(0.08), 3, 0.1);
}

TEST(ModelDensity, WhatIsSubtractedIsGone) {
    const std::vector<ModelAtom> model = RandomModel(100, 1);
    Spectrum map = SpectrumOf(DensityOf(model, resolution, {2, 2, 2}, 15));
    const double before = map.power.At(0.08);
    const Waves own = TransformAtoms(ScatterersOf(model), map, 1);
    Subtract(own, FittedAmplitude(map.waves, own, map.power), map, 1);
    EXPECT_LT(map.power.At(0.08), 0.01 * before);
}

TEST(ModelDensity, AMotionMovesTheAtoms) {
    const std::vector<ModelAtom> atoms{{{1, 2, 3}, 6, 0, 0, true}};
    const std::vector<Scatterer> moved =
        ScatterersOf(atoms, {RotationBy({0, 0, std::acos(-1.0) / 2}), {10, 0, 0}});
    EXPECT_NEAR(moved[0].position.x, 8, 1e-9);
    EXPECT_NEAR(moved[0].position.y, 1, 1e-9);
    EXPECT_EQ(moved[0].electrons, 6);
}
