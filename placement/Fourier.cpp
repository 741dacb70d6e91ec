#include "placement/Fourier.h"

#include "placement/Parallel.h"

// Each plan is used by several threads of our own; the transforms themselves start none.
#define POCKETFFT_NO_MULTITHREADING
#define POCKETFFT_CACHE_SIZE 16
#include <gemmi/third_party/pocketfft_hdronly.h>

#include <algorithm>
#include <numbers>

namespace placement {

namespace {

using Complex = std::complex<float>;

constexpr auto complexBytes = std::ptrdiff_t(sizeof(Complex));

/// Columns along z that are transformed in one go: enough to fill the vectors, few enough to share out.
constexpr std::size_t columnBlock = 256;

/// The waves below the cut-off along an axis that also fit `count` samples: the one at half of them is its
/// own conjugate and left out.
std::size_t BandOf(double length, std::size_t count, double cutOff) {
    return std::min(std::size_t(std::max(0.0, cutOff * length)), count / 2 - 1);
}

/// Transforms one section, all rows (j, k) of one k, along x and y; only the waves of the band are kept. All
/// rows go in one call, which transforms as many at once as a vector holds.
class SectionTransform {
public:
    SectionTransform(const std::array<std::size_t, 3> &count, const Waves &waves)
        : m_count(count)
        , m_waves(waves)
        , m_rowWaves(count[0] / 2 + 1)
        , m_values(count[0] * count[1])
        , m_section(m_rowWaves * count[1]) {}

    void Forward(const RowSource &rows, std::size_t k, float scale, Complex *plane) {
        for (std::size_t j = 0; j < m_count[1]; ++j)
            rows(j, k, m_values.data() + m_count[0] * j);
        pocketfft::r2c({m_count[1], m_count[0]}, ValueStrides(), WaveStrides(), 1, pocketfft::FORWARD,
                       m_values.data(), m_section.data(), scale);
        AlongY(pocketfft::FORWARD);
        const std::size_t nx = m_waves.band[0] + 1;
        for (std::size_t row = 0; row < m_waves.Rows(1); ++row)
            std::copy_n(m_section.begin() + std::ptrdiff_t(m_rowWaves * SampleOf(row)), nx, plane + nx * row);
    }

    void Backward(const Complex *plane, float *values) {
        const std::size_t nx = m_waves.band[0] + 1;
        std::fill(m_section.begin(), m_section.end(), Complex());
        for (std::size_t row = 0; row < m_waves.Rows(1); ++row)
            std::copy_n(plane + nx * row, nx, m_section.begin() + std::ptrdiff_t(m_rowWaves * SampleOf(row)));
        AlongY(pocketfft::BACKWARD);
        pocketfft::c2r({m_count[1], m_count[0]}, WaveStrides(), ValueStrides(), 1, pocketfft::BACKWARD,
                       m_section.data(), values, 1.0f);
    }

private:
    /// Where a row's frequency stands among the samples along y.
    std::size_t SampleOf(std::size_t row) const {
        return row > m_waves.band[1] ? row + m_count[1] - m_waves.Rows(1) : row;
    }
    pocketfft::stride_t ValueStrides() const {
        return {std::ptrdiff_t(sizeof(float) * m_count[0]), std::ptrdiff_t(sizeof(float))};
    }
    pocketfft::stride_t WaveStrides() const {
        return {complexBytes * std::ptrdiff_t(m_rowWaves), complexBytes};
    }

    /// Waves beyond the band are 0, or will not be kept.
    void AlongY(bool forward) {
        pocketfft::c2c({m_count[1], m_waves.band[0] + 1}, WaveStrides(), WaveStrides(), {0}, forward,
                       m_section.data(), m_section.data(), 1.0f);
    }

