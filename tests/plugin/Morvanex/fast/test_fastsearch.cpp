#include "LongTests.h"
#include "Messages.h"
#include "OnlyTarget.h"
#include "RandomSearch.h"
#include "RunFit.h"
#include "fast/FastSearch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>

using namespace VARNO;

namespace {

/// Answers yes when the search asks for the n-th time whether to stop, and writes down everything it hears.
class Listener : public search::FitMonitor {
public:
    Listener(std::optional<std::size_t> cancelAt, const std::list<SolutionScore> &solutions)
        : m_cancelAt(cancelAt)
        , m_solutions(solutions) {}

    void Started(const fit::Preparation &) override { heard.push_back("started"); }
    bool IsCancelled() override {
        heard.push_back("cancelled?");
        return m_asked++ == m_cancelAt;
    }
    void IdentityDone(std::size_t axes) override { heard.push_back("identity of " + std::to_string(axes)); }
    void AxisDone(std::size_t done, std::size_t axes, double) override {
        heard.push_back("axis " + std::to_string(done) + " of " + std::to_string(axes));
    }
    void Cancelled() override { heard.push_back("cancelled with " + std::to_string(m_solutions.size())); }
    void Finished() override { heard.push_back("finished with " + std::to_string(m_solutions.size())); }

    std::vector<std::string> heard;

private:
    std::optional<std::size_t> m_cancelAt;
    const std::list<SolutionScore> &m_solutions;
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
    fit::FitParameters parameters;
    parameters.keep = random.keep;
    std::list<SolutionScore> solutions = random.earlier;
    Listener listener(random.cancelAt, solutions);
    search::PoseCounts counts;
    Outcome outcome;
    const Messages messages;
    outcome.completed = RunSearch(random.fit, parameters, solutions, listener, counts, options);
    for (const SolutionScore &solution : solutions)
        outcome.solutions.push_back(BitsOf(solution));
    outcome.heard = listener.heard;
    outcome.debug = messages.Debug();
    outcome.warnings = messages.Warnings();
    outcome.tried = counts.tried;
    outcome.accepted = counts.accepted;
    outcome.scoredExactly = counts.scoredExactly;
    return outcome;
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
    return fast::FastSearch::Serves(random.fit, random.earlier);
}

class FastSearchOn : public testing::TestWithParam<std::int64_t> {};

/// Each instruction set has searches of its own: together they meet more of them.
unsigned FirstSeed(std::int64_t target, unsigned cases) {
    const std::vector<std::int64_t> targets = Targets();
    return unsigned(std::ranges::find(targets, target) - targets.begin()) * cases;
}

} // namespace

TEST_P(FastSearchOn, GivesWhatPoseByPoseGives) {
    const OnlyTarget target(GetParam());
    unsigned fast = 0, cancelled = 0;
    const unsigned cases = RandomCases(200, 1500), firstSeed = FirstSeed(GetParam(), cases);
    for (unsigned seed = firstSeed; seed < firstSeed + cases; ++seed) {
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

class ThreadedSearch : public testing::TestWithParam<unsigned> {};

TEST_P(ThreadedSearch, GivesWhatPoseByPoseGives) {
    unsigned fast = 0;
    const unsigned cases = RandomCases(100, 600), firstSeed = 10000 + GetParam() * cases;
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
    fit::Preparation fit;
    fit.map = &map;
    fit.target.points.resize(375);
    fit.offsets.resize(29791); // 31 along each axis
    fit.angleStep = 0.1;
    EXPECT_EQ(fast::FastSearch::ThreadsWithin(fit, 100, 1), 1);
    EXPECT_EQ(fast::FastSearch::ThreadsWithin(fit, 100, 64), 64);
    EXPECT_LT(fast::FastSearch::ThreadsWithin(fit, 100, 1024), 128); // more than half a MiB each for tables
    EXPECT_EQ(fast::FastSearch::ThreadsWithin(fit, 100'000, 64), 4); // 12 MiB each for entries
    EXPECT_EQ(fast::FastSearch::ThreadsWithin(fit, 10'000'000, 64), 1);
}
