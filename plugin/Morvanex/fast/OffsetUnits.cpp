#include "fast/OffsetUnits.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace fast {

namespace {

/// Offsets that always fit into a window: the first stands at its beginning, each further one `stride` voxels
/// on, and the rounding to the nearest voxel may add one.
std::size_t OffsetsInWindow(const WindowShape &shape, double stride) {
    const double fitting = std::floor(double(shape.bytes - 2) / stride) + 1;
    return std::size_t(std::min(fitting, double(shape.MaxOffsets())));
}

/// Instructions that four points of a row take on x86: to find and load the windows, and for each look-up to
/// permute and to sum; in a wide window its halves are folded too.
std::size_t WorkOf(const WindowShape &shape) {
    return 12 + shape.lookUps * (shape.bytes == 32 ? 12 : 10);
}

std::size_t RoundedUpRatio(std::size_t a, std::size_t b) {
    return (a + b - 1) / b;
}

} // namespace

OffsetUnits CutIntoUnits(std::size_t count, double stride) {
    std::size_t units = 0, least = std::numeric_limits<std::size_t>::max();
    OffsetUnits cut;
    for (const WindowShape shape : {WindowShape{16, 1}, {16, 2}, {32, 1}, {32, 2}}) {
        const std::size_t needed = RoundedUpRatio(count, OffsetsInWindow(shape, stride));
        const std::size_t work = needed * WorkOf(shape);
        if (shape.bytes <= LargestWindow() && work < least) {
            least = work;
            units = needed;
            cut.shape = shape;
        }
    }
    for (std::size_t first = 0; units > 0; --units) {
        const std::size_t size = RoundedUpRatio(count - first, units);
        cut.units.push_back({first, size});
        first += size;
    }
    return cut;
}

} // namespace fast