    std::array<std::size_t, 3> m_count;
    const Waves &m_waves;
    std::size_t m_rowWaves; ///< of a whole row
    std::vector<float> m_values;
    std::vector<Complex> m_section;
};

/// Transforms all columns along z of `sections` planes of `plane` values, in place.
void AlongZ(std::vector<Complex> &values, std::size_t sections, std::size_t plane, bool forward,
            unsigned threads) {
    const pocketfft::stride_t strides{complexBytes * std::ptrdiff_t(plane), complexBytes};
    ForEach((plane + columnBlock - 1) / columnBlock, threads, [&](std::size_t block, unsigned) {
        Complex *first = values.data() + block * columnBlock;
        const std::size_t columns = std::min(columnBlock, plane - block * columnBlock);
        pocketfft::c2c({sections, columns}, strides, strides, {0}, forward, first, first, 1.0f);
    });
}

/// sinc² of the wave of frequency f among `count` samples: what linear interpolation leaves of it.
float LinearLoss(std::size_t f, std::size_t count) {
    const double x = std::numbers::pi * double(f) / double(count);
    return f > 0 ? float(std::pow(std::sin(x) / x, 2)) : 1.0f;
}

std::vector<SectionTransform> ForThreads(unsigned threads, const std::array<std::size_t, 3> &count,
                                         const Waves &waves) {
    return std::vector<SectionTransform>(std::max(1u, threads), SectionTransform(count, waves));
}

} // namespace

std::size_t TransformSize(std::size_t minimum) {
    for (std::size_t size = std::max<std::size_t>(2, minimum + minimum % 2);; size += 2) {
        std::size_t rest = size;
        for (const std::size_t prime : {2, 3, 5, 7})
            while (rest % prime == 0)
                rest /= prime;
        if (rest == 1)
            return size;
    }
}

Waves Transform(const std::array<std::size_t, 3> &count, const std::array<double, 3> &spacing,
                const Point &origin, const RowSource &rows, double cutOff, unsigned threads) {
    Waves waves;
    waves.origin = origin;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        waves.length[axis] = double(count[axis]) * spacing[axis];
        waves.band[axis] = BandOf(waves.length[axis], count[axis], cutOff);
    }
    const std::size_t plane = (waves.band[0] + 1) * waves.Rows(1);
    waves.values.resize(plane * count[2]);
    const auto scale = float(1 / (double(count[0]) * double(count[1]) * double(count[2])));
    std::vector<SectionTransform> sections = ForThreads(threads, count, waves);
    ForEach(count[2], threads, [&](std::size_t k, unsigned worker) {
        sections[worker].Forward(rows, k, scale, waves.values.data() + plane * k);
    });
    AlongZ(waves.values, count[2], plane, pocketfft::FORWARD, threads);
    // The negative frequencies move up behind the others.
    const auto from = waves.values.begin() + std::ptrdiff_t(plane * (count[2] - waves.band[2]));
    std::copy(from, waves.values.end(), waves.values.begin() + std::ptrdiff_t(plane * (waves.band[2] + 1)));
    waves.values.resize(plane * waves.Rows(2));
    waves.values.shrink_to_fit();
    return waves;
}

Volume Synthesise(const Waves &waves, const RadialCurve &weight, double voxel, unsigned threads,
                  Between between) {
    Volume volume;
    Waves part;
    part.length = waves.length;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        // Lengths that are a whole number of voxels but for rounding take no voxel more.
        volume.count[axis] = TransformSize(std::size_t(std::ceil(waves.length[axis] / voxel - 1e-6)));
        volume.spacing[axis] = waves.length[axis] / double(volume.count[axis]);
        part.band[axis] =
            std::min(waves.band[axis], BandOf(waves.length[axis], volume.count[axis], weight.End()));
    }
    volume.origin = waves.origin;
    std::array<std::vector<float>, 3> factors;
    for (std::size_t axis = 0; axis < 3; ++axis)
        for (std::size_t f = 0; f <= part.band[axis]; ++f)
            factors[axis].push_back(between == Between::Linear ? LinearLoss(f, volume.count[axis]) : 1.0f);
    const std::size_t nx = part.band[0] + 1, plane = nx * part.Rows(1), sections = volume.count[2];
    part.values.resize(plane * sections);
    ForEach(part.Rows(2), threads, [&](std::size_t section, unsigned) {
        const long l = part.Frequency(section, 2);
        const double kz = double(l) / part.length[2];
        Complex *out = part.values.data() + plane * std::size_t(l < 0 ? l + long(sections) : l);
        for (std::size_t row = 0; row < part.Rows(1); ++row) {
            const long j = part.Frequency(row, 1);
            const double ky = double(j) / part.length[1];
            const float loss = factors[1][std::size_t(std::abs(j))] * factors[2][std::size_t(std::abs(l))];
            const Complex *in = waves.values.data() +
                                (waves.band[0] + 1) * (waves.Row(j, 1) + waves.Rows(1) * waves.Row(l, 2));
            for (std::size_t h = 0; h < nx; ++h) {
                const double kx = double(h) / part.length[0];
                *out++ = in[h] *
                         (float(weight.At(std::sqrt(kx * kx + ky * ky + kz * kz))) / (loss * factors[0][h]));
            }
        }
    });
    AlongZ(part.values, sections, plane, pocketfft::BACKWARD, threads);
    volume.values.resize(volume.count[0] * volume.count[1] * sections);
    std::vector<SectionTransform> transforms = ForThreads(threads, volume.count, part);
    ForEach(sections, threads, [&](std::size_t k, unsigned worker) {
        transforms[worker].Backward(part.values.data() + plane * k,
                                    volume.values.data() + volume.count[0] * volume.count[1] * k);
    });
    return volume;
}

} // namespace placement
