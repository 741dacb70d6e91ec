#include "placement/MapSymmetry.h"

#include "SyntheticAssembly.h"

#include <gtest/gtest.h>

using namespace placement;

namespace {

Volume NoisyMap(const SyntheticAssembly &assembly, double noise, unsigned seed) {
    Volume map = DensityOf(assembly.atoms, 8, {2, 2, 2}, 15);
    AddNoise(map, noise, seed);
    return map;
}

MapSymmetry FindIn(const Volume &map, const SymmetryRequest &request = {}) {
    Monitor silent;
    return FindMapSymmetry(map, 8, request, 1, silent);
}

SymmetryRequest Asked(const char *name) {
    SymmetryRequest request;
    request.symmetry = ReadSymmetry(name);
    return request;
}

class GroupOfMap : public testing::TestWithParam<const char *> {};

} // namespace

// Neither a subgroup nor a larger group, wherever the axes are.
TEST_P(GroupOfMap, IsNamedWithItsAxisAndCentre) {
    const SyntheticAssembly assembly(GetParam(), 80, 2);
    const MapSymmetry found = FindIn(NoisyMap(assembly, 1, 2));
    EXPECT_TRUE(found.found);
    EXPECT_EQ(NameOf(found.symmetry), GetParam());
    EXPECT_LT(assembly.AngleFromMainAxis(found.frame), 1);
    EXPECT_LT(assembly.DistanceFromCentre(found.frame), 1);
    EXPECT_GT(found.weakest, found.wrong);
    EXPECT_LT(found.logExpected, -5);
}

INSTANTIATE_TEST_SUITE_P(MapSymmetry, GroupOfMap,
                         testing::Values("C2", "C3", "C5", "C7", "D2", "D3", "D7", "T", "O", "I"));

TEST(MapSymmetry, AHelixHasItsRiseAndTwistOfTheRightHand) {
    for (const double twist : {-50.0, 50.0, -166.6}) {
        const SyntheticAssembly assembly("H:20," + std::to_string(twist), 80, 3);
        const MapSymmetry found = FindIn(NoisyMap(assembly, 0.5, 3));
        ASSERT_TRUE(found.symmetry.IsHelical()) << NameOf(found.symmetry);
        EXPECT_NEAR(found.symmetry.rise, 20, 0.2);
        EXPECT_NEAR(found.symmetry.twist, twist, 0.5);
        EXPECT_LT(assembly.AngleFromMainAxis(found.frame), 1);
        EXPECT_LT(assembly.DistanceFromCentre(found.frame), 1);
    }
}

TEST(MapSymmetry, AHelixMayHaveAFold) {
    const SyntheticAssembly assembly("H:30,40,C3", 80, 3);
    const MapSymmetry found = FindIn(NoisyMap(assembly, 0.5, 3));
    ASSERT_TRUE(found.symmetry.IsHelical()) << NameOf(found.symmetry);
    EXPECT_EQ(found.symmetry.fold, 3u);
    EXPECT_NEAR(found.symmetry.rise, 30, 0.2);
    EXPECT_NEAR(std::remainder(found.symmetry.twist - 40, 120), 0, 0.5);
}

TEST(MapSymmetry, AMapWithoutOneHasNone) {
    for (unsigned seed = 2; seed < 8; ++seed) {
        const MapSymmetry found = FindIn(NoisyMap(SyntheticAssembly("C1", 120, seed), 0.5, seed));
        EXPECT_FALSE(found.found);
        EXPECT_TRUE(found.symmetry.IsNone()) << NameOf(found.symmetry);
        EXPECT_TRUE(found.tried);
    }
}

TEST(MapSymmetry, NeitherNoiseNorAConstantHasOne) {
    Volume map = DensityOf(RandomModel(80, 1), 8, {2, 2, 2}, 15);
    AddNoise(map, 100, 1);
    EXPECT_FALSE(FindIn(map).found);
    std::ranges::fill(map.values, 1.0f);
    EXPECT_FALSE(FindIn(map).found);
}

// Every turn about its axis lays it upon itself, and none is an operator.
TEST(MapSymmetry, ABarrelHasNoFold) {
    Volume map{{48, 48, 40}, {2, 2, 2}, {-47, -46, -39}, {}};
    map.values.assign(map.count[0] * map.count[1] * map.count[2], 0);
    for (std::size_t k = 0; k < map.count[2]; ++k)
        for (std::size_t j = 0; j < map.count[1]; ++j)
            for (std::size_t i = 0; i < map.count[0]; ++i) {
                const Point p = map.At(i, j, k);
                const double across = std::hypot(p.x, p.y) - 22, up = std::abs(p.z) - 10 - 0.1 * across;
                map.values[map.Index(i, j, k)] =
                    float(std::exp(-across * across / 20) * (up < 0 ? 1 : std::exp(-up * up / 20)));
            }
    AddNoise(map, 0.1, 1);
    const MapSymmetry found = FindIn(map);
    // Half turns across the axis are operators, and two of them make a third one.
    EXPECT_LE(found.symmetry.fold, 2u) << NameOf(found.symmetry);
}

