#include "EngineTest.h"
#include "Messages.h"
#include "search/Scoring.h"

#include "Space.h"

#include <QTextStream>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

using namespace VARNO;

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

Vertex V(float x, float y, float z) {
    return Vertex(x, y, z, false);
}

TaggedPoint At(float x, float y = 0, float z = 0) {
    return {V(x, y, z), 'G'};
}

/// A map of 3 x 4 x 5 voxels; voxel (i, j, k) holds 100 i + 10 j + k + 1.
PlainMap Numbered(Point origin, Point spacing) {
    PlainMap map{{3, 4, 5}, origin, spacing, {}};
    for (int k = 0; k < 5; ++k)
        for (int j = 0; j < 4; ++j)
            for (int i = 0; i < 3; ++i)
                map.values.push_back(float(100 * i + 10 * j + k + 1));
    return map;
}

class Scoring : public EngineTest {
protected:
    SolutionScore Pose(const Grid *map, const Grid *solid, bool logging = false) {
        Quaternion rotation;
        rotation.Set(std::acos(-1.0) / 2, V(0, 0, 1)); // x to y
        moved.assign(points.size(), TaggedPoint());
        extraScores.assign(pairs.size(), 0.0);
        return DoScores(rotation, V(1, 2, 3), map, points, solid, pairs, moved, extraScores, log, logging);
    }

    std::vector<TaggedPoint> points = {At(1), At(2)}, moved;
    std::vector<RestraintPair> pairs;
    std::vector<double> extraScores;
    QString logged;
    QTextStream log{&logged};
};

} // namespace

TEST(NearestVoxel, APointOnTheOriginIsVoxelZero) {
    EXPECT_EQ(search::NearestVoxel(-4, -4, 2, 3), 0u);
}

TEST(NearestVoxel, ReachesOneAndAHalfSpacingsBelowTheOrigin) {
    EXPECT_EQ(search::NearestVoxel(-0.6f, 0, 1, 3), 0u);
    EXPECT_EQ(search::NearestVoxel(-1.4f, 0, 1, 3), 0u);
    EXPECT_EQ(search::NearestVoxel(std::nextafter(-1.5f, 0.0f), 0, 1, 3), 0u);
    EXPECT_GE(search::NearestVoxel(-1.5f, 0, 1, 3), 3u);
    EXPECT_GE(search::NearestVoxel(-1.6f, 0, 1, 3), 3u);
}

TEST(NearestVoxel, EndsHalfASpacingAboveTheLastVoxel) {
    EXPECT_EQ(search::NearestVoxel(3 - 0.6f, 0, 1, 3), 2u);
    EXPECT_GE(search::NearestVoxel(3 - 0.5f, 0, 1, 3), 3u);
    EXPECT_GE(search::NearestVoxel(30, 0, 1, 3), 3u);
}

TEST(NearestVoxel, HalvesGoUp) {
    EXPECT_EQ(search::NearestVoxel(0.5f, 0, 1, 3), 1u);
    EXPECT_EQ(search::NearestVoxel(std::nextafter(0.5f, 0.0f), 0, 1, 3), 0u);
    EXPECT_EQ(search::NearestVoxel(10 + 3 * 1.5f, 10, 3, 5), 2u);
}

TEST(NearestVoxel, TheDifferenceAndTheQuotientAreFormedInFloat) {
    // Exactly, both lie below the half.
    EXPECT_EQ(search::NearestVoxel(std::nextafter(0.5f, 0.0f), -2e-8f, 1, 5), 1u);
    EXPECT_EQ(search::NearestVoxel(std::nextafter(1.5f, 2.0f), 0, std::nextafter(1.0f, 2.0f), 5), 2u);
}

TEST(NearestVoxel, TheHalfIsAddedInDouble) {
    EXPECT_EQ(search::NearestVoxel(std::nextafter(0.5f, 0.0f), 0, 1, 5), 0u); // in float the sum would be 1
}

TEST(NearestVoxel, WhatIsNoNumberOrDoesNotFitIsOutside) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    for (const float p :
         {NAN, infinity, -infinity, 3e38f, -3e38f, 1e19f, -1e19f, 4294967296.0f, -4294967296.0f})
        EXPECT_GE(search::NearestVoxel(p, 0, 1, 3), 3u) << p;
    EXPECT_GE(search::NearestVoxel(0, 0, 0, 3), 3u);
    EXPECT_GE(search::NearestVoxel(1, 0, 0, 3), 3u);
    EXPECT_GE(search::NearestVoxel(1e30f, 0, 1e-30f, 3), 3u);
    EXPECT_GE(search::NearestVoxel(0, 0, 1, 0), 0u);
}

