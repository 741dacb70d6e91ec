#include "hosts/common/FitOptions.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

using namespace hosts;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// The error of a fit of five translations of 2 Å, changed like that.
template <class Change>
std::string ErrorOf(Change change) {
    FitOptions options;
    options.translationSteps = 5;
    options.translationStep = 2;
    options.inclusionDistance = 60;
    change(options);
    try {
        CheckFitOptions(options);
    } catch (const std::runtime_error &error) {
        return error.what();
    }
    return "no error";
}

std::string ErrorOfStep(double step, int steps = 5) {
    return ErrorOf([&](FitOptions &options) {
        options.translationStep = step;
        options.translationSteps = steps;
    });
}

std::string ErrorOfDistance(double distance) {
    return ErrorOf([&](FitOptions &options) { options.inclusionDistance = distance; });
}

} // namespace

TEST(CheckFitOptions, RefusesWithParameterAndValue) {
    EXPECT_EQ(ErrorOf([](FitOptions &o) { o.axis = -1; }), "axis: -1 is not a whole number from 0 to 99");
    EXPECT_EQ(ErrorOf([](FitOptions &o) { o.axis = 100; }), "axis: 100 is not a whole number from 0 to 99");
    EXPECT_EQ(ErrorOf([](FitOptions &o) { o.translationSteps = -2; }),
              "translation steps: -2 is not a number of steps");
    EXPECT_EQ(ErrorOf([](FitOptions &o) { o.keep = -1; }), "keep: -1 is not a number of solutions");
    EXPECT_EQ(ErrorOf([](FitOptions &o) { o.models = -1; }), "models: -1 is not a number of models");
    for (const int threads : {0, -2, 1025})
        EXPECT_EQ(ErrorOf([&](FitOptions &o) { o.threads = threads; }),
                  "threads: " + std::to_string(threads) + " is not a whole number from 1 to 1024");
    EXPECT_EQ(ErrorOf([](FitOptions &o) { o.log = "caf\xE9.log"; }),
              "log: caf\xE9.log is not a name in UTF-8");
    EXPECT_EQ(ErrorOf([](FitOptions &o) { o.rotationStep = 0; }), "no error") << "the engine judges it";
}

TEST(CheckFitOptions, RefusesTranslationsBeyondSinglePrecision) {
    EXPECT_EQ(ErrorOfStep(infinity), "translation step: inf is not a finite number of Å");
    EXPECT_EQ(ErrorOfStep(notANumber), "translation step: nan is not a finite number of Å");
    EXPECT_EQ(ErrorOfStep(-notANumber), "translation step: nan is not a finite number of Å");
    EXPECT_EQ(
        ErrorOfStep(1e39),
        "translation step: 1e+39 is not a step whose translations fit into single precision (3.4e+38 Å)");
    EXPECT_EQ(ErrorOfStep(2e38, 4), ErrorOfStep(2e38, 5)) << "an even number counts as the next odd one";
    EXPECT_NE(ErrorOfStep(2e38), "no error") << "two steps to each side";
    EXPECT_EQ(ErrorOfStep(2e38, 3), "no error");
    EXPECT_EQ(ErrorOfStep(-5), "no error");
    EXPECT_EQ(ErrorOfStep(1e39, 1), "no error") << "no translation";
}

TEST(CheckFitOptions, RefusesAnInclusionDistanceBeyondSinglePrecision) {
    EXPECT_EQ(ErrorOfDistance(-1), "inclusion distance: -1 is not a distance in Å");
    EXPECT_EQ(ErrorOfDistance(notANumber), "inclusion distance: nan is not a distance in Å");
    EXPECT_EQ(ErrorOfDistance(1e300),
              "inclusion distance: 1e+300 is not a distance that fits into single precision (3.4e+38 Å)");
    EXPECT_EQ(ErrorOfDistance(1e38), "no error");
    EXPECT_EQ(ErrorOfDistance(infinity), "no error") << "every residue of the solid";
}
