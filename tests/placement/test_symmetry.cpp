#include "placement/Symmetry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numbers>

using namespace placement;

namespace {

bool IsSame(const Matrix &a, const Matrix &b) {
    for (std::size_t i = 0; i < 9; ++i)
        if (std::abs(a[i] - b[i]) > 1e-9)
            return false;
    return true;
}

std::vector<SymmetryOperator> OperatorsOf(const std::string &name) {
    return placement::OperatorsOf(ReadSymmetry(name).value());
}

} // namespace

TEST(Symmetry, NamesAreReadAndWritten) {
    for (const std::string name :
         {"C1", "C7", "D2", "D17", "T", "O", "I", "H:27.60,-166.60", "H:4.75,1.50,C3"}) {
        const std::optional<Symmetry> symmetry = ReadSymmetry(name);
        ASSERT_TRUE(symmetry) << name;
        EXPECT_EQ(NameOf(*symmetry), name);
    }
    EXPECT_EQ(NameOf(ReadSymmetry("c5").value()), "C5");
    EXPECT_EQ(NameOf(ReadSymmetry("d1").value()), "C2");
    EXPECT_EQ(NameOf(ReadSymmetry("h:27.6,193.4").value()), "H:27.60,-166.60");
    EXPECT_TRUE(ReadSymmetry("C1")->IsNone());
    EXPECT_FALSE(ReadSymmetry("C2")->IsNone());
}

TEST(Symmetry, OtherTextsAreNone) {
    for (const char *text :
         {"",   "C",    "C0",   "C61",   "C-2",    "C2.5",    "C+3",     "C 3",      "E7",     "TT",     "H",
          "H:", "H:27", "H:,5", "H:0,5", "H:-1,5", "H:nan,5", "H:1,inf", "H:1,2,D3", "H:1,2,", "H:1,2,3"})
        EXPECT_FALSE(ReadSymmetry(text)) << text;
}

TEST(Symmetry, GroupsAreGroups) {
    const std::vector<std::pair<std::string, std::size_t>> orders{{"C1", 1}, {"C5", 5}, {"D2", 4}, {"D7", 14},
                                                                  {"T", 12}, {"O", 24}, {"I", 60}};
    for (const auto &[name, order] : orders) {
        const std::vector<SymmetryOperator> operators = OperatorsOf(name);
        EXPECT_EQ(operators.size(), order) << name;
        EXPECT_TRUE(IsSame(operators.front().rotation, RotationBy({})));
        for (const SymmetryOperator &a : operators)
            for (const SymmetryOperator &b : operators)
                EXPECT_EQ(1, std::ranges::count_if(operators,
                                                   [&](const SymmetryOperator &c) {
                                                       return IsSame(c.rotation, a.rotation * b.rotation);
                                                   }))
                    << name;
    }
}

TEST(Symmetry, AnIcosahedronHasItsFivefoldAxesWhereItSays) {
    const Point axis = Unit({0, 1, std::numbers::phi});
    EXPECT_EQ(5, std::ranges::count_if(OperatorsOf("I"), [&](const SymmetryOperator &op) {
                  return Length(op.rotation * axis - axis) < 1e-9;
              }));
}

TEST(Symmetry, AHelixTurnsByTheRightHandAlongItsRise) {
    const Symmetry helix = ReadSymmetry("H:10,90").value();
    const std::vector<SymmetryOperator> operators = OperatorsOf(helix, 2);
    ASSERT_EQ(operators.size(), 5u);
    EXPECT_EQ(operators[1].steps, 1);
    EXPECT_EQ(operators[4].steps, -2);
    // The helix stands along x, its frame's x along y.
    const Pose frame{FrameOf({1, 0, 0}, {0, 1, 0}), {100, 0, 0}};
    const Point moved = MotionOf(operators[1], helix, frame) * Point{100, 5, 0};
    EXPECT_LT(Length(moved - Point{110, 0, 5}), 1e-9);
}

TEST(Symmetry, AHelixWithAFoldHasSeveralCopiesAtOneHeight) {
    const std::vector<Motion> motions = MotionsOf(ReadSymmetry("H:10,30,C3").value(), {}, 1);
    ASSERT_EQ(motions.size(), 9u);
    EXPECT_EQ(3, std::ranges::count_if(motions, [](const Motion &m) { return m.translation.z == 10; }));
}

TEST(Symmetry, MotionsTurnAboutTheFramesCentre) {
    const Pose frame{FrameOf({1, 2, 3}, {1, 0, 0}), {10, 20, 30}};
    for (const char *name : {"C5", "D3", "T", "O", "I"})
        for (const Motion &motion : MotionsOf(ReadSymmetry(name).value(), frame))
            EXPECT_LT(Length(motion * frame.centre - frame.centre), 1e-9) << name;
}
