#include "EngineTest.h"
#include "Messages.h"
#include "fast/FastSearch.h"
#include "fit/Rotations.h"

#include <gmock/gmock.h>

#include <algorithm>

using namespace VARNO;

using testing::Contains;
using testing::Not;

/// What stands in the list after a search or a cancel, the same however the poses are scored. The searches
/// are made by hand, small enough to be followed on paper.

namespace {

constexpr auto tooShort = "Solutions list is shorter than requested size, not weeding.";

struct Way {
    const char *name;
    SearchOptions options;
};

void PrintTo(const Way &way, std::ostream *out) {
    *out << way.name;
}

class KeptSolutions : public EngineTest, public testing::WithParamInterface<Way> {
protected:
    /// Two points, 4 Å on either side of the origin along x, are rotated by 4 radians about z: then they lie
    /// 3 Å on either side of it along y. There are 27 offsets, half an Å apart: 54 poses in all. The map has
    /// the value 1 everywhere.
    KeptSolutions() {
        fit.target.points = {{Vertex(-4, 0, 0, false), 'G'}, {Vertex(4, 0, 0, false), 'G'}};
        fit.target.centre = Vertex(0, 0, 0, false);
        fit.axes = {Vertex(0, 0, 1, false)};
        fit.angleStep = 4;
        fit.offsets = fit::TranslationOffsets(3, 0.5);
        fit.map = &map;
        std::ranges::fill(map.Values(), 1.0f);
    }

    /// The rotated poses collide, the others do not.
    void LetRotatedPosesCollide() {
        fit.keepOut = &keepOut;
        for (unsigned i = 0; i < 15; ++i)
            for (unsigned j = 0; j < 15; ++j)
                for (unsigned k = 0; k < 15; ++k)
                    keepOut.SetValue(i, j, k, std::abs(keepOut.GetPoint(i, j, k)[1]) < 1.5f ? 0.0f : 6.0f);
    }

    /// Runs the search, which is cancelled at that question, if any; that of the identity pass is 0.
    void Search(int keep, std::optional<std::size_t> cancelAt = {}) {
        ASSERT_TRUE(fast::FastSearch::Serves(fit, solutions)) << "all ways would be one";
        fit::FitParameters parameters;
        parameters.keep = keep;
        counts = {};
        RecordingMonitor monitor(cancelAt);
        EXPECT_EQ(RunSearch(fit, parameters, solutions, monitor, counts, GetParam().options), !cancelAt);
    }

    std::vector<double> Scores() const {
        std::vector<double> scores;
        for (const SolutionScore &solution : solutions)
            scores.push_back(solution.score);
        return scores;
    }

    /// Whether the only solution is the very last pose of the search.
    void ExpectTheLastPose() {
        ASSERT_EQ(solutions.size(), 1u);
        fit::Rotations rotations(fit);
        search::PoseScorer scorer(fit);
        scorer.Rotate(rotations.At(rotations.Count() - 1));
        const SolutionScore last = scorer.Score(fit.offsets.back()), &found = solutions.front();
        EXPECT_EQ(found.translation, last.translation);
        EXPECT_EQ(found.rotation.w(), last.rotation.w());
        EXPECT_EQ(found.rotation.x(), last.rotation.x());
        EXPECT_EQ(found.score, last.score);
    }

    Grid map{"map", {2, 2, 2}, {-10, -10, -10}, {20, 20, 20}, {90, 90, 90}};
    Grid keepOut{"keep out", {15, 15, 15}, {-7, -7, -7}, {1, 1, 1}, {90, 90, 90}};
    fit::Preparation fit;
    std::list<SolutionScore> solutions;
    search::PoseCounts counts;
    Messages messages;
};

} // namespace

TEST_P(KeptSolutions, TheListIsTrimmedAfterTheFirstRotatedPoseEvenIfThatIsRejected) {
    LetRotatedPosesCollide();
    Search(5, 1);
    EXPECT_EQ(counts.accepted, 27u);
    EXPECT_EQ(solutions.size(), 5u); // the identity pass alone left 27
}

TEST_P(KeptSolutions, TheListIsTrimmedWhenItHasGrownBeyondTwiceTheSizeAndNotBefore) {
    Search(27, 1);
    EXPECT_EQ(solutions.size(), 54u);
    solutions.clear();
    Search(26, 1);
    EXPECT_EQ(solutions.size(), 26u + 1); // the 53rd is one too many, and one comes after it
}

TEST_P(KeptSolutions, OfEqualScoresTheLastPoseSurvives) {
    Search(1);
    ExpectTheLastPose();
}