TEST(MapSymmetry, ASmallerGroupIsFoundWhereItIsAskedFor) {
    const Volume map = NoisyMap(SyntheticAssembly("D3", 80, 2), 0.5, 1);
    EXPECT_EQ(NameOf(FindIn(map, Asked("C3")).symmetry), "C3");
    EXPECT_EQ(NameOf(FindIn(map, Asked("C2")).symmetry), "C2");
}

TEST(MapSymmetry, AGroupThatTheMapDoesNotHaveIsNotFound) {
    const Volume map = NoisyMap(SyntheticAssembly("C5", 80, 2), 0.5, 1);
    for (const char *name : {"C3", "C7", "D5", "T", "I", "H:20,72"}) {
        const MapSymmetry found = FindIn(map, Asked(name));
        EXPECT_FALSE(found.found) << name;
        EXPECT_TRUE(found.symmetry.IsNone()) << name;
    }
}

TEST(MapSymmetry, AxisAndCentreThatAreHeldStay) {
    for (const char *name : {"C5", "D3", "O"}) {
        const SyntheticAssembly assembly(name, 80, 2);
        SymmetryRequest request = Asked(name);
        request.axis = assembly.frame.rotation * Point{0, 0, 1};
        request.centre = assembly.frame.centre;
        const MapSymmetry found = FindIn(NoisyMap(assembly, 1, 1), request);
        EXPECT_TRUE(found.found) << name;
        EXPECT_LT(assembly.AngleFromMainAxis(found.frame), 1e-3) << name;
        EXPECT_EQ(Length(found.frame.centre - assembly.frame.centre), 0) << name;
    }
}

TEST(MapSymmetry, AFrameThatIsHeldStaysAndNeedsLessEvidence) {
    const SyntheticAssembly assembly("D3", 80, 2);
    const Volume map = NoisyMap(assembly, 1, 1);
    const MapSymmetry free = FindIn(map, Asked("D3"));
    SymmetryRequest request = Asked("D3");
    request.frame = assembly.frame;
    const MapSymmetry held = FindIn(map, request);
    EXPECT_TRUE(held.found);
    EXPECT_EQ(held.frame.rotation, assembly.frame.rotation);
    EXPECT_EQ(Length(held.frame.centre - assembly.frame.centre), 0);
    EXPECT_LT(held.logExpected, free.logExpected);
    request.frame->rotation = RotationBy({0.5, 0.2, 0.1}) * request.frame->rotation;
    EXPECT_FALSE(FindIn(map, request).found);
}

TEST(MapSymmetry, AnAxisThatIsHeldAloneLeavesTheGroupOpen) {
    const SyntheticAssembly assembly("C5", 80, 2);
    SymmetryRequest request;
    request.axis = -2 * (assembly.frame.rotation * Point{0, 0, 1});
    const Volume map = NoisyMap(assembly, 1, 1);
    const MapSymmetry found = FindIn(map, request);
    EXPECT_EQ(NameOf(found.symmetry), "C5");
    EXPECT_LT(assembly.AngleFromMainAxis(found.frame), 1e-3);
    EXPECT_LT(assembly.DistanceFromCentre(found.frame), 1);
    request.axis = PerpendicularTo(*request.axis);
    EXPECT_FALSE(FindIn(map, request).found);
}

TEST(MapSymmetry, ACentreThatIsHeldFarOffLeavesNothing) {
    const SyntheticAssembly assembly("C5", 80, 2);
    SymmetryRequest request;
    request.centre = assembly.frame.centre + 30 * (assembly.frame.rotation * Point{1, 0, 0});
    EXPECT_FALSE(FindIn(NoisyMap(assembly, 1, 1), request).found);
}

TEST(MapSymmetry, IsTheSameOnAnyNumberOfThreads) {
    const Volume map = NoisyMap(SyntheticAssembly("D2", 80, 2), 1, 1);
    Monitor silent;
    const MapSymmetry one = FindMapSymmetry(map, 8, {}, 1, silent),
                      three = FindMapSymmetry(map, 8, {}, 3, silent);
    EXPECT_EQ(one.correlation, three.correlation);
    EXPECT_EQ(one.logExpected, three.logExpected);
    EXPECT_EQ(one.frame.rotation, three.frame.rotation);
    EXPECT_EQ(Length(one.frame.centre - three.frame.centre), 0);
}

TEST(MapSymmetry, ACancelledSearchFindsNone) {
    struct Stopped : Monitor {
        bool IsCancelled() override { return true; }
    } stopped;
    const MapSymmetry found =
        FindMapSymmetry(NoisyMap(SyntheticAssembly("C5", 80, 2), 0.5, 1), 8, {}, 1, stopped);
    EXPECT_FALSE(found.found);
}