TEST_F(Scoring, SumsTheVoxelsUnderThePoints) {
    const Grid *map = AddMap(Numbered({0, 0, 0}, {1, 1, 1}));
    EXPECT_EQ(Score({At(0, 0, 0)}, map), 1);
    EXPECT_EQ(Score({At(2, 3, 4)}, map), 235);
    EXPECT_EQ(Score({At(2, 3, 4), At(1, 0, 0), At(2, 3, 4)}, map), 235 + 101 + 235);
    EXPECT_EQ(Score(std::vector<TaggedPoint>(), map), 0);
}

TEST_F(Scoring, EachAxisHasItsOwnOriginAndSpacing) {
    const Grid *map = AddMap(Numbered({-10, 20, 300}, {2, 3, 0.5}));
    EXPECT_EQ(Score({At(-8, 29, 301)}, map), 100 + 30 + 2 + 1);
}

TEST_F(Scoring, PointsOutsideOnAnyAxisCountNothing) {
    const Grid *map = AddMap(Numbered({0, 0, 0}, {1, 1, 1}));
    EXPECT_EQ(Score({At(-1.4f, -1.4f, -1.4f)}, map), 1);
    for (const TaggedPoint &outside : {At(-1.5f, 1, 1), At(1, -1.5f, 1), At(1, 1, -1.5f), At(2.5f, 1, 1),
                                       At(1, 3.5f, 1), At(1, 1, 4.5f), At(NAN, 1, 1)})
        EXPECT_EQ(Score({outside, At(0, 0, 0)}, map), 1);
    EXPECT_EQ(Score({At(2.4f, 3.4f, 4.4f)}, map), 235);
}

TEST_F(Scoring, TheTagDoesNotWeighThePoint) {
    const Grid *map = AddMap(Numbered({0, 0, 0}, {1, 1, 1}));
    EXPECT_EQ(Score({{V(1, 1, 1), '\0'}, {V(1, 1, 1), 'W'}}, map), 224);
}

TEST_F(Scoring, TheSumIsADouble) {
    PlainMap plain = ConstantMap({2, 1, 1}, 0.1f);
    plain.values[0] = 16777216;
    const Grid *map = AddMap(plain);
    EXPECT_EQ(Score({At(0), At(1), At(1)}, map), (16777216 + double(0.1f)) + double(0.1f));
}

TEST_F(Scoring, OnlySolidVoxelsAboveTwoCollide) {
    PlainMap plain = ConstantMap({5, 1, 1}, 0);
    plain.values = {2.0f, 2.01f, 6.0f, -7.0f, std::nextafter(2.0f, 3.0f)};
    const Grid *solid = AddMap(plain);
    EXPECT_EQ(Collision({At(0)}, solid), 0);
    EXPECT_EQ(Collision({At(1)}, solid), double(2.01f));
    EXPECT_EQ(Collision({At(1), At(2), At(3), At(0)}, solid), double(2.01f) + 6);
    EXPECT_EQ(Collision({At(4)}, solid), double(std::nextafter(2.0f, 3.0f)));
    EXPECT_EQ(Collision({At(50), At(-1.5f)}, solid), 0);
    EXPECT_EQ(Collision({At(-1.4f)}, solid), 0);
    EXPECT_EQ(Collision({}, solid), 0);
}

TEST_F(Scoring, RestraintDistancesAreThoseOfTheMovedPoints) {
    Quaternion rotation;
    rotation.Set(std::acos(-1.0) / 2, V(0, 0, 1));
    const Transform pose(rotation, V(1, 2, 3));
    std::vector<double> distances(3, -7.0);
    Score({{V(1, 4, 3), V(2, 0, 0)}, {V(1, 2, 7), V(0, 0, 0)}}, pose, distances);
    EXPECT_THAT(distances, ElementsAre(testing::DoubleNear(0, 1e-6), 4, -7));
}

TEST_F(Scoring, TheRestraintDistanceIsSummedInFloatAndItsRootTakenInDouble) {
    const Transform pose((Quaternion()), V(0, 0, 0));
    std::vector<double> distances(1);
    Score({{V(0.1f, 0.2f, 0.3f), V(0, 0, 0)}}, pose, distances);
    const float squared = 0.1f * 0.1f + 0.2f * 0.2f + 0.3f * 0.3f;
    EXPECT_EQ(distances[0], std::sqrt(double(squared)));
}

