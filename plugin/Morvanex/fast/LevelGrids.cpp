#include "fast/LevelGrids.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

using namespace VARNO;

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

/// a / b for a power of two b, rounded towards positive infinity.
std::int32_t RoundedUpQuotient(std::int32_t a, std::int32_t b) {
    return (a + b - 1) >> std::countr_zero(std::uint32_t(b));
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
template <class Visit>
void GridLayout::ForEachVoxel(const Grid &grid, Visit visit) const {
    constexpr unsigned band = 16;
    const auto &n = grid.Dimensions();
    const float *values = grid.Values().data();
    for (unsigned j = 0; j < n[1]; ++j)
        for (unsigned begin = 0; begin < n[0]; begin += band) {
            const unsigned end = std::min(begin + band, n[0]);
            const std::size_t row = m_first + std::size_t(j) * std::size_t(m_axes[1].stride);
            for (unsigned k = 0; k < n[2]; ++k) {
                const float *from = values + std::size_t(n[0]) * (j + std::size_t(n[1]) * k);
                for (unsigned i = begin; i < end; ++i)
                    visit(row + std::size_t(i) * std::size_t(m_axes[0].stride) + k, from[i]);
            }
        }
}

FastMap::FastMap(const Grid &grid, std::size_t points)
    : m_layout(grid)
    , m_voxels(m_layout.Size(), 0.0f)
    , m_points(double(points)) {
    const auto [lowest, highest] = std::ranges::minmax(grid.Values());
    ChooseScale(std::min(lowest, 0.0f), std::max(highest, 0.0f));
    m_levels.assign(m_layout.Size(), std::uint8_t(m_zeroLevel));
    m_fineLevels.assign(m_layout.Size(), std::uint8_t(0));
    m_layout.ForEachVoxel(grid, [this](std::size_t place, float value) {
        const std::int32_t fine = PlaceOnFineScale(value);
        const std::int32_t level = RoundedUpQuotient(fine, m_fineSteps);
        m_voxels[place] = value;
        m_levels[place] = std::uint8_t(level + m_zeroLevel);
        m_fineLevels[place] = std::uint8_t(level * m_fineSteps - fine);
    });
}

void FastMap::ChooseScale(double lowest, double highest) {
    const unsigned highestSum = 65535;
    const unsigned highestHere = std::min(highestLevel, unsigned(highestSum / m_points));
    m_fineSteps = std::int32_t(std::bit_floor(highestHere + 1));
    // The levels down to the lowest voxel and those up to the highest are rounded up each.
    if (highest > lowest)
        m_quantum = RoundUpTo24Bits((highest - lowest) / (highestHere - 1)) / m_fineSteps;
    m_scale = 1 / m_quantum;
    m_zeroLevel = RoundedUpQuotient(std::int32_t(std::ceil(-lowest / m_quantum)), m_fineSteps);
    // Each of n - 1 additions rounds by at most 2^-53 of a partial sum, which is at most n times the largest
    // voxel. Twice that leaves room for the rounding of the sums' own growth.
    m_roundingError = m_points * m_points * std::max(-lowest, highest) * 0x1p-52;
}

/// Voxel and quantum have 24 significant bits and their quotient lies below 2^13, so that a quotient that is
/// no whole number lies 2^-36 of itself or more from one, far beyond the rounding of the product: truncated,
/// that is the number looked for or a neighbour.
std::int32_t FastMap::PlaceOnFineScale(float value) const {
    const double v = value;
    std::int32_t fine = std::int32_t(v * m_scale);
    fine += fine * m_quantum < v;
    fine -= (fine - 1) * m_quantum >= v;
    return fine;
}

/// The limits within which a sum in units of the fine scale, shifted by the levels of 0.0, must lie. The
/// divisions round, by far less than the one whole unit that is left for them.
FastMap::Limits FastMap::LimitsOf(double low, double high, double unit) const {
    const double shift = m_points * m_zeroLevel * (m_fineSteps / unit);
    return {std::floor((low - m_roundingError) / (m_quantum * unit) + shift) - 1,
            std::ceil((high + m_roundingError) / (m_quantum * unit) + shift + m_points) + 1};
}

SumRange FastMap::SumsBetween(double low, double high) const {
    const auto [first, last] = LimitsOf(low, high, m_fineSteps);
    if (first > 65535 || last < 0)
        return {};
    return {std::uint16_t(std::max(first, 0.0)), std::uint16_t(std::min(last, 65535.0))};
}

FineRange FastMap::FineSumsBetween(double low, double high) const {
    constexpr double most = std::numeric_limits<std::int32_t>::max();
    const auto [first, last] = LimitsOf(low, high, 1);
    return {std::int32_t(std::clamp(first, -most, most)), std::int32_t(std::clamp(last, -most, most))};
}

FastSolid::FastSolid(const Grid &grid)
    : m_layout(grid)
    , m_levels(m_layout.Size(), std::uint8_t(0)) {
    m_layout.ForEachVoxel(grid, [this](std::size_t place, float value) { m_levels[place] = value > 2.0f; });
}

} // namespace fast
