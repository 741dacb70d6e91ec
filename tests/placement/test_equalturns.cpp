#include "placement/EqualTurns.h"

#include "SyntheticModel.h"

#include <gtest/gtest.h>

#include <numbers>

using namespace placement;

namespace {

/// Copies of a chain about the z axis through `centre`, residues as they are.
ResidueCentres Ring(unsigned copies, const Point &centre, double error = 0) {
    const std::vector<ModelAtom> chain = RandomModel(40, 1);
    ResidueCentres ring;
    for (unsigned copy = 0; copy < copies; ++copy)
        for (std::size_t i = 0; i < chain.size(); i += 4) {
            const Matrix turn = RotationBy({0, 0, 2 * std::numbers::pi * copy / copies});
            ring.positions.push_back(turn * (chain[i].position + Point{30, 0, 0}) + centre +
                                     Point{0, 0, copy == 1 ? error : 0});
            ring.chains.push_back(copy);
        }
    return ring;
}

/// The centre of a ring lies on its axis, at the height of its chains.
Point CentreOf(const ResidueCentres &residues) {
    Point sum;
    for (const Point &p : residues.positions)
        sum = sum + p;
    return 1 / double(residues.positions.size()) * sum;
}

} // namespace

TEST(EqualTurns, ARingOfFiveHasFive) {
    const ResidueCentres ring = Ring(5, {10, -20, 30});
    const std::vector<Matrix> turns = EqualTurns(ring, CentreOf(ring), 2);
    ASSERT_EQ(turns.size(), 5u);
    EXPECT_NEAR(AngleOf(turns[0]), 0, 1e-12);
    const double fifth = 2 * std::numbers::pi / 5;
    const double angles[] = {fifth, 2 * fifth, 2 * fifth, fifth};
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_NEAR(AngleOf(turns[i + 1]), angles[i], 1e-6);
    EXPECT_NEAR(turns[1][8], 1, 1e-9); // about z
}

TEST(EqualTurns, CopiesMayDifferByLessThanTheTolerance) {
    const ResidueCentres nearly = Ring(2, {}, 0.9), unlike = Ring(2, {}, 9);
    EXPECT_EQ(EqualTurns(nearly, CentreOf(nearly), 2).size(), 2u);
    EXPECT_EQ(EqualTurns(unlike, CentreOf(unlike), 2).size(), 1u);
}

TEST(EqualTurns, AChainThatStandsAloneLeavesNone) {
    ResidueCentres ring = Ring(3, {});
    for (int i = 0; i < 10; ++i) {
        ring.positions.push_back({double(50 + 4 * i), 5, 5});
        ring.chains.push_back(3);
    }
    EXPECT_EQ(EqualTurns(ring, CentreOf(ring), 2).size(), 1u);
}

TEST(EqualTurns, OneChainAndNoChainHaveTheFirst) {
    EXPECT_EQ(EqualTurns(Ring(1, {}), {}, 2).size(), 1u);
    EXPECT_EQ(EqualTurns({}, {}, 2).size(), 1u);
    // Points on top of one another tell no rotation.
    const ResidueCentres same{{{}, {}, {}, {}}, {0, 0, 1, 1}};
    EXPECT_EQ(EqualTurns(same, {}, 2).size(), 1u);
}
