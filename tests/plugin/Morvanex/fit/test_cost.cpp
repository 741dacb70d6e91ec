#include "EngineTest.h"
#include "Messages.h"
#include "Parameters.h"
#include "fit/Angles.h"
#include "fit/Cost.h"

#include <gmock/gmock.h>

#include <limits>

using namespace VARNO;

using testing::HasSubstr;
using testing::MatchesRegex;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

class Cost : public EngineTest {
protected:
    Cost() {
        parameters.axisDepth = 1;
        parameters.angleStep = Radians(10);
        parameters.translationStep = 2;
        parameters.translationCount = 4;
        parameters.keep = 10;
        parameters.inclusionDistance = 60;
        parameters.target = AddChain(ResiduesAt({{0, 0, 0}, {2, 4, 6}}));
    }

    fit::FitCost Estimate() const { return fit::EstimateCost(parameters, fit::SurveyFit(parameters)); }

    fit::FitParameters parameters;
    const Messages quiet;
};

std::string Refusal(const fit::FitCost &cost, double angleStep = 0.1, bool anyNumberOfPoses = false) {
    return fit::RefuseFit(cost, angleStep, anyNumberOfPoses).toStdString();
}

} // namespace

TEST_F(Cost, CountsWhatTheSearchWillTry) {
    const fit::FitCost cost = Estimate();
    EXPECT_EQ(cost.axes, 21);
    EXPECT_EQ(cost.angles, 36);
    EXPECT_EQ(cost.poses, 125 * (1 + 21 * 36));
    EXPECT_EQ(cost.offsetBytes, 125 * sizeof(Vertex));
    EXPECT_GE(cost.axisBytes, 21 * sizeof(Vertex));
    EXPECT_GE(cost.identityBytes, 125 * sizeof(SolutionScore));
    EXPECT_GE(cost.listBytes, 21 * sizeof(SolutionScore));
    EXPECT_EQ(cost.keepOutBytes, 0);
    EXPECT_EQ(cost.Bytes(), cost.axisBytes + cost.offsetBytes + cost.identityBytes + cost.listBytes);
    EXPECT_EQ(Refusal(cost, parameters.angleStep), "");
}

TEST_F(Cost, AgreesWithTheSearch) {
    for (const double degrees : {30.0, 45.0, 72.0, 90.0, 77.0, 360.0, 400.0}) {
        parameters.angleStep = Radians(degrees);
        const fit::FitCost cost = Estimate();
        RecordingMonitor monitor;
        search::PoseCounts counts;
        std::list<SolutionScore> solutions;
        RunFit(parameters, solutions, monitor, &counts);
        EXPECT_EQ(cost.poses, double(counts.tried)) << degrees;
    }
}

TEST_F(Cost, KnowsTheKeepOutGrid) {
    parameters.solid = ResiduesOf(AddChain(ResiduesAt({{0, 0, 0}, {20, 30, 40}})));
    const double expected = Estimate().keepOutBytes;
    const Grid *grid = fit::PrepareFit(parameters, fit::SurveyFit(parameters)).keepOut;
    EXPECT_EQ(expected, double(grid->Values().size_bytes()));
}

TEST_F(Cost, KnowsWhatStandsBesideTheSolutionsInTheEnd) {
    const auto list = [this](double bytesBeside) {
        return fit::EstimateCost(parameters, fit::SurveyFit(parameters), bytesBeside).listBytes;
    };
    parameters.keep = 1'000'000;
    EXPECT_EQ(list(1), list(0)) << "the search itself needs more, with twice as many records";
    EXPECT_GE(list(1000), 1e6 * (1000 + sizeof(SolutionScore)));
}

TEST_F(Cost, RestraintsMakeRecordsLarger) {
    const double before = Estimate().identityBytes;
    parameters.restraints = fit::ParseRestraints("GLY1 1 2 3 GLY1 1 2 3 GLY2 1 2 3");
    EXPECT_GE(Estimate().identityBytes, before + 375 * sizeof(double));
}

TEST_F(Cost, NegativeNumbersCountAsNothing) {
    parameters.axisDepth = -3;
    parameters.translationCount = -7;
    parameters.keep = -5;
    const fit::FitCost cost = Estimate();
    EXPECT_EQ(cost.axes, 6);
    EXPECT_EQ(cost.poses, 0);
    EXPECT_EQ(cost.offsetBytes, 0);
    EXPECT_GT(cost.listBytes, 0);
    EXPECT_LT(cost.listBytes, 1000);
}

