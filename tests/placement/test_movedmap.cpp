#include "placement/MovedMap.h"

#include "SyntheticModel.h"

#include <gtest/gtest.h>

using namespace placement;

namespace {

/// The correlation of two maps' values.
double Correlation(const Volume &a, const Volume &b) {
    double sumA = 0, sumB = 0, aa = 0, bb = 0, ab = 0;
    const auto number = double(a.values.size());
    for (std::size_t i = 0; i < a.values.size(); ++i) {
        const auto x = double(a.values[i]), y = double(b.values[i]);
        sumA += x, sumB += y, aa += x * x, bb += y * y, ab += x * y;
    }
    return (ab - sumA * sumB / number) / std::sqrt((aa - sumA * sumA / number) * (bb - sumB * sumB / number));
}

Lattice LatticeOf(const Volume &map) {
    return {map.count, map.spacing, map.origin};
}

} // namespace

TEST(MovedMap, IsTheMapOfTheMovedAtoms) {
    const std::vector<ModelAtom> atoms = RandomModel(60, 3);
    std::mt19937 random(5);
    const Motion motion{RandomRotation(random), {31, -12, 7.3}};
    const Volume map = DensityOf(atoms, 6, {1.5, 1.8, 1.6}, 20);
    const Volume expected =
        DensityOf(Moved(atoms, motion.rotation, motion.translation), 6, {1.7, 1.5, 1.6}, 15);
    const Volume moved = MovedMap(map, {false, motion}, LatticeOf(expected), 2);
    EXPECT_GT(Correlation(moved, expected), 0.9995);
    const Motion turnedOff{motion.rotation * RotationBy({0, 0.1, 0}), motion.translation};
    EXPECT_LT(Correlation(MovedMap(map, {false, turnedOff}, LatticeOf(expected), 1), expected), 0.999);
}

TEST(MovedMap, TheMirrorImageHasItsVoxelsInTheOppositeOrder) {
    const Volume map = DensityOf(RandomModel(60, 3), 6, {1.5, 1.5, 1.5}, 15);
    const Volume mirrored = MovedMap(map, {true, {}}, LatticeOf(map), 1);
    Volume expected = map;
    for (std::size_t first = 0; first < map.values.size(); first += map.count[0])
        std::reverse(expected.values.begin() + std::ptrdiff_t(first),
                     expected.values.begin() + std::ptrdiff_t(first + map.count[0]));
    EXPECT_GT(Correlation(mirrored, expected), 0.9995);
    EXPECT_LT(Correlation(map, expected), 0.99);
}

TEST(MovedMap, NothingLiesOutsideOfTheBox) {
    const Volume map{{8, 8, 8}, {2, 2, 2}, {}, LargeVector<float>(512, 1)};
    const Volume moved = MovedMap(map, {false, {RotationBy({}), {14.5, 0, 0}}}, LatticeOf(map), 1);
    for (std::size_t i = 0; i < 8; ++i)
        EXPECT_EQ(moved.values[moved.Index(i, 4, 4)], 0) << i;
}
