#include "FastSearch.h"
#include "Messages.h"
#include "Parameters.h"
#include "RandomSearch.h"
#include "Scoring.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hwy/highway.h>

#include <bit>
#include <cmath>

using testing::ElementsAre;

namespace {

/// Answers yes when the search asks for the n-th time whether to stop, and writes down everything it hears.
class Listener : public FitMonitor {
public:
    explicit Listener(std::optional<std::size_t> cancelAt)
        : m_cancelAt(cancelAt) {}

    void Started(const Preparation &) override { heard.push_back("started"); }
    bool IsCancelled() override {
        heard.push_back("cancelled?");
        return m_asked++ == m_cancelAt;
    }
    void IdentityDone(std::size_t axes) override { heard.push_back("identity of " + std::to_string(axes)); }
    void AxisDone(std::size_t done, std::size_t axes, double) override {
        heard.push_back("axis " + std::to_string(done) + " of " + std::to_string(axes));
    }
    void Cancelled() override { heard.push_back("cancelled with " + std::to_string(Solutions.size())); }
    void Finished() override { heard.push_back("finished with " + std::to_string(Solutions.size())); }

    std::vector<std::string> heard;

private:
    std::optional<std::size_t> m_cancelAt;
    std::size_t m_asked = 0;
};

/// A solution, bit for bit.
std::vector<std::uint64_t> BitsOf(const SolutionScore &solution) {
    std::vector<std::uint64_t> bits;
    for (const double number : {solution.rotation.w(), solution.rotation.x(), solution.rotation.y(),
                                solution.rotation.z(), solution.score})
        bits.push_back(std::bit_cast<std::uint64_t>(number));
    for (const unsigned i : {0u, 1u, 2u})
        bits.push_back(std::bit_cast<std::uint32_t>(solution.translation[i]));
    bits.push_back(solution.translation.IsValid());
    for (const double distance : solution.extraScores)
        bits.push_back(std::bit_cast<std::uint64_t>(distance));
    return bits;
}

/// Everything that can be seen of a search.
struct Outcome {
    bool completed = false;
    std::vector<std::vector<std::uint64_t>> solutions;
    std::vector<std::string> heard, debug, warnings;
    std::uint64_t tried = 0, accepted = 0, scoredExactly = 0;
};

Outcome RunRandom(const RandomSearch &random, const SearchOptions &options) {
    Solutions = random.earlier;
    top_size = random.keep;
    logging = false;
    em_fname.clear();
    Listener listener(random.cancelAt);
    PoseCounts counts;
    Outcome outcome;
    const Messages messages;
    outcome.completed = RunSearch(random.fit, listener, counts, options);
    for (const SolutionScore &solution : Solutions)
        outcome.solutions.push_back(BitsOf(solution));
    outcome.heard = listener.heard;
    outcome.debug = messages.Debug();
    outcome.warnings = messages.Warnings();
    outcome.tried = counts.tried;
    outcome.accepted = counts.accepted;
    outcome.scoredExactly = counts.scoredExactly;
    Solutions.clear();
    return outcome;
}

/// Lets the kernels run with one instruction set only, while it lives.
class OnlyTarget {
public:
    explicit OnlyTarget(std::int64_t target) { Choose(target); }
    ~OnlyTarget() { Choose(0); }

private:
    static void Choose(std::int64_t target) {
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    }
};

/// The instruction sets that this machine can run, the emulated one among them.
std::vector<std::int64_t> Targets() {
    std::vector<std::int64_t> targets;
    for (std::int64_t rest = hwy::SupportedTargets() & HWY_TARGETS; rest != 0; rest &= rest - 1)
        targets.push_back(rest & -rest);
    return targets;
}

void ExpectSame(const Outcome &found, const Outcome &expected) {
    ASSERT_EQ(found.completed, expected.completed);
    ASSERT_EQ(found.heard, expected.heard);
    ASSERT_EQ(found.debug, expected.debug);
    ASSERT_EQ(found.warnings, expected.warnings);
    ASSERT_EQ(found.tried, expected.tried);
    ASSERT_EQ(found.accepted, expected.accepted);
    ASSERT_EQ(found.solutions, expected.solutions);
}

bool Serves(const RandomSearch &random) {
    Solutions = random.earlier;
    const bool serves = fast::FastSearch::Serves(random.fit);
    Solutions.clear();
    return serves;
}

class FastSearchOn : public testing::TestWithParam<std::int64_t> {};

std::string NameOf(const testing::TestParamInfo<std::int64_t> &info) {
    return hwy::TargetName(info.param);
}

} // namespace

