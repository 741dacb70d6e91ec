#include "placement/KnownNeighbours.h"

#include "SyntheticModel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

using namespace placement;

namespace {

constexpr double resolution = 8;

/// Two balls of residues side by side, 38 Å apart.
struct Pair {
    std::vector<ModelAtom> first = RandomModel(120, 1);
    std::vector<ModelAtom> second = Moved(RandomModel(120, 2), RotationBy({}), {38, 5, -3});

    std::vector<ModelAtom> Both() const {
        std::vector<ModelAtom> both = first;
        both.insert(both.end(), second.begin(), second.end());
        return both;
    }
};

Volume MapOf(const std::vector<ModelAtom> &atoms, double margin = 10) {
    return DensityOf(atoms, resolution, {2, 2, 2}, margin);
}

/// The shells' power up to the resolution.
double PowerOf(const Spectrum &spectrum) {
    double sum = 0;
    ForEachWave(spectrum.waves, [&](double k, std::size_t index, double weight) {
        if (k > 0 && k < 1 / resolution)
            sum += weight * double(std::norm(spectrum.waves.values[index]));
    });
    return sum;
}

/// The waves' correlation up to the resolution.
double Correlation(const Waves &a, const Waves &b) {
    double common = 0, ofA = 0, ofB = 0;
    ForEachWave(a, [&](double k, std::size_t i, double weight) {
        if (k == 0 || k > 1 / resolution)
            return;
        common += weight * double((a.values[i] * std::conj(b.values[i])).real());
        ofA += weight * double(std::norm(a.values[i]));
        ofB += weight * double(std::norm(b.values[i]));
    });
    return common / std::sqrt(ofA * ofB);
}

/// The share of the power that is left once the neighbours are out.
double PowerLeft(const Volume &map, const std::vector<ModelAtom> &neighbours) {
    Spectrum spectrum = TransformMap(map, resolution, 1);
    const double before = PowerOf(spectrum);
    KnownNeighbours(neighbours).SubtractFrom(spectrum, 1);
    return PowerOf(spectrum) / before;
}

Volume Ones() {
    return {{20, 20, 20}, {1.5, 2, 1}, {-3, 4, 5}, LargeVector<float>(8000, 1)};
}

} // namespace

TEST(KnownNeighbours, WhatTheyLeaveIsTheRest) {
    const Pair pair;
    Spectrum spectrum = TransformMap(MapOf(pair.Both()), resolution, 1);
    // The same box, with one of the two in it.
    Volume alone = MapOf(pair.Both());
    std::ranges::fill(alone.values, 0);
    AddDensity(pair.first, resolution, alone);
    const Spectrum expected = TransformMap(alone, resolution, 1);
    EXPECT_LT(Correlation(spectrum.waves, expected.waves), 0.85);
    KnownNeighbours(pair.second).SubtractFrom(spectrum, 1);
    EXPECT_GT(Correlation(spectrum.waves, expected.waves), 0.97);
    EXPECT_NEAR(spectrum.power.At(0.08) / expected.power.At(0.08), 1, 0.1);
}

TEST(KnownNeighbours, ThatExplainAllLeaveNothing) {
    const Pair pair;
    EXPECT_LT(PowerLeft(MapOf(pair.Both()), pair.Both()), 1e-4);
}

TEST(KnownNeighbours, TheScaleOfTheMapDoesNotMatter) {
    const Pair pair;
    Volume map = MapOf(pair.Both());
    for (float &value : map.values)
        value = 0.001f * value + 7;
    EXPECT_LT(PowerLeft(map, pair.Both()), 1e-3);
}

TEST(KnownNeighbours, ThatTheBoxCutsAreCutLikewise) {
    const Pair pair;
    EXPECT_LT(PowerLeft(MapOf(pair.Both(), -12), pair.Both()), 0.06);
}

