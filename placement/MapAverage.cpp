#include "placement/MapAverage.h"

#include "placement/Constants.h"
#include "placement/Fourier.h"
#include "placement/Interpolation.h"
#include "placement/Parallel.h"
#include "placement/Spectrum.h"

#include <algorithm>

namespace placement {

namespace {

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
    Point end;
    std::array<double, 3> length;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        length[axis] = double(map.count[axis] - 1) * map.spacing[axis];
        const double voxel = std::max(map.spacing[axis], bandVoxel * resolution);
        mean.count[axis] = std::size_t(length[axis] / voxel) + 1;
        mean.spacing[axis] = voxel;
    }
    end = {length[0], length[1], length[2]};
    mean.values.resize(mean.count[0] * mean.count[1] * mean.count[2]);
    ForEach(mean.count[1] * mean.count[2], threads, [&](std::size_t row, unsigned) {
        const std::size_t j = row % mean.count[1], k = row / mean.count[1];
        for (std::size_t i = 0; i < mean.count[0]; ++i) {
            double sum = 0, number = 0;
            for (const Motion &motion : motions) {
                const Point from = motion * mean.At(i, j, k) - source.origin, to = end - from;
                if (std::min({from.x, from.y, from.z, to.x, to.y, to.z}) < 0)
                    continue;
                sum += ValueAt(source, from);
                number += 1;
            }
            mean.values[mean.Index(i, j, k)] = number > 0 ? float(sum / number) : 0.0f;
        }
    });
    return mean;
}

} // namespace placement
