#include "placement/Forecast.h"

#include "placement/Filter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

using namespace placement;

TEST(Forecast, TheFigureIsTheIntegralOfTheSignal) {
    double integral = 0;
    constexpr double step = 1e-4;
    for (double x = step / 2; x < 1.3; x += step)
        integral += 4 * std::numbers::pi * x * x * SignalShare(x) * step;
    EXPECT_NEAR(PredictedSignal(1, 1), std::sqrt(17 * integral), 0.01);
    EXPECT_NEAR(PredictedSignal(800, 2), PredictedSignal(100, 1), 1e-9);
}

TEST(Forecast, SaysWhatIsToBeExpected) {
    EXPECT_EQ(ProspectOf(4.4), Prospect::Poor);
    EXPECT_EQ(ProspectOf(4.5), Prospect::Uncertain);
    EXPECT_EQ(ProspectOf(7), Prospect::Good);
}