TEST_F(Cost, TheLargestNumbersDoNotOverflow) {
    parameters.axisDepth = std::numeric_limits<int>::max();
    parameters.translationCount = std::numeric_limits<int>::max();
    parameters.keep = std::numeric_limits<int>::max();
    parameters.angleStep = 1e-300;
    const fit::FitCost cost = Estimate();
    EXPECT_EQ(cost.axes, infinity);
    EXPECT_EQ(cost.poses, infinity);
    EXPECT_GT(cost.offsetBytes, 1e29);
    EXPECT_GT(cost.listBytes, 2.0 * parameters.keep * sizeof(SolutionScore));
    EXPECT_NE(Refusal(cost, 1), "");
    EXPECT_NE(Refusal(cost, 1, true), "");
}

TEST_F(Cost, ARotationStepMustBePositiveAndFinite) {
    EXPECT_EQ(Refusal({}, 0), "The rotation step is 0 degrees; it must be a positive number.");
    EXPECT_EQ(Refusal({}, Radians(-10)), "The rotation step is -10 degrees; it must be a positive number.");
    EXPECT_EQ(Refusal({}, NAN), "The rotation step is nan degrees; it must be a positive number.");
    EXPECT_EQ(Refusal({}, infinity), "The rotation step is inf degrees; it must be a positive number.");
    EXPECT_EQ(Refusal({}, -infinity), "The rotation step is -inf degrees; it must be a positive number.");
    EXPECT_EQ(Refusal({}, 0, true), "The rotation step is 0 degrees; it must be a positive number.");
}

TEST_F(Cost, ARotationStepMustBeLargeEnoughToAddUp) {
    EXPECT_EQ(Refusal({}, 1e-16, true),
              "The rotation step of 5.72958e-15 degrees is too small for an angle to grow by it.");
    EXPECT_EQ(Refusal({}, 1e-15, true), "");
}

TEST_F(Cost, TooManyPosesAreRefusedWithTheFigures) {
    fit::FitCost cost;
    cost.axes = 321;
    cost.angles = 35;
    cost.offsetBytes = 1e9 * sizeof(Vertex);
    cost.poses = 1e9 * (1 + 321.0 * 35);
    EXPECT_EQ(Refusal(cost), "The fit would try 1.1236e+13 poses (321 axes, 35 angles about each, 1e+09 "
                             "translations); the limit is 1e+13. Choose larger steps, fewer translations or "
                             "less recursion.");
    cost.poses = fit::poseLimit;
    EXPECT_THAT(Refusal(cost), testing::Not(HasSubstr("poses (")));
}

TEST_F(Cost, TheLimitOnPosesCanBeLifted) {
    fit::FitCost cost;
    cost.poses = 1e14;
    EXPECT_NE(Refusal(cost), "");
    EXPECT_EQ(Refusal(cost, 0.1, true), "");
}

TEST_F(Cost, WhatMemoryCannotHoldIsRefusedWithTheFigures) {
    constexpr double GiB = 1024.0 * 1024.0 * 1024.0;
    fit::FitCost cost;
    cost.axisBytes = 1.5 * GiB;
    cost.offsetBytes = 2 * GiB;
    cost.identityBytes = 3 * GiB;
    cost.listBytes = 4e6 * GiB;
    cost.keepOutBytes = 0.5 * GiB;
    const std::string expected =
        "The fit would need 4\\.00001e\\+06 GiB of memory \\(axes 1.5 GiB, translations 2.0 GiB, poses of "
        "the identity rotation 3.0 GiB, solutions kept 4e\\+06 GiB, keep-out grid 0.5 GiB\\); the limit is "
        "[0-9]+\\.[0-9] GiB, three quarters of this machine's.";
    EXPECT_THAT(Refusal(cost), MatchesRegex(expected));
    EXPECT_THAT(Refusal(cost, 0.1, true), MatchesRegex(expected));
}

TEST_F(Cost, EveryPartOfTheMemoryCounts) {
    for (double fit::FitCost::*part :
         {&fit::FitCost::axisBytes, &fit::FitCost::offsetBytes, &fit::FitCost::identityBytes,
          &fit::FitCost::listBytes, &fit::FitCost::keepOutBytes}) {
        fit::FitCost cost;
        cost.*part = 1e18;
        EXPECT_THAT(Refusal(cost), HasSubstr("of memory"));
        cost.*part = infinity;
        EXPECT_THAT(Refusal(cost), HasSubstr("of memory"));
        cost.*part = NAN;
        EXPECT_THAT(Refusal(cost), HasSubstr("of memory"));
    }
}
