#include "placement/Confidence.h"

#include "SyntheticModel.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace placement;

namespace {

/// Scores of wrong places: the number of those above s falls like exp(-s²/b).
std::vector<double> WrongScores(std::size_t number, double b, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> uniform(0, 1);
    std::vector<double> scores;
    for (std::size_t i = 0; i < number; ++i)
        scores.push_back(std::sqrt(-b * std::log(uniform(random))));
    std::ranges::sort(scores, std::ranges::greater());
    return scores;
}

} // namespace

TEST(Confidence, TheTailOfDrawnScoresIsFound) {
    double sum = 0;
    for (unsigned seed = 0; seed < 200; ++seed)
        sum += FitWrongTail(WrongScores(500, 40, seed)).scale / 200;
    EXPECT_NEAR(sum, 40, 2);
}

TEST(Confidence, ChanceSeldomLooksLikeAPlace) {
    int sure = 0;
    double expected = 0;
    for (unsigned seed = 0; seed < 1000; ++seed) {
        const std::vector<double> scores = WrongScores(500, 40, seed);
        const WrongTail tail = FitWrongTail(scores);
        sure += tail.Probability(scores.front()) >= 0.95;
        expected += std::exp(tail.LogExpected(scores.front())) / 1000;
    }
    // E of the best of many wrong ones is 1 on average. It lies below 1/152, where p is 0.95, in 7 cases of
    // 1000; the fit of the tail to 120 scores adds some.
    EXPECT_NEAR(expected, 1, 0.3);
    EXPECT_LT(sure, 20);
}

TEST(Confidence, TheProbabilityFallsWithTheNumberOfWrongPlacesExpected) {
    // ln E = -score².
    const WrongTail tail{.scale = 1, .square = 0, .number = 1};
    EXPECT_NEAR(tail.Probability(0), 1.0 / 9, 1e-12);
    EXPECT_NEAR(tail.Probability(std::sqrt(5.0)), 0.95, 0.002);
    EXPECT_NEAR(tail.Probability(std::sqrt(3.0)), 1 / (1 + 8 * std::exp(-3.0)), 1e-12);
}

TEST(Confidence, ManyEqualCopiesDoNoHarm) {
    std::vector<double> scores = WrongScores(500, 40, 1);
    const double alone = FitWrongTail(scores).LogExpected(40);
    scores.insert(scores.begin(), 25, 40);
    const WrongTail tail = FitWrongTail(scores);
    EXPECT_GT(tail.Probability(40), 0.99);
    EXPECT_LT(tail.LogExpected(40), 0.3 * alone);
}

TEST(Confidence, FewOrEqualScoresSayNothing) {
    EXPECT_LT(FitWrongTail(std::vector<double>{100, 1, 1}).Probability(100), 0.5);
    EXPECT_LT(FitWrongTail(std::vector<double>(90, 5.0)).Probability(5), 0.5);
    EXPECT_LT(FitWrongTail({}).Probability(5), 0.5);
}

TEST(Confidence, OtherTurnsInTheSameHoleWeighAgainstTheBest) {
    const PointModel model = MakePointModel(RandomModel(60, 1));
    std::vector<ScoredPose> places{{Pose{RotationBy({}), {0, 0, 0}}, 60}};
    const std::vector<double> scores = WrongScores(100, 40, 2);
    for (std::size_t i = 0; i < scores.size(); ++i)
        places.push_back({Pose{RotationBy({}), {100.0 + 40 * double(i), 0, 0}}, scores[i]});
    const WrongTail tail = FitWrongTail(scores);
    const Confidence alone = ConfidenceOf(model, places, tail);
    EXPECT_EQ(alone.otherTurns, 0);
    EXPECT_GT(alone.probability, 0.99);
    places.insert(places.begin() + 1, {Pose{RotationBy({0, 0, 3}), {1, 0, 0}}, 60});
    const Confidence twofold = ConfidenceOf(model, places, tail);
    EXPECT_NEAR(twofold.otherTurns, 1, 1e-9);
    EXPECT_NEAR(twofold.probability, twofold.place / 2, 1e-9);
    EXPECT_GT(twofold.place, 0.99);
}
