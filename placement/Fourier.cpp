#include "placement/Fourier.h"

#include "placement/Parallel.h"

// Each plan is used by several threads of our own; the transforms themselves start none.
#define POCKETFFT_NO_MULTITHREADING
#define POCKETFFT_CACHE_SIZE 16
#include <gemmi/third_party/pocketfft_hdronly.h>

#include <algorithm>
#include <numbers>
#include <optional>

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

/// Where a row's frequency stands among the samples along an axis.
std::size_t SampleOf(std::size_t row, const Waves &waves, std::size_t axis,
                     const std::array<std::size_t, 3> &count) {
    return row > waves.band[axis] ? row + count[axis] - waves.Rows(axis) : row;
}

/// The frequency that a sample along an axis stands for; none beyond the band.
std::optional<long> FrequencyOf(std::size_t sample, const Waves &waves, std::size_t axis,
                                const std::array<std::size_t, 3> &count) {
    if (sample <= waves.band[axis])
        return long(sample);
    if (sample + waves.band[axis] >= count[axis])
        return long(sample) - long(count[axis]);
    return std::nullopt;
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
        const pocketfft::stride_t valueStrides{std::ptrdiff_t(sizeof(float) * m_count[0]), sizeof(float)};
        const pocketfft::stride_t waveStrides{complexBytes * std::ptrdiff_t(m_rowWaves), complexBytes};
        pocketfft::r2c({m_count[1], m_count[0]}, valueStrides, waveStrides, 1, pocketfft::FORWARD,
                       m_values.data(), m_section.data(), scale);
        const std::size_t nx = m_waves.band[0] + 1;
        pocketfft::c2c({m_count[1], nx}, waveStrides, waveStrides, {0}, pocketfft::FORWARD, m_section.data(),
                       m_section.data(), 1.0f);
        for (std::size_t row = 0; row < m_waves.Rows(1); ++row)
            std::copy_n(m_section.begin() + std::ptrdiff_t(m_rowWaves * SampleOf(row, m_waves, 1, m_count)),
                        nx, plane + nx * row);
    }

private:
    std::array<std::size_t, 3> m_count;
    const Waves &m_waves;
    std::size_t m_rowWaves; ///< of a whole row
    std::vector<float> m_values;
    std::vector<Complex> m_section;
};

/// A volume that begins as its waves and becomes its values in the same memory: a row of nx values holds nx/2
/// + 1 waves, and so two values more, until the rows are closed up.
class InPlaceBox {
public:
    explicit InPlaceBox(const std::array<std::size_t, 3> &count)
        : m_count(count)
        , m_row(count[0] / 2 + 1)
        , m_plane(m_row * count[1])
        , m_values(2 * m_plane * count[2]) {}

    /// The waves of row (j, l), samples along y and z.
    Complex *Row(std::size_t j, std::size_t l) { return Data() + m_row * j + m_plane * l; }

    /// Sets the waves of section l to 0.
    void Clear(std::size_t l) { std::fill_n(Row(0, l), m_plane, Complex()); }

    /// Transforms the first `columns` waves of row j of all sections along z.
    void AlongZ(std::size_t j, std::size_t columns) {
        const pocketfft::stride_t strides{complexBytes * std::ptrdiff_t(m_plane), complexBytes};
        pocketfft::c2c({m_count[2], columns}, strides, strides, {0}, pocketfft::BACKWARD, Row(j, 0),
                       Row(j, 0), 1.0f);
    }

    /// Transforms section k along y, of which only the first `columns` waves of a row are not 0, and along x.
    /// Its rows are closed up.
    void Section(std::size_t k, std::size_t columns) {
        const pocketfft::stride_t waves{complexBytes * std::ptrdiff_t(m_row), complexBytes};
        const pocketfft::stride_t values{complexBytes * std::ptrdiff_t(m_row), sizeof(float)};
        pocketfft::c2c({m_count[1], columns}, waves, waves, {0}, pocketfft::BACKWARD, Row(0, k), Row(0, k),
                       1.0f);
        float *section = m_values.data() + 2 * m_plane * k;
        pocketfft::c2r({m_count[1], m_count[0]}, waves, values, 1, pocketfft::BACKWARD, Row(0, k), section,
                       1.0f);
        for (std::size_t j = 1; j < m_count[1]; ++j)
            std::copy_n(section + 2 * m_row * j, m_count[0], section + m_count[0] * j);
    }

    /// The values, sections closed up.
    LargeVector<float> Take() {
        const std::size_t section = m_count[0] * m_count[1];
        for (std::size_t k = 1; k < m_count[2]; ++k)
            std::copy_n(m_values.begin() + std::ptrdiff_t(2 * m_plane * k), section,
                        m_values.begin() + std::ptrdiff_t(section * k));
        m_values.resize(section * m_count[2]);
        return std::move(m_values);
    }

private:
    /// A complex number is laid out as two of its components.
    Complex *Data() { return reinterpret_cast<Complex *>(m_values.data()); }

