#pragma once

#include "FastKernels.h"
#include "Types.h"

#include <vector>

namespace fast {

/// How a grid's voxels lie in the arrays of the fast search: z runs fastest, then y, then x, and a border of
/// one voxel on every side stands for everything outside. The border at the end of a row is also the one
/// before the next row, and so for the planes: (nx + 2)·(ny + 1)·(nz + 1) voxels and a few in front and
/// behind.
class GridLayout {
public:
    explicit GridLayout(const Grid &grid);

    /// Whether the grid's numbers are within what the tables can hold: finite and positive where they have to
    /// be, at most 2^22 voxels along an axis, indices within 31 bits.
    static bool Holds(const Grid &grid);

    /// x, y and z.
    const GridAxis &Axis(std::size_t i) const { return m_axes[i]; }
    /// Entries of an array of this layout.
    std::size_t Size() const { return m_size; }
    /// Where voxel (0, 0, 0) stands.
    std::size_t First() const { return m_first; }

    /// Copies what `value` makes of each of the grid's voxels to its place in `out`.
    template <class T, class Value>
    void Fill(const Grid &grid, std::vector<T> &out, Value value) const;

private:
    GridAxis m_axes[3];
    std::size_t m_size = 0, m_first = 0;
};

/// A density map for the fast search: its voxels, and levels that bound them from above.
///
/// A voxel v of level b has (b - zeroLevel - 1)·quantum < v <= (b - zeroLevel)·quantum. The quantum has 24
/// significant bits, so that these products are exact in double; the border's 0 is a level of its own, met
/// exactly.
class FastMap {
public:
    /// For poses of that many points, at most `mostPoints`: the more points, the coarser the levels, so that
    /// their sum fits into 16 bits.
    FastMap(const Grid &grid, std::size_t points);
    static constexpr std::size_t mostPoints = 65535 / 4;

    const GridLayout &Layout() const { return m_layout; }
    /// Voxel (0, 0, 0).
    const float *Voxels() const { return m_voxels.data() + m_layout.First(); }
    const std::uint8_t *Levels() const { return m_levels.data() + m_layout.First(); }

    /// Poses whose sum of levels lies outside this range score less than `score`.
    SumRange SumsReaching(double score) const;
    /// Poses whose sum of levels lies outside this range do not score exactly `score`.
    SumRange SumsAround(double score) const;
    bool HasNegativeVoxels() const { return m_zeroLevel > 0; }

private:
    void ChooseLevels(double lowest, double highest);

    GridLayout m_layout;
    std::vector<float> m_voxels;
    std::vector<std::uint8_t> m_levels;
    double m_points;
    double m_quantum = 1;
    double m_zeroLevel = 0;     ///< the level of 0.0
    double m_roundingError = 0; ///< of a score, at most
};

/// The keep-out grid for the fast search: level 1 where a point collides, else 0.
class FastSolid {
public:
    explicit FastSolid(const Grid &grid);

    const GridLayout &Layout() const { return m_layout; }
    const std::uint8_t *Levels() const { return m_levels.data() + m_layout.First(); }

private:
    GridLayout m_layout;
    std::vector<std::uint8_t> m_levels;
};

} // namespace fast
