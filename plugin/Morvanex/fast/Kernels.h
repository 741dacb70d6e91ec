#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

/// The inner loops of the fast search, compiled for every instruction set that the machine may have and
/// chosen when first called. docs/search.md explains their purpose and why the data
/// are laid out as they are; the plain loop that each must equal bit for bit is in the tests'
/// PlainKernels.cpp. Arrays may begin at any address. What else a kernel assumes is asserted in debug builds.

namespace fast {

/// How many points there are, and how many entries an array has with one entry per point: the points, and
/// behind them fillers up to a whole number of vectors.
class PaddedPoints {
public:
    /// The floats of the widest vector.
    static constexpr std::size_t block = 16;

    explicit constexpr PaddedPoints(std::size_t points)
        : m_points(points) {}

    constexpr std::size_t Points() const { return m_points; }
    constexpr std::size_t Entries() const { return (m_points + block - 1) / block * block; }

private:
    std::size_t m_points;
};

/// Offsets that one look-up in a window serves, at most: the bytes of the widest one that every instruction
/// set has.
constexpr std::size_t lookUpOffsets = 16;
/// Look-ups in a window, at most.
constexpr std::size_t maxLookUps = 2;
/// Points whose levels are added as bytes before they are widened.
constexpr std::size_t levelGroup = 4;
/// The highest level of a voxel: `levelGroup` of them fit into a byte.
constexpr unsigned highestLevel = 255 / levelGroup;

/// One axis of a grid, for the mapping of coordinates to voxels.
struct GridAxis {
    static constexpr std::int32_t maxCount = 1 << 22;

    float origin = 0, spacing = 1; ///< Å; finite, the spacing greater than 0
    std::int32_t count = 0;        ///< voxels, at most `maxCount`
    std::int32_t stride = 0;       ///< distance of neighbouring voxels in the array
};

/// The values of a grid, laid out as `GridLayout` tells.
template <class T>
struct GridValues {
    std::span<const T> all;
    std::size_t first = 0; ///< where voxel (0, 0, 0) stands

    const T *First() const { return all.data() + first; }
    /// Whether `count` values from that index on, counted from voxel (0, 0, 0), are there.
    bool Holds(std::int64_t index, std::size_t count) const {
        const std::int64_t begin = std::int64_t(first) + index;
        return begin >= 0 && begin + std::int64_t(count) <= std::int64_t(all.size());
    }
};

/// Arrays for x, y and z, each with one entry per point.
template <class T>
using CoordinateArrays = std::array<T *, 3>;

/// rotated[i] = matrix · p[i], each coordinate summed in double from x to z and rounded once to float. The
/// matrix has its rows first.
void RotatePoints(const std::array<double, 9> &matrix, const CoordinateArrays<const double> &p,
                  PaddedPoints points, const CoordinateArrays<float> &rotated);

/// indices[i] = stride · (index of the voxel nearest to coordinates[i] + translation). The index is that of
/// `NearestVoxel`, but for a coordinate outside: -1 below the grid, `count` above it.
void MapCoordinates(const float *coordinates, PaddedPoints points, float translation, const GridAxis &axis,
                    std::int32_t *indices);

/// The largest window in bytes that a look-up reads: 16 or 32.
std::size_t LargestWindow();

/// What is read of a row for one point: a window of 16 or 32 bytes, looked up once or twice.
struct WindowShape {
    std::size_t bytes = 16, lookUps = 1;

    std::size_t MaxOffsets() const { return lookUps * lookUpOffsets; }
    std::size_t PatternBytes() const { return lookUps * bytes; }
};

/// Where in their windows of a row the offsets of a unit read.
struct Windows {
    WindowShape shape;
    std::int32_t *starts = nullptr;  ///< the index at which each point's window begins
    std::int32_t *scratch = nullptr; ///< one entry per point, fillers too
    /// For each point, fillers too, `shape.bytes` for each look-up. The 16 bytes of a narrow window are the
    /// places where its offsets read; 0x80 reads nothing. A wide window has the places in its first half, and
    /// 16 more for those in its second. Zero at first, but for fillers, which read nothing; entries
    /// beyond a unit's offsets belong to none.
    std::uint8_t *patterns = nullptr;
};

/// The translations of a unit, which ascend or descend; behind them stand repetitions of the last.
using UnitTranslations = std::array<float, maxLookUps * lookUpOffsets>;

/// Fills the windows for coordinates at the first `count` translations. False when an offset lies outside its
/// point's window. The axis is the one that runs fastest, of stride 1. Patterns of fillers stay as they are.
bool MapWindows(const float *coordinates, PaddedPoints points, const UnitTranslations &translations,
                std::size_t count, const GridAxis &axis, const Windows &windows);

/// Which rows of a block are summed, and from what.
struct RowSums {
    GridValues<std::uint8_t> levels; ///< none above `highestLevel`
    PaddedPoints points;             ///< the sum of all their levels fits into 16 bits
    Windows windows;
    std::span<const std::int32_t *const> xs;  ///< per x offset of the block, the points' indices along x
    std::span<const std::uint32_t> rowsBegin; ///< per x offset, and one more: where its rows begin in `ys`
    std::span<const std::int32_t *const> ys;  ///< per row, the points' indices along y
    std::span<std::uint16_t> sums;            ///< `lookUpOffsets` per look-up of each row
};

/// Sums the levels under all points, for each row and each offset of its unit.
void SumRows(const RowSums &job);

/// Closed range of level sums; empty when first > last.
struct SumRange {
    std::uint16_t first = 1, last = 0;
};

/// Bit k of marks[i] tells whether the k-th sum of the i-th look-up lies in one of the two ranges. Each
/// look-up has `lookUpOffsets` sums and one mark.
void MarkSums(std::span<const std::uint16_t> sums, SumRange a, SumRange b, std::span<std::uint16_t> marks);

/// Closed range of fine sums; empty when first > last.
struct FineRange {
    std::int32_t first = 1, last = 0;
};

/// As above, of fineSteps·sum - fineSum.
void MarkFineSums(std::span<const std::uint16_t> sums, std::span<const std::uint16_t> fineSums,
                  std::int32_t fineSteps, FineRange a, FineRange b, std::span<std::uint16_t> marks);

/// The tables of one pose: the points' indices along each axis at the pose's offset.
struct PoseIndices {
    const std::int32_t *x, *y, *z;
};

/// Whether a voxel under the pose's points has a level above 0.
bool Touches(const GridValues<std::uint8_t> &levels, PaddedPoints points, const PoseIndices &pose);

/// scores[i] = the sum in double, from the first point to the last, of the voxels under the i-th pose's
/// points.
void ScorePoses(const GridValues<float> &voxels, PaddedPoints points, std::span<const PoseIndices> poses,
                std::span<double> scores);

} // namespace fast
