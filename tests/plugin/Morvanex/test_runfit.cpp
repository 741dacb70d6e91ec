#include "EngineTest.h"
#include "Messages.h"
#include "Parameters.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <numbers>

using testing::Contains;
using testing::SizeIs;
using testing::StartsWith;

// The parameters between the globals and the search: while a fit runs, the host's code that its monitor lets
// in may open another session, whose dialog writes the globals.

namespace {

/// Two residues; every voxel has another value.
FitInput TwoPoints() {
    FitInput input;
    input.target = ResiduesAt({{3, 4, 4}, {7, 6, 5}});
    input.map = ConstantMap({11, 11, 11}, 1);
    for (std::size_t i = 0; i < input.map->values.size(); ++i)
        input.map->values[i] = float(i * i % 977);
    input.angleStep = std::numbers::pi / 2;
    return input;
}

/// Without a log, and with so many poses that they are not scored one by one.
FitInput ManyPoses() {
    FitInput input = TwoPoints();
    input.logging = false;
    input.translationCount = 9;
    return input;
}

class RunFitTest : public EngineTest {
protected:
    bool Fit(const FitInput &input) {
        LoadFit(input, folder);
        return RunFit(monitor, &counts);
    }

    bool WasFast() const { return counts.scoredExactly < counts.tried; }

    RecordingMonitor monitor;
    search::PoseCounts counts;
};

} // namespace

TEST_F(RunFitTest, TheNumberToKeepIsReadOnceTheSearchHasStarted) {
    monitor.whenStarting = [] { top_size = 3; };
    EXPECT_TRUE(Fit(TwoPoints()));
    EXPECT_FALSE(WasFast());
    EXPECT_THAT(Solutions, SizeIs(3));
    ResetEngine();
    EXPECT_TRUE(Fit(ManyPoses()));
    EXPECT_TRUE(WasFast());
    EXPECT_THAT(Solutions, SizeIs(3));
}

TEST_F(RunFitTest, ASearchPoseByPoseFollowsTheNumberToKeep) {
    monitor.duringFit = [this] {
        if (counts.tried == 7)
            top_size = 2;
    };
    EXPECT_TRUE(Fit(TwoPoints()));
    EXPECT_FALSE(WasFast());
    EXPECT_THAT(Solutions, SizeIs(2));
}

TEST_F(RunFitTest, ASearchPoseByPoseTrimsByTheNumberThatItFollows) {
    // One identity pose and three for each axis: with 2 to keep after two axes, the list is trimmed by the
    // next pose, after it has grown to 8, and has 4 after the axis.
    RecordingMonitor cancelling(3);
    cancelling.duringFit = [&cancelling] {
        if (cancelling.calls.size() == 6)
            top_size = 2;
    };
    LoadFit(TwoPoints(), folder);
    EXPECT_FALSE(RunFit(cancelling));
    EXPECT_THAT(Solutions, SizeIs(4));
}

TEST_F(RunFitTest, AFastSearchKeepsTheNumberThatItStartedWith) {
    monitor.duringFit = [] { top_size = 2; };
    EXPECT_TRUE(Fit(ManyPoses()));
    EXPECT_TRUE(WasFast());
    EXPECT_THAT(Solutions, SizeIs(10));
}

TEST_F(RunFitTest, TheLogIsTheOneThatIsNamedOnceTheSearchHasStarted) {
    folder.Write("poses.log", "from an earlier fit\n");
    monitor.whenStarting = [this] { em_fname = QString::fromStdString(folder.File("other.log")); };
    EXPECT_TRUE(Fit(TwoPoints()));
    EXPECT_EQ(ReadFile(folder.File("poses.log")), "from an earlier fit\n");
    EXPECT_EQ(std::ranges::count(ReadFile(folder.File("other.log")), '\n'), 19);
}

