#pragma once

#include "fast/Kernels.h"

#include <vector>

namespace fast {

/// The T offsets along z, cut into units: neighbouring offsets that read one window of each row.
struct OffsetUnits {
    struct Unit {
        std::size_t first, count;
    };
    std::vector<Unit> units;
    WindowShape shape;
};

/// Cuts `count` offsets into units that are summed with the least work. `stride` is the distance of
/// neighbouring offsets in voxels.
OffsetUnits CutIntoUnits(std::size_t count, double stride);

} // namespace fast
