#include "hosts/common/FitChecks.h"

#include "Grid.h"

#include <gtest/gtest.h>

using namespace hosts;
using VARNO::Vertex;

namespace {

/// A map from 0 to 20 Å.
const VARNO::Grid &Map() {
    static const VARNO::Grid map("map", {11, 11, 11}, {0, 0, 0}, {2, 2, 2}, {90, 90, 90});
    return map;
}

/// The warning of a target of two residues 4 Å to the left and right of a centre, moved by that at most.
std::string WarningOf(const Vertex &centre, double travel) {
    fit::Survey survey;
    survey.target.centre = centre;
    for (const float x : {-4.0f, 4.0f})
        survey.target.points.push_back({Vertex(centre[0] + x, centre[1], centre[2], true), 'A'});
    FitOptions options;
    options.translationSteps = 5;
    options.translationStep = travel / 2;
    return WarningOfReach(survey, options, Map());
}

} // namespace

TEST(WarningOfReach, IsEmptyWhereAPoseTouchesTheMap) {
    EXPECT_EQ(WarningOf(Vertex(10, 10, 10, false), 0), "");
    EXPECT_EQ(WarningOf(Vertex(-6.9f, 10, 10, false), 0), "") << "points count to 3 Å before the first voxel";
    EXPECT_EQ(WarningOf(Vertex(24.9f, 10, 10, false), 0), "") << "and 1 Å behind the last, turned or not";
    EXPECT_EQ(WarningOf(Vertex(10, 124.9f, 10, false), 100), "") << "with its translations";
    EXPECT_EQ(WarningOf(Vertex(10, 124.9f, 10, false), -100), "");
}

TEST(WarningOfReach, TellsHowFarTheTargetIs) {
    EXPECT_EQ(
        WarningOf(Vertex(10, 1'000'025, 10, false), 100),
        "no pose of the search touches the map: the target lies 1,000,000 Å from it; are both in one frame?");
    EXPECT_NE(WarningOf(Vertex(-7.1f, 10, 10, false), 0), "");
    EXPECT_NE(WarningOf(Vertex(10, 125.1f, 10, false), 100), "");
    EXPECT_NE(WarningOf(Vertex(24, 24, 24, false), 0), "") << "a corner is out of reach, though no face is";
    EXPECT_NE(WarningOf(Vertex(1e30f, 0, 0, false), 100), "");
}