TEST_F(RunFitTest, WhetherToLogIsAskedOnceTheSearchHasStarted) {
    monitor.whenStarting = [] { logging = false; };
    EXPECT_TRUE(Fit(TwoPoints()));
    EXPECT_EQ(ReadFile(folder.File("poses.log")), "");
    monitor.whenStarting = {};
    monitor.duringFit = [] { logging = false; };
    EXPECT_TRUE(Fit(TwoPoints()));
    EXPECT_EQ(std::ranges::count(ReadFile(folder.File("poses.log")), '\n'), 19);
}

TEST_F(RunFitTest, WhatHasBeenPreparedStaysAsItIs) {
    for (const FitInput &input : {TwoPoints(), ManyPoses()}) {
        monitor.whenStarting = {};
        EXPECT_TRUE(Fit(input));
        const std::string expected = FullPrecision(PlainSolutions());
        monitor.whenStarting = [] {
            Axis = 1;
            gammaStep = 1;
            Step = 3;
            TCount = 1;
            m_Target = m_Map = nullptr;
            m_Solid.clear();
        };
        EXPECT_TRUE(Fit(input));
        EXPECT_EQ(FullPrecision(PlainSolutions()), expected);
    }
}

TEST_F(RunFitTest, TheSearchAddsToTheListAsItIsOnceTheSearchHasStarted) {
    for (FitInput input : {TwoPoints(), ManyPoses()}) {
        input.keep = 20;
        input.earlier.resize(4);
        monitor.whenStarting = [] {
            Solutions.resize(1);
            Solutions.front().score = 1e9;
        };
        EXPECT_TRUE(Fit(input));
        EXPECT_THAT(Solutions, SizeIs(20));
        EXPECT_EQ(Solutions.back().score, 1e9);
        EXPECT_EQ(std::ranges::count(Solutions, 0.0, &SolutionScore::score), 0);
    }
}

TEST_F(RunFitTest, TheInclusionDistanceComesFromTheSettings) {
    FitInput input = TwoPoints();
    input.solid = ResiduesAt({{30, 5, 5}, {40, 5, 5}});
    LoadFit(input, folder);
    for (const auto &[text, residues] : {std::pair("32.5", "1"), {"37.5", "2"}, {"far", "0"}}) {
        SetMarginal(folder, text);
        const Messages messages;
        EXPECT_TRUE(RunFit(monitor));
        EXPECT_THAT(messages.Debug(), Contains(StartsWith(std::string("Solid residues: ") + residues + ",")));
    }
}

TEST_F(RunFitTest, RestraintsAreReadOnlyWhereTheyAreAskedFor) {
    FitInput input = TwoPoints();
    input.restraints = {{"GLY1", {5, 5, 9}}};
    LoadFit(input, folder);
    for (const bool asked : {true, false}) {
        restraints = asked;
        const Messages messages;
        EXPECT_TRUE(RunFit(monitor));
        EXPECT_THAT(messages.Debug(), Contains(asked ? "Extra scores 2" : "Extra scores 1"));
    }
}

TEST_F(RunFitTest, AFitOfGivenParametersLeavesTheGlobalsAlone) {
    const FitInput input = TwoPoints();
    LoadFit(input, folder);
    fit::FitParameters parameters;
    parameters.angleStep = input.angleStep;
    parameters.translationCount = 2;
    parameters.keep = 7;
    parameters.target = m_Target;
    parameters.map = dynamic_cast<const VARNO::Grid *>(m_Map);
    ResetEngine();
    std::list<SolutionScore> solutions;
    EXPECT_TRUE(RunFit(parameters, solutions, monitor, &counts));
    EXPECT_EQ(counts.tried, 27u * 19);
    EXPECT_THAT(solutions, SizeIs(7));
    EXPECT_THAT(Solutions, SizeIs(0));
    EXPECT_EQ(TCount, 0);
}

TEST_F(RunFitTest, TheTranslationCountIsOddWhenTheSearchStarts) {
    FitInput input = TwoPoints();
    input.translationCount = 2;
    int atTheStart = 0;
    monitor.whenStarting = [&atTheStart] { atTheStart = TCount; };
    EXPECT_TRUE(Fit(input));
    EXPECT_EQ(atTheStart, 3);
    EXPECT_EQ(TCount, 3);
}
