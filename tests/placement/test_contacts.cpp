#include "placement/Contacts.h"

#include "SyntheticModel.h"

#include <gtest/gtest.h>

using namespace placement;

namespace {

std::vector<Point> Line(std::size_t number, double height) {
    std::vector<Point> points;
    for (std::size_t i = 0; i < number; ++i)
        points.push_back({20.0 * double(i), height, 0});
    return points;
}

} // namespace

TEST(Contacts, ResiduesWithin8And3AngstromsAreCounted) {
    const StandingResidues standing(Line(10, 0));
    std::vector<Point> residues = Line(4, 8.1);
    residues.push_back({20, 7.9, 0});
    residues.push_back({41, 3, 1});
    residues.push_back({60, 0, 2.9});
    const Contacts contacts = standing.ContactsOf(residues);
    EXPECT_EQ(contacts.contacts, 3u);
    EXPECT_EQ(contacts.clashes, 1u);
}

TEST(Contacts, MoreThanATenthOfTheSmallerModelExcludes) {
    const std::vector<Point> large = Line(100, 0);
    std::vector<Point> small = Line(20, 5);
    EXPECT_FALSE(Exclude(large, small));
    small[0].y = small[1].y = 1;
    EXPECT_FALSE(Exclude(large, small)) << "a tenth";
    small[2].y = 1;
    EXPECT_TRUE(Exclude(large, small));
    EXPECT_TRUE(Exclude(small, large));
}

TEST(Contacts, ResiduesStandAtTheirBackbones) {
    const std::vector<ModelAtom> atoms{{{1, 2, 3}, 6, 0, 0, true},
                                       {{1, 9, 3}, 6, 0, 0, false},
                                       {{5, 2, 3}, 6, 1, 0, false},
                                       {{9, 2, 3}, 6, 2, 0, true}};
    const PointModel model = MakePointModel(atoms);
    const std::vector<Point> residues = ResiduesAt(model, {RotationBy({}), model.centre + Point{0, 0, 1}});
    ASSERT_EQ(residues.size(), 3u);
    EXPECT_LT(Length(residues[0] - Point{1, 2, 4}), 1e-9);
    EXPECT_LT(Length(residues[1] - Point{5, 2, 4}), 1e-9);
    EXPECT_LT(Length(residues[2] - Point{9, 2, 4}), 1e-9);
}

TEST(Contacts, AModelExcludesItselfButNotItsNeighbour) {
    const PointModel model = MakePointModel(RandomModel(150, 1));
    const Pose pose{RotationBy({}), {}}, turned{RotationBy({1, 2, 0.5}), {3, 0, 0}},
        beside{RotationBy({}), {45, 0, 0}};
    EXPECT_TRUE(Exclude(ResiduesAt(model, pose), ResiduesAt(model, turned)));
    EXPECT_FALSE(Exclude(ResiduesAt(model, pose), ResiduesAt(model, beside)));
}