TEST_P(FastSearchOn, GivesWhatPoseByPoseGives) {
    const OnlyTarget target(GetParam());
    unsigned fast = 0, cancelled = 0;
    constexpr unsigned cases = 1500;
    for (unsigned seed = 0; seed < cases; ++seed) {
        const RandomSearch random(seed);
        SCOPED_TRACE("seed " + std::to_string(seed));
        const Outcome expected = RunRandom(random, {.poseByPose = true});
        ASSERT_NO_FATAL_FAILURE(ExpectSame(RunRandom(random, {}), expected));
        fast += Serves(random);
        cancelled += !expected.completed;
    }
    EXPECT_GT(fast, cases / 2) << "too few of the searches were fast ones";
    EXPECT_GT(cancelled, cases / 4);
}

INSTANTIATE_TEST_SUITE_P(Targets, FastSearchOn, testing::ValuesIn(Targets()), NameOf);

namespace {

/// Coordinates about the places where one voxel's share ends and the next one's begins, the grid's own ends
/// among them, each with the next floats below and above.
std::vector<float> CriticalCoordinates(const fast::GridAxis &axis) {
    std::vector<float> coordinates;
    for (int i = -3; i <= axis.count + 2; i += i > 100 && i < axis.count - 100 ? 997 : 1)
        for (const double part : {0.0, 0.5}) {
            float p = float(axis.origin + (i + part) * axis.spacing);
            for (int step = 0; step < 3; ++step)
                p = std::nextafter(p, -INFINITY);
            for (int step = 0; step < 7; ++step, p = std::nextafter(p, INFINITY))
                coordinates.push_back(p);
        }
    coordinates.resize(fast::Padded(coordinates.size()));
    return coordinates;
}

} // namespace

TEST_P(FastSearchOn, FindsTheVoxelsThatScoringFinds) {
    const OnlyTarget target(GetParam());
    for (const fast::GridAxis axis : {fast::GridAxis{0, 1, 7, 1}, fast::GridAxis{0, 1, 1 << 22, 3},
                                      fast::GridAxis{-3.25f, 1.742f, 100, 10},
                                      fast::GridAxis{1e4f, 0.3f, 300, 1}, fast::GridAxis{5, 1e-6f, 20, 1}}) {
        const std::vector<float> coordinates = CriticalCoordinates(axis);
        std::vector<std::int32_t> found(coordinates.size());
        fast::MapCoordinates(coordinates.data(), coordinates.size(), 0, axis, found.data());
        for (std::size_t i = 0; i < coordinates.size(); ++i) {
            const float p = coordinates[i];
            const unsigned voxel = NearestVoxel(p, axis.origin, axis.spacing, unsigned(axis.count));
            const int index = voxel < unsigned(axis.count) ? int(voxel) : p < axis.origin ? -1 : axis.count;
            ASSERT_EQ(found[i], index * axis.stride) << p << " on an axis of spacing " << axis.spacing;
        }
    }
}

class ThreadedSearch : public testing::TestWithParam<unsigned> {};

TEST_P(ThreadedSearch, GivesWhatPoseByPoseGives) {
    unsigned fast = 0;
    constexpr unsigned firstSeed = 10000, cases = 600;
    for (unsigned seed = firstSeed; seed < firstSeed + cases; ++seed) {
        const RandomSearch random(seed);
        SCOPED_TRACE("seed " + std::to_string(seed));
        const Outcome expected = RunRandom(random, {.poseByPose = true});
        ASSERT_NO_FATAL_FAILURE(ExpectSame(RunRandom(random, {.threads = GetParam()}), expected));
        fast += Serves(random) && random.fit.axes.size() > 1;
    }
    EXPECT_GT(fast, cases / 4) << "too few of the searches had work for threads";
}

INSTANTIATE_TEST_SUITE_P(Threads, ThreadedSearch, testing::Values(2, 3, 8),
                         testing::PrintToStringParamName());

TEST(ThreadsOfASearch, AreAsManyAsMemoryHolds) {
    const Grid map("map", {10, 10, 10}, {0, 0, 0}, {1, 1, 1}, {90, 90, 90});
    Preparation fit;
    fit.map = &map;
    fit.target.points.resize(375);
    fit.offsets.resize(31 * 31 * 31);
    fit.angleStep = 0.1;
    EXPECT_EQ(fast::FastSearch::ThreadsWithin(fit, 100, 1), 1);
    EXPECT_EQ(fast::FastSearch::ThreadsWithin(fit, 100, 64), 64);
    EXPECT_LT(fast::FastSearch::ThreadsWithin(fit, 100, 1024), 128); // more than half a MiB each for tables
    EXPECT_EQ(fast::FastSearch::ThreadsWithin(fit, 100'000, 64), 4); // 12 MiB each for entries
    EXPECT_EQ(fast::FastSearch::ThreadsWithin(fit, 10'000'000, 64), 1);
}
