#include "placement/Explained.h"

#include "SyntheticModel.h"

#include <gtest/gtest.h>

using namespace placement;

namespace {

constexpr double resolution = 8;

/// Two balls of residues side by side and their map.
struct Pair {
    std::vector<ModelAtom> first = RandomModel(150, 1);
    std::vector<ModelAtom> second = Moved(RandomModel(80, 2), RotationBy({}), {38, 5, -3});
    Volume map;

    explicit Pair(const std::array<double, 3> &voxel = {2, 2, 2}) {
        std::vector<ModelAtom> both = first;
        both.insert(both.end(), second.begin(), second.end());
        map = DensityOf(both, resolution, voxel, 15);
    }
};

double Deviation(const Volume &volume) {
    double mean = 0, squares = 0;
    for (const float value : volume.values)
        mean += double(value) / double(volume.values.size());
    for (const float value : volume.values)
        squares += (double(value) - mean) * (double(value) - mean);
    return std::sqrt(squares / double(volume.values.size()));
}

} // namespace

TEST(Explained, AllPartsTogetherExplainTheMap) {
    const Pair pair;
    const Spectrum map = TransformMap(pair.map, resolution, 1);
    const std::vector<std::vector<Scatterer>> both{ScatterersOf(pair.first), ScatterersOf(pair.second)};
    const std::vector<double> shares = ExplainedShares(map, both, 1);
    EXPECT_NEAR(shares[0] + shares[1], 1, 0.02);
    EXPECT_GT(shares[0], shares[1]) << "the larger one explains more";
    EXPECT_GT(shares[1], 0.1);
    const std::vector<std::vector<Scatterer>> one{both[0]};
    EXPECT_LT(ExplainedShares(map, one, 1)[0], 0.9);
    EXPECT_TRUE(ExplainedShares(map, {}, 1).empty());
}

TEST(Explained, AModelThatIsElsewhereExplainsNothing) {
    const Pair pair;
    const Spectrum map = TransformMap(pair.map, resolution, 1);
    const std::vector<std::vector<Scatterer>> away{ScatterersOf(pair.first, {RotationBy({}), {0, 500, 0}})};
    EXPECT_EQ(ExplainedShares(map, away, 1)[0], 0);
}

TEST(Explained, WhatIsLeftIsTheOtherPart) {
    for (const std::array<double, 3> voxel : {std::array<double, 3>{2, 2, 2}, {1.5, 2.1, 1.8}}) {
        const Pair pair(voxel);
        const Volume rest = Unexplained(pair.map, ScatterersOf(pair.first), resolution, 1);
        EXPECT_EQ(rest.count, pair.map.count);
        Volume expected = pair.map;
        std::ranges::fill(expected.values, 0.0f);
        AddDensity(pair.second, resolution, expected);
        Volume difference = rest;
        for (std::size_t i = 0; i < difference.values.size(); ++i)
            difference.values[i] -= expected.values[i];
        EXPECT_LT(Deviation(difference), 0.15 * Deviation(expected)) << voxel[0];
    }
}

TEST(Explained, OfAllPartsNothingIsLeft) {
    const Pair pair;
    std::vector<Scatterer> all = ScatterersOf(pair.first);
    for (const Scatterer &atom : ScatterersOf(pair.second))
        all.push_back(atom);
    EXPECT_LT(Deviation(Unexplained(pair.map, all, resolution, 3)), 0.05 * Deviation(pair.map));
}
