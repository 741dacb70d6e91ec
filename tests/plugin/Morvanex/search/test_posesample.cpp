#include "EngineTest.h"
#include "Messages.h"
#include "RandomFit.h"
#include "search/PoseSample.h"

#include <cmath>

namespace {

/// The scores of every pose of the input's search, collided ones left out, in the order of the search.
std::vector<double> AllScores(FitInput input) {
    input.keep = 1000000;
    input.earlier.clear();
    input.cancelAfter.reset();
    PlainFit(input);
    std::vector<double> scores;
    const TemporaryFolder folder;
    LoadFit(input, folder);
    RecordingMonitor monitor;
    RunFit(monitor);
    for (const SolutionScore &solution : Solutions)
        scores.push_back(solution.score);
    return scores;
}

class PoseSampleTest : public EngineTest {
protected:
    /// A sample of the search that the input describes.
    search::PoseSample Sample(FitInput input, std::uint64_t size) {
        input.cancelAfter = 0;
        LoadFit(input, folder);
        RecordingMonitor monitor(0);
        search::PoseSample sample;
        monitor.whenStarting = [&] { sample = search::SamplePoses(monitor.fit, size); };
        RunFit(monitor);
        return sample;
    }

    const Messages quiet;
};

} // namespace

TEST_F(PoseSampleTest, OfAllPosesIsTheWholeSearch) {
    int compared = 0;
    for (unsigned seed = 0; seed < 40; ++seed) {
        const FitInput input = RandomFit(seed);
        const std::vector<double> scores = AllScores(input);
        const search::PoseSample sample = Sample(input, 1000000);
        double sum = 0, squares = 0;
        for (const double score : scores)
            sum += score;
        ASSERT_EQ(sample.poses, scores.size()) << seed;
        if (scores.size() < 2)
            continue;
        const double mean = sum / double(scores.size());
        for (const double score : scores)
            squares += (score - mean) * (score - mean);
        const double deviation = std::sqrt(squares / double(scores.size() - 1));
        EXPECT_NEAR(sample.mean, mean, 1e-9 * std::max(1.0, std::fabs(mean) + deviation)) << seed;
        EXPECT_NEAR(sample.deviation, deviation, 1e-9 * std::max(1.0, deviation)) << seed;
        ++compared;
    }
    EXPECT_GT(compared, 20);
}

TEST_F(PoseSampleTest, OfOneIsTheIdentityPose) {
    FitInput input;
    input.target = ResiduesAt({{1, 1, 1}});
    input.map = ConstantMap({3, 3, 3}, 0);
    input.map->values[13] = 5; // under the target where it stands
    const search::PoseSample sample = Sample(input, 1);
    EXPECT_EQ(sample.poses, 1u);
    EXPECT_EQ(sample.mean, 5);
    EXPECT_EQ(sample.deviation, 0);
}

TEST_F(PoseSampleTest, IsSpreadOverTheSearch) {
    FitInput input;
    input.target = ResiduesAt({{1, 1, 1}});
    input.translationCount = 3;
    input.angleStep = 0.5;
    input.map = ConstantMap({3, 3, 3}, 2);
    input.map->values[13] = 5; // under the one pose in 27 that does not move
    const search::PoseSample sample = Sample(input, 270);
    EXPECT_EQ(sample.poses, 270u);
    EXPECT_GT(sample.mean, 2);
    EXPECT_LT(sample.mean, 3);
    EXPECT_GT(sample.deviation, 0);
}

TEST_F(PoseSampleTest, AMeanOfEqualScoresIsThatScore) {
    FitInput input;
    input.target = ResiduesAt({{1, 1, 1}});
    input.map = ConstantMap({3, 3, 3}, 0.1f);
    const search::PoseSample sample = Sample(input, 3);
    EXPECT_EQ(sample.mean, double(0.1f));
    EXPECT_EQ(sample.deviation, 0);
}

TEST_F(PoseSampleTest, WithoutAnyPoseIsEmpty) {
    FitInput input;
    input.target = input.solid = ResiduesAt({{1, 1, 1}}); // collides at every angle
    EXPECT_EQ(Sample(input, 100).poses, 0u);
    input.translationCount = -3;
    EXPECT_EQ(Sample(input, 100).poses, 0u);
    EXPECT_EQ(Sample(RandomFit(1), 0).poses, 0u);
}