    std::array<std::size_t, 3> m_count;
    std::size_t m_row, m_plane; ///< waves
    LargeVector<float> m_values;
};

/// sinc² of the wave of frequency f among `count` samples: what linear interpolation leaves of it.
float LinearLoss(std::size_t f, std::size_t count) {
    const double x = std::numbers::pi * double(f) / double(count);
    return f > 0 ? float(std::pow(std::sin(x) / x, 2)) : 1.0f;
}

/// Multiplies rows of waves by a curve, and by what makes good for linear interpolation.
class WaveFilter {
public:
    WaveFilter(const Waves &waves, const RadialCurve &weight, const std::array<std::size_t, 3> &count,
               Between between)
        : m_waves(waves)
        , m_weight(weight) {
        for (std::size_t axis = 0; axis < 3; ++axis)
            for (std::size_t f = 0; f <= waves.band[axis]; ++f)
                m_losses[axis].push_back(between == Between::Linear ? LinearLoss(f, count[axis]) : 1.0f);
    }

    /// The row of the frequencies j and l.
    void Apply(const Complex *in, long j, long l, Complex *out) const {
        const double ky = double(j) / m_waves.length[1], kz = double(l) / m_waves.length[2];
        const float loss = m_losses[1][std::size_t(std::abs(j))] * m_losses[2][std::size_t(std::abs(l))];
        for (std::size_t h = 0; h <= m_waves.band[0]; ++h) {
            const double kx = double(h) / m_waves.length[0];
            out[h] = in[h] *
                     (float(m_weight.At(std::sqrt(kx * kx + ky * ky + kz * kz))) / (loss * m_losses[0][h]));
        }
    }

private:
    const Waves &m_waves;
    const RadialCurve &m_weight;
    std::array<std::vector<float>, 3> m_losses;
};

/// Transforms all columns along z of `sections` planes of `plane` values forward, in place.
void AlongZ(LargeVector<Complex> &values, std::size_t sections, std::size_t plane, unsigned threads) {
    const pocketfft::stride_t strides{complexBytes * std::ptrdiff_t(plane), complexBytes};
    ForEach((plane + columnBlock - 1) / columnBlock, threads, [&](std::size_t block, unsigned) {
        Complex *first = values.data() + block * columnBlock;
        const std::size_t columns = std::min(columnBlock, plane - block * columnBlock);
        pocketfft::c2c({sections, columns}, strides, strides, {0}, pocketfft::FORWARD, first, first, 1.0f);
    });
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
    std::vector<SectionTransform> sections(std::max(1u, threads), SectionTransform(count, waves));
    ForEach(count[2], threads, [&](std::size_t k, unsigned worker) {
        sections[worker].Forward(rows, k, scale, waves.values.data() + plane * k);
    });
    AlongZ(waves.values, count[2], plane, threads);
    // The negative frequencies move up behind the others.
    const auto from = waves.values.begin() + std::ptrdiff_t(plane * (count[2] - waves.band[2]));
    std::copy(from, waves.values.end(), waves.values.begin() + std::ptrdiff_t(plane * (waves.band[2] + 1)));
    waves.values.resize(plane * waves.Rows(2));
    // Giving memory back takes a copy; of nearly all of it that would need more than it gives.
    if (waves.values.size() < waves.values.capacity() / 2)
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
    const WaveFilter filter(part, weight, volume.count, between);
    const std::size_t columns = part.band[0] + 1;
    InPlaceBox box(volume.count);
    ForEach(volume.count[2], threads, [&](std::size_t section, unsigned) {
        box.Clear(section);
        if (const std::optional<long> l = FrequencyOf(section, part, 2, volume.count))
            for (std::size_t row = 0; row < part.Rows(1); ++row) {
                const long j = part.Frequency(row, 1);
                const Complex *in =
                    waves.values.data() +
                    (waves.band[0] + 1) * (waves.Row(j, 1) + waves.Rows(1) * waves.Row(*l, 2));
                filter.Apply(in, j, *l, box.Row(SampleOf(row, part, 1, volume.count), section));
            }
    });
    ForEach(part.Rows(1), threads,
            [&](std::size_t row, unsigned) { box.AlongZ(SampleOf(row, part, 1, volume.count), columns); });
    ForEach(volume.count[2], threads, [&](std::size_t k, unsigned) { box.Section(k, columns); });
    volume.values = box.Take();
    return volume;
}

} // namespace placement
