#include "EngineTest.h"
#include "Messages.h"
#include "Parameters.h"

#include "DataMaker.h"
#include "Space.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cmath>
#include <filesystem>
#include <limits>
#include <numbers>
#include <thread>

using namespace VARNO;

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace {

constexpr double pi = std::numbers::pi;

std::vector<std::string> LinesOf(const std::string &text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::vector<double> Scores() {
    std::vector<double> scores;
    for (const SolutionScore &solution : Solutions)
        scores.push_back(solution.score);
    return scores;
}

/// One residue on the z axis in a map whose voxels tell where a pose puts it.
FitInput OnePoint() {
    FitInput input;
    input.target = ResiduesAt({{5, 5, 5}});
    input.map = ConstantMap({11, 11, 11}, 1);
    input.angleStep = pi / 2;
    return input;
}

/// Two residues, so that turning about their centre moves them; every voxel has another value.
FitInput TwoPoints() {
    FitInput input = OnePoint();
    input.target = ResiduesAt({{3, 4, 4}, {7, 6, 5}});
    for (std::size_t i = 0; i < input.map->values.size(); ++i)
        input.map->values[i] = float(i * i % 977);
    return input;
}

class SearchTest : public EngineTest {
protected:
    void Prepare(const FitInput &input) {
        LoadFit(input, folder);
        log = folder.File("poses.log");
    }
    bool Fit() { return RunFit(monitor, &counts); }
    bool Fit(const FitInput &input) {
        Prepare(input);
        return Fit();
    }

    /// Runs a fit that must not start: neither parameters nor list nor log nor model nor monitor hear of it.
    void ExpectUntouched() {
        TCount = 4;
        Solutions.resize(3);
        folder.Write("poses.log", "from an earlier fit\n");
        const auto parts = std::distance(Space::instance()->PartBegin(), Space::instance()->PartEnd());
        EXPECT_FALSE(Fit());
        EXPECT_EQ(TCount, 4);
        EXPECT_THAT(Solutions, SizeIs(3));
        EXPECT_EQ(ReadFile(log), "from an earlier fit\n");
        EXPECT_EQ(std::distance(Space::instance()->PartBegin(), Space::instance()->PartEnd()), parts);
        EXPECT_THAT(monitor.calls, IsEmpty());
        EXPECT_EQ(counts.tried, 0u);
        EXPECT_THAT(messages.Debug(), ElementsAre("Fit!"));
    }

    Messages messages;
    RecordingMonitor monitor;
    search::PoseCounts counts;
    std::string log;
};

} // namespace

TEST_F(SearchTest, TellsTheMonitorInOrder) {
    EXPECT_TRUE(Fit(OnePoint()));
    std::vector<std::string> expected = {"Started", "IsCancelled", "IdentityDone of 6"};
    for (const char *axis : {"1", "2", "3", "4", "5", "6"}) {
        expected.push_back("IsCancelled");
        expected.push_back(std::string("AxisDone ") + axis + " of 6");
    }
    expected.push_back("Finished");
    EXPECT_EQ(monitor.calls, expected);
}

TEST_F(SearchTest, PrintsItsMessagesInOrder) {
    EXPECT_TRUE(Fit(OnePoint()));
    EXPECT_THAT(messages.Debug(),
                ElementsAre("Fit!", "Points 6", "Extra scores 1", "Solid inclusion distance:  60.000"));
    EXPECT_THAT(messages.Warnings(), IsEmpty());
}

TEST_F(SearchTest, SaysWhenTheListIsShorterThanAskedFor) {
    FitInput input = OnePoint();
    input.keep = 1000;
    EXPECT_TRUE(Fit(input));
    ASSERT_FALSE(messages.Debug().empty());
    EXPECT_EQ(messages.Debug().back(), "Solutions list is shorter than requested size, not weeding.");
    EXPECT_THAT(Solutions, SizeIs(1 + 6 * 3));
}

TEST_F(SearchTest, WithoutATargetNothingHappens) {
    Prepare(OnePoint());
    m_Target = nullptr;
    ExpectUntouched();
    EXPECT_THAT(messages.Warnings(), IsEmpty());
}

TEST_F(SearchTest, ARemovedTargetCountsAsNotChosen) {
    Prepare(OnePoint());
    Space::instance()->Remove(m_Target);
    ExpectUntouched();
    EXPECT_THAT(messages.Warnings(),
                ElementsAre("The target is no longer in the model; the fit does not start."));
}

TEST_F(SearchTest, ATargetBelowARemovedMoleculeCountsAsNotChosen) {
    Prepare(OnePoint());
    Space::instance()->Remove(m_Target->GetParent()->GetParent());
    ExpectUntouched();
    EXPECT_THAT(messages.Warnings(),
                ElementsAre("The target is no longer in the model; the fit does not start."));
}

TEST_F(SearchTest, ARemovedMapCountsAsNotChosen) {
    Prepare(OnePoint());
    Space::instance()->Remove(m_Map);
    ExpectUntouched();
    EXPECT_THAT(messages.Warnings(),
                ElementsAre("The map is no longer in the model; the fit does not start."));
}

TEST_F(SearchTest, ARotationStepThatIsNotPositiveStartsNothing) {
    Prepare(OnePoint());
    gammaStep = 0;
    ExpectUntouched();
    EXPECT_THAT(messages.Warnings(),
                ElementsAre("The rotation step is 0 degrees; it must be a positive number."));
}

TEST_F(SearchTest, NoRotationStepCanHangTheSearch) {
    for (const double step : {-1.0, 1e-17, double(NAN), std::numeric_limits<double>::infinity()}) {
        Prepare(OnePoint());
        messages.Clear();
        gammaStep = step;
        ExpectUntouched();
        EXPECT_THAT(messages.Warnings(), ElementsAre(StartsWith("The rotation step "))) << step;
    }
}

TEST_F(SearchTest, TooManyPosesStartNothing) {
    Prepare(OnePoint());
    gammaStep = 1e-14;
    ExpectUntouched();
    EXPECT_THAT(messages.Warnings(),
                ElementsAre(StartsWith("The fit would try 4.71239e+17 poses (6 axes, 6.28319e+14 angles "
                                       "about each, 125 translations)")));
}

TEST_F(SearchTest, TooManyAxesStartNothing) {
    Prepare(OnePoint());
    Axis = 99;
    gammaStep = 7;
    ExpectUntouched();
    EXPECT_THAT(messages.Warnings(),
                ElementsAre(StartsWith("The fit would need 1.19726e+53 GiB of memory (axes 1.19726e+53 GiB, "
                                       "translations 0.0 GiB, ")));
}

TEST_F(SearchTest, TooManyTranslationsStartNothing) {
    Prepare(OnePoint());
    for (const int count : {20001, 100000, std::numeric_limits<int>::max()}) {
        messages.Clear();
        gammaStep = 7;
        TCount = count;
        EXPECT_FALSE(Fit());
        EXPECT_EQ(TCount, count);
        EXPECT_THAT(monitor.calls, IsEmpty());
        EXPECT_THAT(messages.Warnings(), ElementsAre(StartsWith("The fit would ")));
    }
}

TEST_F(SearchTest, TooManySolutionsToKeepStartNothing) {
    Prepare(OnePoint());
    top_size = std::numeric_limits<int>::max();
    const double needed = 2.0 * top_size * sizeof(SolutionScore);
    if (needed > 0.75 * double(sysconf(_SC_PHYS_PAGES)) * double(sysconf(_SC_PAGE_SIZE))) {
        ExpectUntouched();
        EXPECT_THAT(messages.Warnings(), ElementsAre(StartsWith("The fit would need ")));
    }
}

TEST_F(SearchTest, TheLimitOnPosesCanBeLifted) {
    Prepare(OnePoint());
    gammaStep = 1e-14;
    RecordingMonitor cancelling(0);
    EXPECT_FALSE(RunFit(cancelling, &counts, {.anyNumberOfPoses = true}));
    EXPECT_EQ(counts.tried, 1u);
    ASSERT_FALSE(cancelling.calls.empty());
    EXPECT_EQ(cancelling.calls.back(), "Cancelled");
}

TEST_F(SearchTest, WithoutAMapEveryPoseScoresZero) {
    FitInput input = OnePoint();
    input.map.reset();
    EXPECT_TRUE(Fit(input));
    EXPECT_EQ(Scores(), std::vector<double>(10, 0.0));
}

TEST_F(SearchTest, AMapThatIsNoGridIsNone) {
    Prepare(OnePoint());
    m_Map = m_Target->GetParent();
    EXPECT_TRUE(Fit());
    EXPECT_EQ(Scores(), std::vector<double>(10, 0.0));
}

TEST_F(SearchTest, AnEvenTranslationCountIsRaisedForGood) {
    FitInput input = OnePoint();
    input.translationCount = 4;
    input.angleStep = 7;
    input.keep = 1000;
    EXPECT_TRUE(Fit(input));
    EXPECT_EQ(TCount, 5);
    ASSERT_THAT(Solutions, SizeIs(125));
    EXPECT_EQ(Solutions.front().translation, Vertex(-2, -2, -2, false));
    EXPECT_EQ(Solutions.back().translation, Vertex(2, 2, 2, false));
}

TEST_F(SearchTest, AFullTurnOrMoreLeavesTheIdentityAlone) {
    for (const double step : {6.283185307179586, 7.0, 1e6}) {
        monitor.calls.clear();
        FitInput input = OnePoint();
        input.angleStep = step;
        EXPECT_TRUE(Fit(input));
        EXPECT_THAT(Solutions, SizeIs(1));
        EXPECT_THAT(monitor.calls, Contains("AxisDone 6 of 6"));
    }
    EXPECT_EQ(counts.tried, 3u);
}

TEST_F(SearchTest, TriesTheIdentityThenEveryAngleAboutEveryAxis) {
    FitInput input = TwoPoints();
    input.angleStep = 1.1; // five angles
    EXPECT_TRUE(Fit(input));
    EXPECT_EQ(counts.tried, 31u);
    EXPECT_EQ(counts.accepted, 31u);
    std::vector<std::string> lines = LinesOf(ReadFile(log));
    ASSERT_THAT(lines, SizeIs(31));
    std::vector<std::string> expected = {"  1.00   0.00   0.00   0.00"};
    for (const Point &axis : PlainAxes(0))
        for (int k = 1; k <= 5; ++k) {
            char text[40];
            const double half = k * 1.1 / 2;
            std::snprintf(text, sizeof(text), "%6.2f %6.2f %6.2f %6.2f", std::cos(half),
                          std::sin(half) * axis[0], std::sin(half) * axis[1], std::sin(half) * axis[2]);
            expected.push_back(text);
        }
    for (std::string &line : lines)
        line.resize(27);
    EXPECT_EQ(lines, expected);
}

TEST_F(SearchTest, TurnsTheTargetAboutItsOwnCentreThenMovesIt) {
    FitInput input = TwoPoints();
    input.translationCount = 3;
    input.keep = 100000;
    EXPECT_TRUE(Fit(input));
    auto solution = Solutions.begin();
    const Vertex centre = monitor.fit.target.centre;
    for (int turn = 0; turn < 1 + 6 * 3; ++turn)
        for (const Vertex &offset : monitor.fit.offsets) {
            const Vertex moved = Transform(solution->rotation, solution->translation) * centre;
            for (const unsigned i : {0u, 1u, 2u})
                EXPECT_NEAR(moved[i], centre[i] + offset[i], 1e-5);
            ++solution;
        }
    EXPECT_EQ(solution, Solutions.end());
}

TEST_F(SearchTest, KeepsTheBestInAscendingOrder) {
    FitInput input = TwoPoints();
    input.translationCount = 3;
    input.keep = 100000;
    EXPECT_TRUE(Fit(input));
    std::vector<double> all = Scores();
    EXPECT_THAT(all, SizeIs(27 * 19));
    std::ranges::sort(all);
    input.keep = 10;
    EXPECT_TRUE(Fit(input));
    EXPECT_EQ(Scores(), std::vector<double>(all.end() - 10, all.end()));
}

TEST_F(SearchTest, AListOfExactlyTheSizeIsSorted) {
    FitInput input = TwoPoints();
    input.keep = 19;
    EXPECT_TRUE(Fit(input));
    EXPECT_THAT(Scores(), SizeIs(19));
    EXPECT_TRUE(std::ranges::is_sorted(Scores()));
}

TEST_F(SearchTest, KeepingNothingKeepsNothing) {
    for (const int keep : {0, -1, -5, std::numeric_limits<int>::min()}) {
        FitInput input = TwoPoints();
        input.keep = keep;
        EXPECT_TRUE(Fit(input));
        EXPECT_THAT(Solutions, IsEmpty());
        EXPECT_THAT(LinesOf(ReadFile(log)), SizeIs(19));
    }
}

TEST_F(SearchTest, TheListIsTrimmedWhenItHasGrownPastTwiceTheSize) {
    FitInput input = TwoPoints();
    input.angleStep = 1.1; // five angles: 16 poses after three axes, 21 after four
    RecordingMonitor afterThree(3);
    Prepare(input);
    EXPECT_FALSE(RunFit(afterThree));
    EXPECT_THAT(Solutions, SizeIs(16));
    RecordingMonitor afterFour(4);
    Prepare(input);
    EXPECT_FALSE(RunFit(afterFour));
    EXPECT_THAT(Solutions, SizeIs(10));
    EXPECT_TRUE(std::ranges::is_sorted(Scores()));
}

TEST_F(SearchTest, TheIdentityPassIsNotTrimmed) {
    FitInput input = TwoPoints();
    input.translationCount = 5;
    Prepare(input);
    RecordingMonitor cancelling(0);
    EXPECT_FALSE(RunFit(cancelling));
    EXPECT_THAT(Solutions, SizeIs(125));
}

TEST_F(SearchTest, ACancelDuringTheIdentityPassIsNoticedAtItsEnd) {
    Prepare(TwoPoints());
    Solutions.resize(30);
    RecordingMonitor cancelling(0);
    EXPECT_FALSE(RunFit(cancelling));
    EXPECT_THAT(cancelling.calls, ElementsAre("Started", "IsCancelled", "Cancelled"));
    EXPECT_THAT(Solutions, SizeIs(31)); // on top of what was there before
    EXPECT_THAT(LinesOf(ReadFile(log)), SizeIs(1));
}

TEST_F(SearchTest, ACancelDuringAnAxisIsNoticedAtItsEnd) {
    Prepare(TwoPoints());
    RecordingMonitor cancelling(2);
    EXPECT_FALSE(RunFit(cancelling, &counts));
    EXPECT_THAT(cancelling.calls, ElementsAre("Started", "IsCancelled", "IdentityDone of 6", "IsCancelled",
                                              "AxisDone 1 of 6", "IsCancelled", "Cancelled"));
    EXPECT_EQ(counts.tried, 1u + 2 * 3);
    EXPECT_THAT(Solutions, SizeIs(7));
    EXPECT_FALSE(std::ranges::is_sorted(Scores()));
    EXPECT_THAT(LinesOf(ReadFile(log)), SizeIs(7));
}

TEST_F(SearchTest, ACancelAfterTheLastAxisStillCounts) {
    Prepare(TwoPoints());
    RecordingMonitor cancelling(6);
    EXPECT_FALSE(RunFit(cancelling));
    ASSERT_FALSE(cancelling.calls.empty());
    EXPECT_EQ(cancelling.calls.back(), "Cancelled");
}

TEST_F(SearchTest, AFitAddsToTheListThatItFinds) {
    FitInput input = TwoPoints();
    input.keep = 5;
    EXPECT_TRUE(Fit(input));
    const std::vector<double> alone = Scores();
    input.earlier.resize(2);
    input.earlier[0].score = 1e9;
    input.earlier[1].score = -1e9;
    EXPECT_TRUE(Fit(input));
    std::vector<double> expected(alone.begin() + 1, alone.end());
    expected.push_back(1e9);
    EXPECT_EQ(Scores(), expected);
}

TEST_F(SearchTest, RejectedPosesAreNeitherStoredNorLogged) {
    FitInput input = OnePoint();
    input.solid = ResiduesAt({{5, 5, 9.5f}});
    input.translationCount = 3;
    input.step = 3;
    input.angleStep = 7;
    input.keep = 100;
    EXPECT_TRUE(Fit(input));
    EXPECT_EQ(counts.tried, 27u);
    EXPECT_GT(counts.accepted, 0u);
    EXPECT_LT(counts.accepted, 27u);
    EXPECT_EQ(Solutions.size(), counts.accepted);
    EXPECT_THAT(LinesOf(ReadFile(log)), SizeIs(int(counts.accepted)));
    for (const SolutionScore &solution : Solutions) {
        const Vertex &t = solution.translation;
        EXPECT_GT(std::hypot(t[0], t[1], t[2] - 4.5), 4 - std::sqrt(3.0))
            << t[0] << ' ' << t[1] << ' ' << t[2];
    }
}

TEST_F(SearchTest, ASearchThatRejectsEverythingFindsNothing) {
    FitInput input = OnePoint();
    input.solid = ResiduesAt({{5, 5, 5}});
    EXPECT_TRUE(Fit(input));
    EXPECT_EQ(counts.tried, 19u);
    EXPECT_EQ(counts.accepted, 0u);
    EXPECT_THAT(Solutions, IsEmpty());
    EXPECT_EQ(ReadFile(log), "");
}

TEST_F(SearchTest, AScoreOfExactlyMinusOneIsLoggedAndDropped) {
    FitInput input = OnePoint();
    input.map = ConstantMap({11, 11, 11}, -1);
    EXPECT_TRUE(Fit(input));
    EXPECT_THAT(Solutions, IsEmpty());
    EXPECT_EQ(counts.accepted, 0u);
    EXPECT_THAT(LinesOf(ReadFile(log)), SizeIs(19));
}

TEST_F(SearchTest, AScoreThatIsNoNumberIsStored) {
    FitInput input = OnePoint();
    input.map = ConstantMap({11, 11, 11}, NAN);
    EXPECT_TRUE(Fit(input));
    ASSERT_THAT(Solutions, SizeIs(10));
    EXPECT_TRUE(std::isnan(Solutions.front().score));
}

TEST_F(SearchTest, SolutionsCarryTheRestraintDistances) {
    FitInput input = OnePoint();
    input.restraints = {{"GLY1", {5, 5, 9}}, {"GLY7", {0, 0, 0}}, {"GLY1", {5, 5, 5}}};
    EXPECT_TRUE(Fit(input));
    ASSERT_FALSE(Solutions.empty());
    EXPECT_THAT(Solutions.front().extraScores,
                ElementsAre(testing::DoubleNear(4, 1e-5), testing::DoubleNear(0, 1e-5)));
    EXPECT_THAT(messages.Debug(), Contains("Extra scores 3"));
}

TEST_F(SearchTest, AMissingRestraintsFileIsSilent) {
    Prepare(OnePoint());
    restraints = true;
    re_fname = QString::fromStdString(folder.File("absent.txt"));
    EXPECT_TRUE(Fit());
    EXPECT_THAT(messages.Warnings(), IsEmpty());
    EXPECT_THAT(messages.Debug(), Contains("Extra scores 1"));
}

TEST_F(SearchTest, EveryFitEmptiesTheLog) {
    FitInput input = OnePoint();
    input.logging = false;
    Prepare(input);
    folder.Write("poses.log", "from an earlier fit\n");
    EXPECT_TRUE(Fit());
    EXPECT_EQ(ReadFile(log), "");
}

TEST_F(SearchTest, TheLogIsEmptiedOnlyWhenTheSearchStarts) {
    Prepare(OnePoint());
    folder.Write("poses.log", "from an earlier fit\n");
    std::string atTheStart;
    monitor.whenStarting = [&] { atTheStart = ReadFile(log); };
    EXPECT_TRUE(Fit());
    EXPECT_EQ(atTheStart, "from an earlier fit\n");
}

TEST_F(SearchTest, TheLogHoldsWhatIsDoneWheneverTheMonitorIsAsked) {
    Prepare(OnePoint());
    std::vector<std::size_t> lines;
    monitor.duringFit = [&] { lines.push_back(LinesOf(ReadFile(log)).size()); };
    EXPECT_TRUE(Fit());
    EXPECT_THAT(lines, ElementsAre(1, 4, 7, 10, 13, 16, 19));
}

TEST_F(SearchTest, ALogThatCannotBeOpenedIsSilent) {
    Prepare(OnePoint());
    for (const std::string &name : {std::string(), folder.File("absent/poses.log"), folder.Path()}) {
        em_fname = QString::fromStdString(name);
        EXPECT_TRUE(Fit());
    }
    EXPECT_THAT(messages.Warnings(), IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(folder.File("absent")));
}

TEST_F(SearchTest, ALogThatIsLostIsSaidOnceAndTheFitGoesOn) {
    Prepare(OnePoint());
    em_fname = "/dev/full";
    EXPECT_TRUE(Fit());
    EXPECT_THAT(monitor.calls,
                ElementsAre("Started", "LogLost: No space left on device", "IsCancelled", "IdentityDone of 6",
                            "IsCancelled", "AxisDone 1 of 6", "IsCancelled", "AxisDone 2 of 6", "IsCancelled",
                            "AxisDone 3 of 6", "IsCancelled", "AxisDone 4 of 6", "IsCancelled",
                            "AxisDone 5 of 6", "IsCancelled", "AxisDone 6 of 6", "Finished"));
    EXPECT_THAT(Solutions, SizeIs(10));
}

TEST_F(SearchTest, EverythingIsPreparedAndNothingScoredWhenItStarts) {
    FitInput input = OnePoint();
    input.solid = ResiduesAt({{50, 5, 5}});
    Prepare(input);
    monitor.whenStarting = [&] {
        EXPECT_THAT(Solutions, IsEmpty());
        EXPECT_TRUE(FindGrid("GridFix"));
        EXPECT_EQ(counts.tried, 0u);
    };
    EXPECT_TRUE(Fit());
    EXPECT_EQ(monitor.fit.keepOut, FindGrid("GridFix"));
    EXPECT_EQ(monitor.fit.map, m_Map);
}

TEST_F(SearchTest, TheListIsTrimmedBeforeTheMonitorHearsOfTheEnd) {
    class AtTheEnd : public RecordingMonitor {
    public:
        void Finished() override { kept = Solutions.size(); }
        std::size_t kept = 0;
    } atTheEnd;
    Prepare(OnePoint());
    EXPECT_TRUE(RunFit(atTheEnd));
    EXPECT_EQ(atTheEnd.kept, 10u);
}

TEST_F(SearchTest, CountsAreKeptUpToDate) {
    Prepare(OnePoint());
    std::vector<std::uint64_t> tried;
    monitor.duringFit = [&] { tried.push_back(counts.tried); };
    EXPECT_TRUE(Fit());
    EXPECT_THAT(tried, ElementsAre(1, 4, 7, 10, 13, 16, 19));
}

TEST_F(SearchTest, TheRemainingTimeFollowsThePaceSoFar) {
    using namespace std::chrono_literals;
    Prepare(OnePoint());
    monitor.whenStarting = [] { std::this_thread::sleep_for(30ms); };
    EXPECT_TRUE(Fit());
    ASSERT_THAT(monitor.minutes, SizeIs(6));
    EXPECT_GE(monitor.minutes[0], 30 / 60000.0 * 5);
    EXPECT_GE(monitor.minutes[2], 30 / 60000.0 / 3 * 3);
    EXPECT_EQ(monitor.minutes[5], 0);
}

TEST_F(SearchTest, NodesRemovedDuringAFitLeaveAfterIt) {
    FitInput input = TwoPoints();
    input.solid = ResiduesAt({{50, 5, 5}, {50, 8, 5}});
    const FitOutcome expected = PlainFit(input);
    Prepare(input);
    const Grid *keepOut = nullptr;
    monitor.whenStarting = [&] {
        keepOut = monitor.fit.keepOut;
        for (Compound *node :
             {m_Target, m_Map, m_Solid.front(), static_cast<Compound *>(const_cast<Grid *>(keepOut))})
            Space::instance()->Remove(node);
    };
    monitor.duringFit = [&] {
        EXPECT_TRUE(m_Target->IsAttached());
        EXPECT_TRUE(m_Map->IsAttached());
        EXPECT_TRUE(m_Solid.front()->IsAttached());
        EXPECT_TRUE(keepOut->IsAttached());
    };
    EXPECT_TRUE(Fit());
    EXPECT_EQ(FullPrecision(PlainSolutions()), expected.list);
    EXPECT_FALSE(m_Target->IsAttached());
    EXPECT_FALSE(m_Map->IsAttached());
    EXPECT_FALSE(m_Solid.front()->IsAttached());
    EXPECT_FALSE(keepOut->IsAttached());
    EXPECT_FALSE(Fit());
}

TEST_F(SearchTest, AFitRunTwiceGivesTheSameBytes) {
    FitInput input = TwoPoints();
    input.solid = ResiduesAt({{9, 9, 9}});
    input.restraints = {{"GLY1", {5, 5, 9}}};
    const FitOutcome once = EngineFit(input), twice = EngineFit(input);
    EXPECT_EQ(once.results, twice.results);
    EXPECT_EQ(once.log, twice.log);
    EXPECT_EQ(once.list, twice.list);
}

TEST_F(SearchTest, AReadOnlyModelHasNoKeepOutGridAndTheFitRuns) {
    FitInput input = OnePoint();
    input.solid = ResiduesAt({{5, 5, 5}});
    Prepare(input);
    Space::instance()->SetReadOnly(true);
    EXPECT_TRUE(Fit());
    EXPECT_FALSE(monitor.fit.keepOut);
    EXPECT_THAT(Solutions, SizeIs(10));
}