TEST(KnownNeighbours, ThatExplainNothingTakeNothing) {
    const Pair pair;
    // The contrary of a map is explained by nothing: an amplitude is never negative.
    Volume map = MapOf(pair.Both());
    for (float &value : map.values)
        value = -value;
    EXPECT_GT(PowerLeft(map, pair.Both()), 0.999);
    Volume noise = MapOf(pair.Both());
    AddNoise(noise, 1000, 1);
    EXPECT_GT(PowerLeft(noise, pair.Both()), 0.95);
}

TEST(KnownNeighbours, OutsideTheMapTheyChangeNothing) {
    const Pair pair;
    constexpr double far = 1e30, none = std::numeric_limits<double>::quiet_NaN();
    for (const Point &shift : {Point{500, 0, 0}, Point{0, -far, 0}, Point{0, 0, none}}) {
        const std::vector<ModelAtom> away = Moved(pair.first, RotationBy({}), shift);
        EXPECT_EQ(PowerLeft(MapOf(pair.first), away), 1);
        Volume ones = Ones();
        KnownNeighbours(away).KeepFree(ones);
        EXPECT_EQ(ones.values, Ones().values);
        EXPECT_EQ(KnownNeighbours(away).Overlap(MakePointModel(pair.first), {}), 0);
    }
}

TEST(KnownNeighbours, ThreadsGiveTheSameWaves) {
    const Pair pair;
    const Volume map = MapOf(pair.Both());
    Spectrum one = TransformMap(map, resolution, 1), three = one;
    KnownNeighbours(pair.second).SubtractFrom(one, 1);
    KnownNeighbours(pair.second).SubtractFrom(three, 3);
    EXPECT_EQ(one.waves.values, three.waves.values);
}

TEST(KnownNeighbours, NearThemNothingIsRewarded) {
    // One residue: its backbone at (12, 20, 15), its side chain 3 Å further.
    const KnownNeighbours neighbours(
        std::vector<ModelAtom>{{{12, 20, 15}, 7, 0, 0, true}, {{15, 20, 15}, 6, 0, 0, false}});
    Volume volume = Ones();
    for (std::size_t i = 0; i < volume.values.size(); i += 2)
        volume.values[i] = -1;
    const Volume before = volume;
    neighbours.KeepFree(volume);
    for (std::size_t k = 0; k < 20; ++k)
        for (std::size_t j = 0; j < 20; ++j)
            for (std::size_t i = 0; i < 20; ++i) {
                const std::size_t at = volume.Index(i, j, k);
                const bool near = Length(volume.At(i, j, k) - Point{12, 20, 15}) < 4;
                EXPECT_EQ(volume.values[at], near ? std::min(before.values[at], 0.0f) : before.values[at]);
            }
}

TEST(KnownNeighbours, AResidueWithoutABackboneIsKeptFreeToo) {
    const KnownNeighbours neighbours(std::vector<ModelAtom>{{{12, 20, 15}, 7, 0, 0, false}});
    Volume volume = Ones();
    neighbours.KeepFree(volume);
    EXPECT_EQ(volume.values[volume.Index(10, 8, 10)], 0);
}

TEST(KnownNeighbours, TheOverlapIsTheShareWithinReach) {
    const PointModel model = MakePointModel({{{0, 0, 0}, 6, 0, 0, true}, {{10, 0, 0}, 18, 1, 0, true}});
    const KnownNeighbours neighbours(std::vector<ModelAtom>{{{103.9, 0, 0}, 7, 0, 0, true}});
    const auto overlapAt = [&](const Point &firstResidue) {
        return neighbours.Overlap(model, {RotationBy({}), firstResidue + model.centre});
    };
    EXPECT_DOUBLE_EQ(overlapAt({100, 0, 0}), 0.25);
    EXPECT_DOUBLE_EQ(overlapAt({99.8, 0, 0}), 0);
    EXPECT_DOUBLE_EQ(overlapAt({90, 0, 0}), 0.75);
}
