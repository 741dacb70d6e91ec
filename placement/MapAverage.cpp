#include "placement/MapAverage.h"

#include "placement/Constants.h"
#include "placement/Fourier.h"
#include "placement/Interpolation.h"
#include "placement/Parallel.h"
#include "placement/Spectrum.h"

#include <algorithm>

namespace placement {

namespace {

/// A cube of voxels that is averaged by itself: small enough for what lies at all its copies' places to stay
/// in the processor's cache while one motion is at work.
constexpr std::size_t tile = 16;

class Averager {
public:
    /// `length` is that of the map, Å, from its first voxel to its last.
    Averager(std::span<const Motion> motions, const Volume &source, const Point &length, Volume &mean)
        : m_motions(motions)
        , m_source(source)
        , m_length(length)
        , m_mean(mean) {
        for (std::size_t axis = 0; axis < 3; ++axis)
            m_tiles[axis] = (mean.count[axis] + tile - 1) / tile;
    }

    std::size_t Tiles() const { return m_tiles[0] * m_tiles[1] * m_tiles[2]; }

    void Average(std::size_t number) {
        const std::array<std::size_t, 3> first{tile * (number % m_tiles[0]),
                                               tile * (number / m_tiles[0] % m_tiles[1]),
                                               tile * (number / (m_tiles[0] * m_tiles[1]))};
        std::array<std::size_t, 3> size;
        for (std::size_t axis = 0; axis < 3; ++axis)
            size[axis] = std::min(tile, m_mean.count[axis] - first[axis]);
        std::vector<double> sums(size[0] * size[1] * size[2]), numbers(sums.size());
        for (const Motion &motion : m_motions)
            for (std::size_t row = 0; row < size[1] * size[2]; ++row) {
                const Point begin = m_mean.At(first[0], first[1] + row % size[1], first[2] + row / size[1]);
                AddRow(motion, begin, std::span(sums).subspan(row * size[0], size[0]),
                       std::span(numbers).subspan(row * size[0], size[0]));
            }
        for (std::size_t i = 0; i < sums.size(); ++i) {
            const std::size_t row = i / size[0];
            m_mean.values[m_mean.Index(first[0] + i % size[0], first[1] + row % size[1],
                                       first[2] + row / size[1])] =
                numbers[i] > 0 ? float(sums[i] / numbers[i]) : 0.0f;
        }
    }

private:
    /// Adds to the sums of a row, which begins at a point, what lies there after the motion, and counts it.
    void AddRow(const Motion &motion, const Point &begin, std::span<double> sums, std::span<double> numbers) {
        const Point first = motion * begin - m_source.origin;
        const Point step = motion.rotation * Point{m_mean.spacing[0], 0, 0};
        for (std::size_t i = 0; i < sums.size(); ++i) {
            const Point at = first + double(i) * step;
            if (!(at.x >= 0 && at.y >= 0 && at.z >= 0 && at.x <= m_length.x && at.y <= m_length.y &&
                  at.z <= m_length.z))
                continue;
            sums[i] += ValueAt(m_source, at);
            numbers[i] += 1;
        }
    }

    std::span<const Motion> m_motions;
    const Volume &m_source;
    Point m_length;
    Volume &m_mean;
    std::array<std::size_t, 3> m_tiles{};
};

/// The map on a lattice so fine that linear interpolation loses little, or half its own voxels where that
/// takes too many.
Volume Interpolable(const VolumeView &map, double resolution, unsigned threads) {
    const double end = bandEnd / resolution;
    const Waves waves = TransformPadded(map, padding * resolution, end, threads);
    const double volume = waves.length[0] * waves.length[1] * waves.length[2];
    const double voxel = std::max(averageVoxel * resolution, std::cbrt(volume / maxAverageVoxels));
    return Synthesise(waves, {end, {1, 1}}, voxel, threads, Between::Linear);
}

} // namespace

Volume AverageOver(std::span<const Motion> motions, const VolumeView &map, double resolution,
                   unsigned threads) {
    const Volume source = Interpolable(map, resolution, threads);
    Volume mean;
    mean.origin = map.origin;
    std::array<double, 3> length;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        length[axis] = double(map.count[axis] - 1) * map.spacing[axis];
        mean.spacing[axis] = std::max(map.spacing[axis], bandVoxel * resolution);
        mean.count[axis] = std::size_t(length[axis] / mean.spacing[axis]) + 1;
    }
    mean.values.resize(mean.count[0] * mean.count[1] * mean.count[2]);
    Averager averager(motions, source, {length[0], length[1], length[2]}, mean);
    ForEach(averager.Tiles(), threads, [&](std::size_t number, unsigned) { averager.Average(number); });
    return mean;
}

} // namespace placement
