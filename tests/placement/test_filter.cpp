#include "placement/Filter.h"

#include "placement/Constants.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

using namespace placement;

namespace {

/// Power 4 everywhere, 5 Å.
Spectrum Flat() {
    Spectrum spectrum;
    spectrum.power = {0.01, std::vector<double>(40, 4.0)};
    spectrum.strongest = 4;
    spectrum.nyquist = 1;
    spectrum.resolution = 5;
    return spectrum;
}

} // namespace

TEST(Filter, TheSignalIsAThirdOfTheNoiseAtTheResolution) {
    EXPECT_DOUBLE_EQ(SignalShare(1), 0.25);
    EXPECT_NEAR(SignalShare(0), 1 / (1 + 3 * std::exp(-3)), 1e-15);
    EXPECT_LT(SignalShare(1.6), 0.005);
}

TEST(Filter, TheCutOffIsSmooth) {
    EXPECT_EQ(CutOff(1.3), 1);
    EXPECT_NEAR(CutOff(1.45), 0.5, 1e-12);
    EXPECT_EQ(CutOff(1.6), 0);
}

TEST(Filter, AKnownSpectrumGivesTheFormula) {
    const RadialCurve model{0.01, std::vector<double>(40, 9.0)};
    const RadialCurve filter = MatchedFilter(Flat(), model);
    EXPECT_EQ(filter.At(0), 0);
    // At 1/resolution: sqrt(0.25 / (4 · 9)), less what the floor takes.
    EXPECT_NEAR(filter.At(0.2), std::sqrt(0.25 / 36), 1e-6);
    EXPECT_EQ(filter.values.back(), 0);
    EXPECT_EQ(filter.At(10), 0);
}

TEST(Filter, ALevelIsTheFinestOneNarrowed) {
    const RadialCurve finest = LevelFilter(Flat(), finestWidth * 5), level = LevelFilter(Flat(), 3);
    const double k = 0.15, omega = 2 * std::acos(-1.0) * k;
    EXPECT_NEAR(finest.At(k), k * std::sqrt(SignalShare(0.75) / 4), 1e-6);
    EXPECT_NEAR(level.At(k) / finest.At(k), std::exp(-0.5 * (9 - 2.25) * omega * omega), 1e-4);
}

TEST(Filter, WavesThatVoxelsCannotHoldAreLeftOut) {
    Spectrum coarse = Flat();
    coarse.nyquist = 0.2;
    EXPECT_EQ(LevelFilter(coarse, 3).At(0.19), 0);
    EXPECT_GT(LevelFilter(coarse, 3).At(0.17), 0);
}

TEST(Filter, UnitPowerIsOfTheMeanSquare) {
    Volume volume{{1, 1, 2}, {1, 1, 1}, {}, {3, -4}};
    ScaleToUnitPower(volume, 2);
    EXPECT_NEAR(volume.values[0] * volume.values[0] + volume.values[1] * volume.values[1], 2, 1e-6);
    Volume zero{{2, 1, 1}, {1, 1, 1}, {}, {0, 0}};
    ScaleToUnitPower(zero, 1);
    EXPECT_THAT(zero.values, testing::ElementsAre(0, 0));
}
