#include "placement/MovedMap.h"

#include "placement/Constants.h"
#include "placement/Parallel.h"

#include <algorithm>

namespace placement {

namespace {

/// A map's waves on a finer lattice, as they are.
Volume Finer(const VolumeView &map, unsigned threads) {
    const double finest = *std::ranges::min_element(map.spacing);
    const double coarsest = *std::ranges::max_element(map.spacing);
    const double end = std::sqrt(3.0) / 2 / finest;
    const Waves waves = TransformPadded(map, 4 * coarsest, end, threads);
    const RadialCurve all = Sample(end, end, [](double) { return 1; });
    return Synthesise(waves, all, resampledVoxel * finest, threads, Between::Linear);
}

/// Samples a volume linearly between its voxels, within a box that begins where it does.
class Sampler {
public:
    Sampler(const Volume &volume, const std::array<double, 3> &lengths)
        : m_volume(volume)
        , m_lengths(lengths) {}

    float At(const Point &p) const {
        const std::array<double, 3> at{p.x - m_volume.origin.x, p.y - m_volume.origin.y,
                                       p.z - m_volume.origin.z};
        std::array<std::size_t, 3> first;
        std::array<float, 3> part;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            // The padding lies behind the box, and so a second voxel along each axis.
            if (!(at[axis] >= 0 && at[axis] <= m_lengths[axis]))
                return 0;
            const double voxel = at[axis] / m_volume.spacing[axis];
            first[axis] = std::size_t(voxel);
            part[axis] = float(voxel - double(first[axis]));
        }
        const auto [i, j, k] = first;
        const auto alongX = [&](std::size_t y, std::size_t z) {
            const float *value = &m_volume.values[m_volume.Index(i, y, z)];
            return value[0] + part[0] * (value[1] - value[0]);
        };
        const auto inPlane = [&](std::size_t z) {
            return std::lerp(alongX(j, z), alongX(j + 1, z), part[1]);
        };
        return std::lerp(inPlane(k), inPlane(k + 1), part[2]);
    }

private:
    const Volume &m_volume;
    std::array<double, 3> m_lengths;
};

} // namespace

Point MirroredIn(const VolumeView &map, const Point &p) {
    return {2 * map.origin.x + double(map.count[0] - 1) * map.spacing[0] - p.x, p.y, p.z};
}

Volume MovedMap(const VolumeView &map, const MapMotion &motion, const Lattice &lattice, unsigned threads) {
    const Volume finer = Finer(map, threads);
    std::array<double, 3> lengths;
    for (std::size_t axis = 0; axis < 3; ++axis)
        lengths[axis] = double(map.count[axis] - 1) * map.spacing[axis];
    const Sampler sampler(finer, lengths);
    const Motion back = InverseOf(motion.motion);
    Volume moved{lattice.count, lattice.spacing, lattice.origin, {}};
    moved.values.resize(lattice.count[0] * lattice.count[1] * lattice.count[2]);
    ForEach(lattice.count[2], threads, [&](std::size_t k, unsigned) {
        for (std::size_t j = 0; j < lattice.count[1]; ++j)
            for (std::size_t i = 0; i < lattice.count[0]; ++i) {
                const Point p = back * moved.At(i, j, k);
                moved.values[moved.Index(i, j, k)] = sampler.At(motion.mirrored ? MirroredIn(map, p) : p);
            }
    });
    return moved;
}

} // namespace placement
