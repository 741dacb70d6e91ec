#include "hosts/common/MapTreatment.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

using namespace hosts;
using namespace placement;
using VARNO::Vertex;

namespace {

const std::vector<Scatterer> atoms = {{Vertex(-4, 1, 0, true), 6}, {Vertex(6, -2, 3, true), 8}};

/// White noise of variance 1 about the atoms. Sizes that transforms take as they are, so that nothing is
/// padded.
Volume Noise(double voxel) {
    Volume map;
    map.count = {40, 36, 32};
    map.spacing = {voxel, voxel, voxel};
    map.origin = {-20 * voxel, -18 * voxel, -16 * voxel};
    map.values.resize(map.count[0] * map.count[1] * map.count[2]);
    std::mt19937 random(3);
    std::normal_distribution<float> normal;
    std::ranges::generate(map.values, [&] { return normal(random); });
    return map;
}

Volume Treated(Volume map, const MapTreatment &treatment) {
    Treat(map, atoms, treatment);
    return map;
}

/// Calls visit(k, a wave of a, the same wave of b).
template <class Visit>
void ForEachWave(const Volume &a, const Volume &b, Visit visit) {
    const Waves wavesA = WavesOf(a), wavesB = WavesOf(b);
    std::size_t i = 0;
    for (std::size_t section = 0; section < wavesA.Rows(2); ++section)
        for (std::size_t row = 0; row < wavesA.Rows(1); ++row)
            for (std::size_t h = 0; h <= wavesA.band[0]; ++h, ++i)
                visit(std::hypot(double(h) / wavesA.length[0],
                                 double(wavesA.Frequency(row, 1)) / wavesA.length[1],
                                 double(wavesA.Frequency(section, 2)) / wavesA.length[2]),
                      wavesA.values[i], wavesB.values[i]);
}

/// Each wave of the treated map is that of the map times weight(k).
template <class Weight>
void ExpectWeights(const MapTreatment &treatment, Weight weight) {
    const Volume map = Noise(2);
    double largest = 0;
    ForEachWave(map, map,
                [&](double, auto wave, auto) { largest = std::max(largest, double(std::abs(wave))); });
    ForEachWave(map, Treated(map, treatment), [&](double k, auto before, auto after) {
        const auto factor = float(weight(k));
        ASSERT_NEAR(double(std::abs(after - factor * before)), 0, 1e-3 * largest * std::max(1.0f, factor))
            << k;
    });
}

double NearestAtom(const Point &at) {
    double nearest = 1e9;
    for (const Scatterer &atom : atoms)
        nearest = std::min(nearest, Length(at - Point{double(atom.position[0]), double(atom.position[1]),
                                                      double(atom.position[2])}));
    return nearest;
}

/// What a mask leaves of the values at each distance from the atoms.
template <class Share>
void ExpectMask(const MapTreatment &treatment, Share share) {
    const Volume map = Noise(1), masked = Treated(map, treatment);
    for (std::size_t k = 0; k < map.count[2]; ++k)
        for (std::size_t j = 0; j < map.count[1]; ++j)
            for (std::size_t i = 0; i < map.count[0]; ++i) {
                const double distance = NearestAtom(map.At(i, j, k));
                const std::size_t at = map.Index(i, j, k);
                ASSERT_NEAR(double(masked.values[at]), share(distance) * double(map.values[at]), 1e-5);
            }
}

} // namespace

TEST(MapTreatment, NothingAskedForChangesNothing) {
    const Volume map = Noise(2);
    EXPECT_EQ(Treated(map, {}).values, map.values);
}

TEST(MapTreatment, SharpeningMultipliesTheWavesByTheExponentialOfB) {
    for (const double b : {60.0, -150.0})
        ExpectWeights({.sharpen = b}, [b](double k) { return std::exp(b * k * k / 4); });
}

TEST(MapTreatment, TheLowPassLeavesSlowWavesAndTakesFastOnes) {
    ExpectWeights({.lowPass = 7}, [](double k) {
        const double x = k * 7;
        return x <= 0.9 ? 1 : x >= 1.1 ? 0 : 0.5 + 0.5 * std::cos(std::acos(-1.0) * (x - 0.9) / 0.2);
    });
}

TEST(MapTreatment, AHardMaskLeavesWhatIsNearTheAtoms) {
    ExpectMask({.mask = 5}, [](double distance) { return distance <= 5 ? 1 : 0; });
}

TEST(MapTreatment, ASoftMaskFallsOffOverItsEdge) {
    ExpectMask({.mask = 4, .maskEdge = 6}, [](double distance) {
        const double x = std::clamp((distance - 4) / 6, 0.0, 1.0);
        return 0.5 + 0.5 * std::cos(std::acos(-1.0) * x);
    });
}

TEST(MapTreatment, TheMarginCutsTheBoxAndLeavesTheValuesWhereTheyWere) {
    const Volume map = Noise(2), cut = Treated(map, {.margin = 3});
    // The atoms reach from -4 to 6, -2 to 1 and 0 to 3; voxels lie at even coordinates.
    EXPECT_EQ(cut.origin.x, -8);
    EXPECT_EQ(cut.origin.y, -6);
    EXPECT_EQ(cut.origin.z, -4);
    EXPECT_EQ(cut.count, (std::array<std::size_t, 3>{10, 6, 6}));
    for (std::size_t k = 0; k < cut.count[2]; ++k)
        for (std::size_t j = 0; j < cut.count[1]; ++j)
            for (std::size_t i = 0; i < cut.count[0]; ++i)
                EXPECT_EQ(cut.values[cut.Index(i, j, k)], map.values[map.Index(i + 16, j + 15, k + 14)]);
}

TEST(MapTreatment, AMarginBeyondTheBoxCutsNothing) {
    const Volume map = Noise(2);
    EXPECT_EQ(Treated(map, {.margin = 500}).values, map.values);
}

TEST(MapTreatment, InversionChangesTheSign) {
    Volume map = Noise(2);
    const Volume inverted = Treated(map, {.invert = true});
    for (float &value : map.values)
        value = -value;
    EXPECT_EQ(inverted.values, map.values);
}

TEST(MapTreatment, TheSharpeningExponentIsThatOfTheFinestWave) {
    // A voxel of 2 Å holds waves of 1/4 Å along each axis.
    EXPECT_DOUBLE_EQ(SharpeningExponent(100, 2), 100 * 3.0 / 16 / 4);
}
