#include "FastGrid.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace fast {

namespace {

constexpr std::int64_t mostVoxels = 1 << 22; ///< along an axis
/// A window may begin at the border behind the last row.
constexpr std::int64_t widestWindow = 32;

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
    e.size = e.first + e.count[0] * e.plane + e.count[1] * e.row + e.count[2] + widestWindow;
    return e;
}

/// The number with 24 significant bits next above x > 0, or x itself.
double RoundUpTo24Bits(double x) {
    int exponent;
    const double mantissa = std::frexp(x, &exponent);
    return std::ldexp(std::ceil(std::ldexp(mantissa, 24)), exponent - 24);
}

} // namespace

bool GridLayout::Holds(const Grid &grid) {
    for (const unsigned i : {0u, 1u, 2u}) {
        const float spacing = grid.Spacing()[i];
        if (!std::isfinite(grid.Origin()[i]) || !std::isfinite(spacing) || !(spacing > 0))
            return false;
        if (grid.Dimensions()[i] < 1 || grid.Dimensions()[i] > mostVoxels)
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

/// Goes through the grid in bands of 16 voxels along x: a band's rows, a cache line each, are read side by
/// side and written to 16 rows along z.
template <class T, class Value>
void GridLayout::Fill(const Grid &grid, std::vector<T> &out, Value value) const {
    constexpr unsigned band = 16;
    const auto &n = grid.Dimensions();
    const float *values = grid.Values().data();
    for (unsigned j = 0; j < n[1]; ++j)
        for (unsigned begin = 0; begin < n[0]; begin += band) {
            const unsigned end = std::min(begin + band, n[0]);
            T *to = out.data() + m_first + std::size_t(j) * std::size_t(m_axes[1].stride);
            for (unsigned k = 0; k < n[2]; ++k) {
                const float *from = values + std::size_t(n[0]) * (j + std::size_t(n[1]) * k);
                for (unsigned i = begin; i < end; ++i)
                    to[std::size_t(i) * std::size_t(m_axes[0].stride) + k] = value(from[i]);
            }
        }
}

FastMap::FastMap(const Grid &grid, std::size_t points)
    : m_layout(grid)
    , m_voxels(m_layout.Size(), 0.0f)
    , m_points(double(points)) {
    const auto [lowest, highest] = std::ranges::minmax(grid.Values());
    ChooseLevels(std::min(lowest, 0.0f), std::max(highest, 0.0f));
    m_layout.Fill(grid, m_voxels, [](float value) { return value; });
    m_levels.assign(m_layout.Size(), std::uint8_t(m_zeroLevel));
    const double scale = 1 / m_quantum;
    m_layout.Fill(grid, m_levels, [this, scale](float value) {
        const double v = value;
        double steps = std::ceil(v * scale);
        steps += steps * m_quantum < v;
        steps -= (steps - 1) * m_quantum >= v;
        return std::uint8_t(steps + m_zeroLevel);
    });
}

void FastMap::ChooseLevels(double lowest, double highest) {
    // The steps down to the lowest voxel and those up to the highest are rounded up each.
    const double steps = std::min(double(highestLevel), std::floor(65535 / m_points)) - 1;
    if (highest > lowest)
        m_quantum = RoundUpTo24Bits((highest - lowest) / steps);
    m_zeroLevel = std::ceil(-lowest / m_quantum);
    // Each of n - 1 additions rounds by at most 2^-53 of a partial sum, which is at most n times the largest
    // voxel. Twice that leaves room for the rounding of the sums' own growth.
    m_roundingError = m_points * m_points * std::max(-lowest, highest) * 0x1p-52;
}

/// With B the sum of the levels, n the points and z the level of 0.0, the exact sum S of the voxels obeys
/// (B - n·z - n)·quantum <= S <= (B - n·z)·quantum, and the score, summed in double, lies within the rounding
/// error of S. The divisions below round too, by far less than the one whole level that is left for them.
SumRange FastMap::SumsReaching(double score) const {
    const double first = (score - m_roundingError) / m_quantum + m_points * m_zeroLevel;
    if (first > 65536)
        return {};
    return {std::uint16_t(std::clamp(std::floor(first) - 1, 0.0, 65535.0)), 65535};
}

SumRange FastMap::SumsAround(double score) const {
    const double last = (score + m_roundingError) / m_quantum + m_points * (m_zeroLevel + 1);
    SumRange range = SumsReaching(score);
    if (last < 0)
        return {};
    range.last = std::min(range.last, std::uint16_t(std::clamp(std::ceil(last) + 1, 0.0, 65535.0)));
    return range;
}

FastSolid::FastSolid(const Grid &grid)
    : m_layout(grid)
    , m_levels(m_layout.Size(), std::uint8_t(0)) {
    m_layout.Fill(grid, m_levels, [](float value) { return std::uint8_t(value > 2.0f); });
}

} // namespace fast