TEST_F(Scoring, PairsBeyondTheArrayAreReportedAndNotWritten) {
    const Messages messages;
    const RestraintPair pair(V(0, 0, 0), V(0, 0, 5));
    std::vector<double> distances(1);
    Score({pair, pair, pair}, Transform(Quaternion(), V(0, 0, 0)), distances);
    EXPECT_THAT(distances, ElementsAre(5));
    EXPECT_THAT(
        messages.Warnings(),
        testing::AllOf(testing::SizeIs(2), testing::Each(testing::MatchesRegex(
                                               "ASSERT: \"Scores.end\\(\\) != iss\" in .+ \\([0-9]+\\)"))));
}

TEST_F(Scoring, ApplyRTMovesThePointAndCarriesItsTag) {
    const Transform pose((Quaternion()), V(1, 2, 3));
    EXPECT_EQ(ApplyRT(pose)({V(1, 1, 1), 'K'}), TaggedPoint(V(2, 3, 4), 'K'));
}

TEST_F(Scoring, APoseIsTurnedThenMovedThenScored) {
    const SolutionScore pose = Pose(AddMap(Numbered({0, 0, 0}, {1, 2, 1})), nullptr);
    EXPECT_EQ(moved[0].first, V(1, 3, 3));
    EXPECT_EQ(moved[1].first, V(1, 4, 3));
    EXPECT_EQ(moved[0].second, 'G');
    EXPECT_EQ(pose.score, (100 + 20 + 3 + 1) + (100 + 20 + 3 + 1));
    EXPECT_EQ(pose.rotation.w(), std::cos(std::acos(-1.0) / 4));
    EXPECT_EQ(pose.rotation.z(), std::sin(std::acos(-1.0) / 4));
    EXPECT_EQ(pose.translation, V(1, 2, 3));
    EXPECT_THAT(pose.extraScores, IsEmpty());
}

TEST_F(Scoring, WithoutMapAndSolidEveryPoseScoresZero) {
    pairs = {{V(1, 2, 3), V(0, 0, 0)}, {V(1, 2, 3), V(0, 0, 6)}};
    const SolutionScore pose = Pose(nullptr, nullptr);
    EXPECT_EQ(pose.score, 0);
    EXPECT_EQ(pose.translation, V(1, 2, 3));
    EXPECT_THAT(pose.extraScores, ElementsAre(0, 6));
    EXPECT_THAT(extraScores, ElementsAre(0, 6));
}

TEST_F(Scoring, ASolidVoxelOfTwoDoesNotRejectThePose) {
    EXPECT_EQ(Pose(nullptr, AddMap(ConstantMap({9, 9, 9}, 2.0f))).score, 0);
}

TEST_F(Scoring, ASolidVoxelAboveTwoRejectsThePose) {
    pairs = {{V(1, 2, 3), V(0, 0, 0)}};
    const SolutionScore pose =
        Pose(AddMap(ConstantMap({9, 9, 9}, 1)), AddMap(ConstantMap({9, 9, 9}, 2.01f)), true);
    EXPECT_EQ(pose.score, -1.0);
    EXPECT_EQ(pose.translation, Vertex());
    EXPECT_EQ(pose.rotation.w(), Quaternion().w());
    EXPECT_EQ(pose.rotation.z(), 0);
    EXPECT_THAT(pose.extraScores, IsEmpty());
    log.flush();
    EXPECT_EQ(logged, "");
}

TEST_F(Scoring, AnAcceptedPoseIsLoggedWhereLoggingIsOn) {
    pairs = {{V(1, 2, 3), V(0, 0, 6)}};
    const Grid *map = AddMap(ConstantMap({9, 9, 9}, 1));
    Pose(map, nullptr, false);
    log.flush();
    EXPECT_EQ(logged, "");
    Pose(map, nullptr, true);
    log.flush();
    EXPECT_EQ(logged, "  0.71   0.00   0.00   0.71   1.00   2.00   3.00     2.000   6.00\n");
}

TEST_F(Scoring, ScratchArraysAreNeverResized) {
    moved.assign(5, At(100));
    extraScores.clear();
    DoScores(Quaternion(), V(0, 0, 0), nullptr, points, nullptr, pairs, moved, extraScores, log, false);
    EXPECT_EQ(moved.size(), 5u);
    EXPECT_EQ(moved[1].first, V(2, 0, 0));
    EXPECT_EQ(moved[2].first, V(100, 0, 0));
}

TEST_F(Scoring, ARemovedMapHasNoVoxels) {
    Grid *map = AddMap(ConstantMap({3, 3, 3}, 1));
    Space::instance()->Remove(map);
    EXPECT_EQ(Score({At(1, 1, 1)}, map), 0);
}
