#pragma once

#include "Types.h"
#include "fast/Kernels.h"

#include <vector>

namespace fast {

/// How a grid's voxels lie in the arrays of the fast search: z runs fastest, then y, then x, and a border of
/// one voxel on every side stands for everything outside. The border at the end of a row is also the one
/// before the next row, and so for the planes: (nx + 2)·(ny + 1)·(nz + 1) voxels and a few in front and
/// behind.
class GridLayout {
public:
    explicit GridLayout(const VARNO::Grid &grid);

    /// Whether the grid's numbers are within what the tables can hold: finite and positive where they have to
    /// be, at most 2^22 voxels along an axis, indices within 31 bits.
    static bool Holds(const VARNO::Grid &grid);

    /// x, y and z.
    const GridAxis &Axis(std::size_t i) const { return m_axes[i]; }
    /// Entries of an array of this layout.
    std::size_t Size() const { return m_size; }
    /// Where voxel (0, 0, 0) stands.
    std::size_t First() const { return m_first; }

    /// Calls `visit` with each voxel's place in an array and its value.
    template <class Visit>
    void ForEachVoxel(const VARNO::Grid &grid, Visit visit) const;

private:
    GridAxis m_axes[3];
    std::size_t m_size = 0, m_first = 0;
};

/// A density map for the fast search: its voxels, and levels that bound them from above.
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
class FastMap {
public:
    /// For poses of that many points, at most `mostPoints`: the more points, the coarser the levels, so that
    /// their sum fits into 16 bits.
    FastMap(const VARNO::Grid &grid, std::size_t points);
    static constexpr std::size_t mostPoints = 65535 / 4;

    const GridLayout &Layout() const { return m_layout; }
    /// Voxel (0, 0, 0).
    const float *Voxels() const { return m_voxels.data() + m_layout.First(); }
    const std::uint8_t *Levels() const { return m_levels.data() + m_layout.First(); }
    const std::uint8_t *FineLevels() const { return m_fineLevels.data() + m_layout.First(); }
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

/// The keep-out grid for the fast search: level 1 where a point collides, else 0.
class FastSolid {
public:
    explicit FastSolid(const VARNO::Grid &grid);

    const GridLayout &Layout() const { return m_layout; }
    const std::uint8_t *Levels() const { return m_levels.data() + m_layout.First(); }

private:
    GridLayout m_layout;
    std::vector<std::uint8_t> m_levels;
};

} // namespace fast
