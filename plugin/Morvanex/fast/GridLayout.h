#pragma once

#include "fast/Kernels.h"

#include "Grid.h"

#include <algorithm>
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

    /// An array of this layout as the kernels take it.
    template <class T>
    GridValues<T> ValuesOf(const std::vector<T> &array) const {
        return {array, m_first};
    }

private:
    GridAxis m_axes[3];
    std::size_t m_size = 0, m_first = 0;
};

/// Goes through the grid in bands of 16 voxels along x: a band's rows, a cache line each, are read side by
/// side and written to 16 rows along z.
template <class Visit>
void GridLayout::ForEachVoxel(const VARNO::Grid &grid, Visit visit) const {
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

} // namespace fast
