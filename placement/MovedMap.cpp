#include "placement/MovedMap.h"

#include "placement/Constants.h"
#include "placement/Interpolation.h"
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

/// Whether a position, taken from a box's first corner, lies in it.
bool LiesIn(const Point &lengths, const Point &p) {
    return p.x >= 0 && p.y >= 0 && p.z >= 0 && p.x <= lengths.x && p.y <= lengths.y && p.z <= lengths.z;
}

} // namespace

Point MirroredIn(const VolumeView &map, const Point &p) {
    return {2 * map.origin.x + double(map.count[0] - 1) * map.spacing[0] - p.x, p.y, p.z};
}

Volume MovedMap(const VolumeView &map, const MapMotion &motion, const Lattice &lattice, unsigned threads) {
    const Volume finer = Finer(map, threads);
    const Point lengths{double(map.count[0] - 1) * map.spacing[0], double(map.count[1] - 1) * map.spacing[1],
                        double(map.count[2] - 1) * map.spacing[2]};
    const Motion back = InverseOf(motion.motion);
    Volume moved{lattice.count, lattice.spacing, lattice.origin, {}};
    moved.values.resize(lattice.count[0] * lattice.count[1] * lattice.count[2]);
    ForEach(lattice.count[2], threads, [&](std::size_t k, unsigned) {
        for (std::size_t j = 0; j < lattice.count[1]; ++j)
            for (std::size_t i = 0; i < lattice.count[0]; ++i) {
                const Point p = back * moved.At(i, j, k);
                const Point from = (motion.mirrored ? MirroredIn(map, p) : p) - map.origin;
                moved.values[moved.Index(i, j, k)] = LiesIn(lengths, from) ? float(ValueAt(finer, from)) : 0;
            }
    });
    return moved;
}

} // namespace placement
