#include "fast/GridLayout.h"

#include <cmath>
#include <limits>

using namespace VARNO;

namespace fast {

namespace {

/// A window may begin at the border behind the last row.
constexpr std::int64_t maxWindow = 32;

/// The numbers of `Layout` in 64 bits, so that they can be looked at before anything is cut.
struct Extent {
    std::int64_t count[3], row, plane, first, size;
};

Extent Measure(const Grid &grid) {
    const auto &n = grid.Dimensions();
    Extent e{{n[0], n[1], n[2]}, 0, 0, 0, 0};
    e.row = e.count[2] + 1;
    e.plane = (e.count[1] + 1) * e.row;
    e.first = e.plane + e.row + 1;
    e.size = e.first + e.count[0] * e.plane + e.count[1] * e.row + e.count[2] + maxWindow;
    return e;
}

} // namespace

bool GridLayout::Holds(const Grid &grid) {
    for (const unsigned i : {0u, 1u, 2u}) {
        const float spacing = grid.Spacing()[i];
        if (!std::isfinite(grid.Origin()[i]) || !std::isfinite(spacing) || !(spacing > 0))
            return false;
        if (grid.Dimensions()[i] < 1 || grid.Dimensions()[i] > GridAxis::maxCount)
            return false;
    }
    const Extent extent = Measure(grid);
    return extent.plane <= std::numeric_limits<std::int32_t>::max() &&
           extent.size <= std::numeric_limits<std::int32_t>::max();
}

GridLayout::GridLayout(const Grid &grid) {
    const Extent extent = Measure(grid);
    const std::int64_t strides[] = {extent.plane, extent.row, 1};
    for (const unsigned i : {0u, 1u, 2u})
        m_axes[i] = {grid.Origin()[i], grid.Spacing()[i], std::int32_t(extent.count[i]),
                     std::int32_t(strides[i])};
    m_size = std::size_t(extent.size);
    m_first = std::size_t(extent.first);
}

} // namespace fast
