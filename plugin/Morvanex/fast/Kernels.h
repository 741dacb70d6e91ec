#pragma once

#include <cstddef>
#include <cstdint>

/// The inner loops of the fast search, compiled for every instruction set that the machine may have and
/// chosen when first called. What they are for, and why the data lie as they do, is told in docs/search.md.

namespace fast {

/// Arrays with one entry per point are padded to a multiple of this: the floats of the widest vector.
constexpr std::size_t pointBlock = 16;
/// Offsets that one look-up in a window serves, at most: the bytes of the widest one that every instruction
/// set has.
constexpr std::size_t lookUpOffsets = 16;
/// Look-ups in a window, at most.
constexpr std::size_t mostLookUps = 2;
/// Points whose levels are added as bytes before they are widened.
constexpr std::size_t levelGroup = 4;
/// The highest level of a voxel: `levelGroup` of them fit into a byte.
constexpr unsigned highestLevel = 255 / levelGroup;

constexpr std::size_t Padded(std::size_t points) {
    return (points + pointBlock - 1) / pointBlock * pointBlock;
}

/// One axis of a grid, for the mapping of coordinates to voxels.
struct GridAxis {
    float origin = 0, spacing = 1; ///< Å; finite, the spacing greater than 0
    std::int32_t count = 0;        ///< voxels, at most 2^22
    std::int32_t stride = 0;       ///< distance of neighbouring voxels in the array
};

/// out[i] = matrix · p[i], each coordinate summed in double from x to z and rounded once to float. `matrix`
/// has nine entries, rows first; `p` and `out` are three arrays of `padded` entries.
void RotatePoints(const double *matrix, const double *const *p, std::size_t padded, float *const *out);

/// out[i] = stride · (index of the voxel nearest to coordinate[i] + translation). The index is that of
/// `NearestVoxel`, but for a coordinate outside: -1 below the grid, `count` above it.
void MapCoordinates(const float *coordinates, std::size_t padded, float translation, const GridAxis &axis,
                    std::int32_t *out);

/// The largest window in bytes that a look-up reads: 16 or 32.
std::size_t LargestWindow();

/// What is read of a row for one point: a window of 16 or 32 bytes, looked up once or twice.
struct WindowShape {
    std::size_t bytes = 16, lookUps = 1;

    std::size_t MostOffsets() const { return lookUps * lookUpOffsets; }
    std::size_t PatternBytes() const { return lookUps * bytes; }
};

/// Where in their windows of a row the offsets of a unit read.
struct Windows {
    WindowShape shape;
    std::int32_t *starts = nullptr;  ///< the index at which each point's window begins; `padded` entries
    std::int32_t *scratch = nullptr; ///< `padded` entries
    /// `shape.bytes` for each look-up of each of `padded` points; 0x80 reads nothing. What stands beyond a
    /// unit's offsets is kept.
    std::uint8_t *patterns = nullptr;
};

/// Maps `points` coordinates at the `count` translations of a unit, which ascend or descend; behind them
/// stand, up to `shape.MostOffsets()`, repetitions of the last. False when an offset lies outside its point's
/// window.
bool MapWindows(const float *coordinates, std::size_t points, std::size_t padded, const float *translations,
                std::size_t count, const GridAxis &axis, const Windows &windows);

/// Which rows of a block are summed, and from what.
struct RowSums {
    const std::uint8_t *levels = nullptr; ///< voxel (0, 0, 0) of the grid
    std::size_t padded = 0;               ///< points
    Windows windows;
    const std::int32_t *const *xs = nullptr;  ///< per x offset of the block, the points' indices along x
    const std::uint32_t *rowsBegin = nullptr; ///< per x offset, and one more: where its rows begin in `ys`
    std::size_t xCount = 0;
    const std::int32_t *const *ys = nullptr; ///< per row, the points' indices along y
    std::uint16_t *sums = nullptr;           ///< `lookUpOffsets` per look-up of each row
};

/// Sums the levels under all points, for each row and each offset of its unit.
void SumRows(const RowSums &job);

/// Closed range of level sums; empty when first > last.
struct SumRange {
    std::uint16_t first = 1, last = 0;
};

/// Bit k of marks[i] tells whether the k-th sum of the i-th look-up lies in one of the two ranges.
void MarkSums(const std::uint16_t *sums, std::size_t lookUps, SumRange a, SumRange b, std::uint16_t *marks);

/// The tables of one pose: the points' indices along each axis at the pose's offset.
struct PoseIndices {
    const std::int32_t *x, *y, *z;
};

/// Closed range of fine sums; empty when first > last.
struct FineRange {
    std::int32_t first = 1, last = 0;
};

/// As above, of fineSteps·sum - fineSum.
void MarkFineSums(const std::uint16_t *sums, const std::uint16_t *fineSums, std::int32_t fineSteps,
                  std::size_t lookUps, FineRange a, FineRange b, std::uint16_t *marks);

/// Whether a voxel under the pose's points has a level above 0.
bool Touches(const std::uint8_t *levels, std::size_t points, const PoseIndices &pose);

/// scores[i] = the sum in double, from the first point to the last, of the voxels under the i-th pose's
/// points. `voxels` points to voxel (0, 0, 0).
void ScorePoses(const float *voxels, std::size_t points, const PoseIndices *poses, std::size_t count,
                double *scores);

} // namespace fast