TEST_P(KeptSolutions, OfEqualScoresTheLastPoseSurvivesWithASingleOffset) {
    fit.offsets = fit::TranslationOffsets(1, 0);
    fit.axes.assign(9, Vertex(1, 0, 0, false));
    fit.axes.push_back(Vertex(0, 0, 1, false));
    Search(1);
    ExpectTheLastPose();
}

/// Coordinates are multiples of 2 Å there: offsets from -7 to 7 Å become -8 to 8, more than the window of 16
/// voxels holds that 15 offsets take.
TEST_P(KeptSolutions, OfEqualScoresTheLastPoseSurvivesFarFromTheOrigin) {
    constexpr float far = 2e7f;
    fit.target.points = {{Vertex(far, far, far, false), 'G'}};
    fit.target.centre = Vertex(far, far, far, false);
    fit.offsets = fit::TranslationOffsets(15, 1);
    Grid there("map", {40, 40, 40}, {far - 20, far - 20, far - 20}, {1, 1, 1}, {90, 90, 90});
    std::ranges::fill(there.Values(), 1.0f);
    fit.map = &there;
    fit.axes.assign(40, Vertex(0, 0, 1, false));
    Search(1);
    ExpectTheLastPose();
}

TEST_P(KeptSolutions, PosesThatScoreExactlyMinusOneAreNotAcceptedHoweverLowTheyScore) {
    // One point, which the offsets move to voxels of -1, -0.75 and 5 along x.
    fit.target.points = {{Vertex(0, 0, 0, false), 'G'}};
    fit.offsets = fit::TranslationOffsets(3, 2);
    Grid steps("map", {3, 3, 3}, {-2, -2, -2}, {2, 2, 2}, {90, 90, 90});
    for (unsigned j = 0; j < 3; ++j)
        for (unsigned k = 0; k < 3; ++k)
            for (const auto &[i, value] : {std::pair(0u, -1.0f), std::pair(1u, -0.75f), std::pair(2u, 5.0f)})
                steps.SetValue(i, j, k, value);
    fit.map = &steps;
    Search(1);
    EXPECT_EQ(counts.tried, 54u);
    EXPECT_EQ(counts.accepted, 36u);
    EXPECT_THAT(Scores(), testing::ElementsAre(5));
    if (!GetParam().options.poseByPose) {
        EXPECT_LT(counts.scoredExactly, 54u) << "no bound was asked";
    }
}

TEST_P(KeptSolutions, AListJustAsLongAsAskedForIsSortedAndAShorterOneStaysInTheOrderOfThePoses) {
    map.SetValue(1, 1, 1, 3); // some poses score more, most of them the same
    map.SetValue(0, 0, 0, -2.5f);
    fit.offsets = fit::TranslationOffsets(3, 7);
    Search(55);
    ASSERT_EQ(solutions.size(), 54u);
    EXPECT_THAT(messages.Debug(), Contains(tooShort));
    std::list<SolutionScore> expected = solutions;
    for (std::size_t i = 0; i < 27; ++i)
        EXPECT_EQ(std::next(solutions.begin(), std::ptrdiff_t(i))->translation, fit.offsets[i]);
    EXPECT_FALSE(std::ranges::is_sorted(Scores()));

    messages.Clear();
    solutions.clear();
    Search(54);
    EXPECT_THAT(messages.Debug(), Not(Contains(tooShort)));
    expected.sort(); // equal scores stay in their order
    ASSERT_EQ(solutions.size(), 54u);
    EXPECT_TRUE(std::ranges::equal(solutions, expected, [](const auto &a, const auto &b) {
        return a.score == b.score && a.translation == b.translation && a.rotation.w() == b.rotation.w();
    }));
}

TEST_P(KeptSolutions, AListJustAsLongAsAskedForStaysInTheOrderOfThePosesAfterACancel) {
    map.SetValue(1, 1, 1, 3);
    fit.offsets = fit::TranslationOffsets(3, 7);
    Search(27, 0);
    ASSERT_EQ(solutions.size(), 27u);
    auto solution = solutions.begin();
    for (const Vertex &offset : fit.offsets)
        EXPECT_EQ((solution++)->translation, offset);
}

INSTANTIATE_TEST_SUITE_P(Ways, KeptSolutions,
                         testing::Values(Way{"PoseByPose", {.poseByPose = true}}, Way{"Fast", {}},
                                         Way{"FastOnTwoThreads", {.threads = 2}}),
                         [](const auto &test) { return test.param.name; });
