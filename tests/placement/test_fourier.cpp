#include "placement/Fourier.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numbers>
#include <random>

using namespace placement;

namespace {

/// A box of few waves, each of them below the Nyquist frequency.
Volume RandomWaves(const std::array<std::size_t, 3> &count, const std::array<double, 3> &spacing) {
    Volume volume{count, spacing, {1, 2, 3}, {}};
    volume.values.resize(count[0] * count[1] * count[2], 0.5f);
    std::mt19937 random(3);
    std::uniform_real_distribution<double> phase(0, 2 * std::numbers::pi);
    for (const auto &[h, j, l] :
         std::vector<std::array<int, 3>>{{1, 0, 0}, {2, -3, 1}, {0, 2, -2}, {3, 1, 4}}) {
        const double shift = phase(random);
        for (std::size_t z = 0; z < count[2]; ++z)
            for (std::size_t y = 0; y < count[1]; ++y)
                for (std::size_t x = 0; x < count[0]; ++x) {
                    const double cycles = h * double(x) / double(count[0]) +
                                          j * double(y) / double(count[1]) + l * double(z) / double(count[2]);
                    volume.values[volume.Index(x, y, z)] +=
                        float(std::cos(2 * std::numbers::pi * cycles + shift));
                }
    }
    return volume;
}

Waves TransformOf(const Volume &volume, double cutOff, unsigned threads = 1) {
    return Transform(
        volume.count, volume.spacing, volume.origin,
        [&](std::size_t j, std::size_t k, float *row) {
            std::copy_n(volume.values.begin() + std::ptrdiff_t(volume.Index(0, j, k)), volume.count[0], row);
        },
        cutOff, threads);
}

/// The wave (h, j, l) by its definition.
std::complex<double> DirectWave(const Volume &volume, long h, long j, long l) {
    std::complex<double> sum = 0;
    for (std::size_t z = 0; z < volume.count[2]; ++z)
        for (std::size_t y = 0; y < volume.count[1]; ++y)
            for (std::size_t x = 0; x < volume.count[0]; ++x) {
                const double cycles = double(h) * double(x) / double(volume.count[0]) +
                                      double(j) * double(y) / double(volume.count[1]) +
                                      double(l) * double(z) / double(volume.count[2]);
                sum +=
                    std::polar(double(volume.values[volume.Index(x, y, z)]), -2 * std::numbers::pi * cycles);
            }
    return sum / double(volume.values.size());
}

RadialCurve One() {
    return {1, {1, 1, 1, 1, 1, 1, 1, 1, 1, 1}};
}

} // namespace

TEST(Fourier, SizesAreEvenAndHaveSmallFactors) {
    EXPECT_EQ(TransformSize(1), 2u);
    EXPECT_EQ(TransformSize(13), 14u);
    EXPECT_EQ(TransformSize(97), 98u);
    EXPECT_EQ(TransformSize(121), 126u);
}

TEST(Fourier, WavesAreTheDirectSums) {
    Volume volume{{9, 10, 7}, {1, 1.5, 2}, {}, {}};
    std::mt19937 random(5);
    std::uniform_real_distribution<float> value(-1, 1);
    for (int i = 0; i < 9 * 10 * 7; ++i)
        volume.values.push_back(value(random));
    const Waves waves = TransformOf(volume, 10);
    for (long h = 0; h <= long(waves.band[0]); ++h)
        for (long j = -long(waves.band[1]); j <= long(waves.band[1]); ++j)
            for (long l = -long(waves.band[2]); l <= long(waves.band[2]); ++l) {
                const auto found =
                    waves.values[std::size_t(h) +
                                 (waves.band[0] + 1) * (waves.Row(j, 1) + waves.Rows(1) * waves.Row(l, 2))];
                const std::complex<double> direct = DirectWave(volume, h, j, l);
                ASSERT_NEAR(double(found.real()), direct.real(), 1e-6) << h << ' ' << j << ' ' << l;
                ASSERT_NEAR(double(found.imag()), direct.imag(), 1e-6);
            }
}

TEST(Fourier, ABoxOfFewWavesComesBackOnEveryLattice) {
    const Volume volume = RandomWaves({12, 14, 20}, {1, 1.1, 0.7});
    const Waves waves = TransformOf(volume, 0.6);
    const Volume same = Synthesise(waves, One(), 1.1, 1);
    const Volume fine = Synthesise(waves, One(), 0.35, 1);
    EXPECT_EQ(fine.count[2], 40u);
    EXPECT_NEAR(fine.spacing[2], 0.35, 1e-12);
    // Every second voxel along z, where both lattices have one.
    for (std::size_t k = 0; k < 20; ++k)
        EXPECT_NEAR(fine.values[fine.Index(0, 0, 2 * k)], volume.values[volume.Index(0, 0, k)], 1e-5);
    EXPECT_NEAR(same.values[0], volume.values[0], 1e-5);
}

TEST(Fourier, ACutOffKeepsOnlyLongWaves) {
    const Volume volume = RandomWaves({24, 24, 24}, {1, 1, 1});
    // Waves up to 2 of 24 along each axis.
    const Waves waves = TransformOf(volume, 2.5 / 24);
    EXPECT_EQ(waves.band, (std::array<std::size_t, 3>{2, 2, 2}));
    EXPECT_EQ(waves.values.size(), 3u * 5 * 5);
}

TEST(Fourier, ThreadsGiveTheSameBytes) {
    const Volume volume = RandomWaves({20, 18, 16}, {1, 1, 1});
    const Waves one = TransformOf(volume, 1, 1), three = TransformOf(volume, 1, 3);
    EXPECT_EQ(one.values, three.values);
    EXPECT_EQ(Synthesise(one, One(), 0.7, 1).values, Synthesise(three, One(), 0.7, 3).values);
}

TEST(Fourier, BetweenVoxelsAWaveKeepsItsAmplitudeWhereItIsInterpolated) {
    // A cosine of 4 periods, on 16 voxels.
    Volume volume{{64, 4, 4}, {0.5, 0.5, 0.5}, {}, LargeVector<float>(1024, 0)};
    const auto wave = [](double part) { return std::cos(2 * std::numbers::pi * 4 * part); };
    for (std::size_t i = 0; i < 1024; ++i)
        volume.values[i] = float(wave(double(i % 64) / 64));
    const Volume coarse = Synthesise(TransformOf(volume, 1), One(), 2, 1, Between::Linear);
    ASSERT_EQ(coarse.count[0], 16u);
    double amplitude = 0;
    constexpr std::size_t fine = 50;
    for (std::size_t i = 0; i < 16; ++i)
        for (std::size_t j = 0; j < fine; ++j) {
            const double part = double(j) / fine;
            const double between =
                double(coarse.values[i]) * (1 - part) + double(coarse.values[(i + 1) % 16]) * part;
            amplitude += 2 * between * wave((double(i) + part) / 16) / (16 * fine);
        }
    EXPECT_NEAR(amplitude, 1, 0.001);
    // As it is, the lattice would keep a fifth less.
    EXPECT_NEAR(double(coarse.values[0]), 1 / 0.81, 0.01);
}
