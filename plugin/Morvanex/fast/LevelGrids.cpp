#include "fast/LevelGrids.h"

#include "search/Scoring.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

using namespace VARNO;

namespace fast {

namespace {

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

LevelMap::LevelMap(const Grid &grid, std::size_t points)
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

void LevelMap::ChooseScale(double lowest, double highest) {
    const unsigned highestSum = 65535;
    const unsigned highestHere = std::min(highestLevel, unsigned(highestSum / m_points));
    m_fineSteps = std::int32_t(std::bit_floor(highestHere + 1));
    // The levels down to the lowest voxel and those up to the highest are rounded up each.
    if (highest > lowest)
        m_quantum = RoundUpTo24Bits((highest - lowest) / (highestHere - 1)) / m_fineSteps;
    m_scale = 1 / m_quantum;
    m_zeroLevel = RoundedUpQuotient(std::int32_t(std::ceil(-lowest / m_quantum)), m_fineSteps);
    // Each of n - 1 additions rounds by at most 2^-53 of a partial sum, which is at most n times the largest
    // voxel. Twice that allows for the rounding of the sums' own growth.
    m_roundingError = m_points * m_points * std::max(-lowest, highest) * 0x1p-52;
}

/// Voxel and quantum have 24 significant bits and their quotient lies below 2^13, so that a quotient that is
/// no whole number lies 2^-36 of itself or more from one, far beyond the rounding of the product: truncated,
/// that is the number looked for or a neighbour.
std::int32_t LevelMap::PlaceOnFineScale(float value) const {
    const double v = value;
    std::int32_t fine = std::int32_t(v * m_scale);
    fine += fine * m_quantum < v;
    fine -= (fine - 1) * m_quantum >= v;
    return fine;
}

/// The limits within which a sum in units of the fine scale, shifted by the levels of 0.0, must lie. The
/// divisions round, by far less than the one whole unit that is left for them.
LevelMap::Limits LevelMap::LimitsOf(double low, double high, double unit) const {
    const double shift = m_points * m_zeroLevel * (m_fineSteps / unit);
    return {std::floor((low - m_roundingError) / (m_quantum * unit) + shift) - 1,
            std::ceil((high + m_roundingError) / (m_quantum * unit) + shift + m_points) + 1};
}

SumRange LevelMap::SumsBetween(double low, double high) const {
    const auto [first, last] = LimitsOf(low, high, m_fineSteps);
    if (first > 65535 || last < 0)
        return {};
    return {std::uint16_t(std::max(first, 0.0)), std::uint16_t(std::min(last, 65535.0))};
}

FineRange LevelMap::FineSumsBetween(double low, double high) const {
    constexpr double most = std::numeric_limits<std::int32_t>::max();
    const auto [first, last] = LimitsOf(low, high, 1);
    return {std::int32_t(std::clamp(first, -most, most)), std::int32_t(std::clamp(last, -most, most))};
}

CollisionMask::CollisionMask(const Grid &grid)
    : m_layout(grid)
    , m_levels(m_layout.Size(), std::uint8_t(0)) {
    m_layout.ForEachVoxel(
        grid, [this](std::size_t place, float value) { m_levels[place] = search::Touches(value); });
}

LevelGrids::LevelGrids(const fit::Preparation &fit)
    : map(*fit.map, fit.target.points.size()) {
    if (fit.keepOut)
        collisions.emplace(*fit.keepOut);
}

} // namespace fast
