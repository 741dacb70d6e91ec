#pragma once

#include "fast/GridLayout.h"
#include "fit/Preparation.h"

#include <optional>

namespace fast {

/// A density map: its voxels, and levels that bound them from above.
///
/// A voxel v stands on a fine scale at f = the least whole number with v <= f·quantum. Its level is the least
/// b with f <= fineSteps·(b - zeroLevel), its fine level how far f stands below that: fineSteps·(b -
/// zeroLevel) - f. The quantum has 24 significant bits, so that these products are exact in double; the
/// border's 0 is met exactly.
///
/// With B the sum of the levels under the n points of a pose, F that of the fine levels and z the level of
/// 0.0, the exact sum S of the voxels obeys
///
///     (B - n·z - n)·fineSteps·quantum <= S <= (B - n·z)·fineSteps·quantum
///     (B - n·z)·fineSteps - F - n <= S / quantum <= (B - n·z)·fineSteps - F
///
/// and the score, which is summed in double, lies within the rounding error of S.
class LevelMap {
public:
    /// For poses of that many points, at most `maxPoints`: the more points, the coarser the levels, so that
    /// their sum fits into 16 bits.
    LevelMap(const VARNO::Grid &grid, std::size_t points);
    static constexpr std::size_t maxPoints = 65535 / 4;

    const GridLayout &Layout() const { return m_layout; }
    GridValues<float> Voxels() const { return m_layout.ValuesOf(m_voxels); }
    GridValues<std::uint8_t> Levels() const { return m_layout.ValuesOf(m_levels); }
    GridValues<std::uint8_t> FineLevels() const { return m_layout.ValuesOf(m_fineLevels); }
    bool HasNegativeVoxels() const { return m_zeroLevel > 0; }

    /// Poses whose sum of levels lies outside this range do not score between `low` and `high`, both
    /// included.
    SumRange SumsBetween(double low, double high) const;

    /// Fine levels in a level.
    std::int32_t FineSteps() const { return m_fineSteps; }
    /// Poses whose FineSteps() times the sum of levels, less the sum of fine levels, lies outside this range
    /// do not score between `low` and `high`, both included.
    FineRange FineSumsBetween(double low, double high) const;

private:
    struct Limits {
        double first, last;
    };

    void ChooseScale(double lowest, double highest);
    std::int32_t PlaceOnFineScale(float value) const;
    Limits LimitsOf(double low, double high, double unit) const;

    GridLayout m_layout;
    std::vector<float> m_voxels;
    std::vector<std::uint8_t> m_levels, m_fineLevels;
    double m_points;
    double m_quantum = 1, m_scale = 1; ///< a step of the fine scale, and its inverse
    std::int32_t m_fineSteps = 1;      ///< a power of two
    std::int32_t m_zeroLevel = 0;      ///< the level of 0.0
    double m_roundingError = 0;        ///< of a score, at most
};

/// A keep-out grid: level 1 where a point touches the solid, else 0.
class CollisionMask {
public:
    explicit CollisionMask(const VARNO::Grid &grid);

    const GridLayout &Layout() const { return m_layout; }
    GridValues<std::uint8_t> Levels() const { return m_layout.ValuesOf(m_levels); }

private:
    GridLayout m_layout;
    std::vector<std::uint8_t> m_levels;
};

/// The grids of a fit, which must have a map.
struct LevelGrids {
    explicit LevelGrids(const fit::Preparation &fit);

    LevelMap map;
    std::optional<CollisionMask> collisions; ///< none without a keep-out grid
};

} // namespace fast
