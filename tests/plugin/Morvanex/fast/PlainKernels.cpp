#include "PlainKernels.h"

#include "search/Scoring.h"

#include <algorithm>

namespace plain {

namespace {

using fast::lookUpOffsets;

/// The index of the nearest voxel; -1 below the grid, `count` above it.
std::int32_t NearestIndex(float p, const fast::GridAxis &axis) {
    const unsigned voxel = search::NearestVoxel(p, axis.origin, axis.spacing, unsigned(axis.count));
    if (voxel < unsigned(axis.count))
        return std::int32_t(voxel);
    return p < axis.origin ? -1 : axis.count;
}

/// What a pattern reads of a window for the offset of that number.
std::uint8_t LookUp(const std::uint8_t *window, const std::uint8_t *pattern, std::size_t bytes,
                    std::size_t offset) {
    std::uint8_t level = 0;
    for (std::size_t half = 0; half < bytes; half += 16) {
        const std::uint8_t place = pattern[half + offset];
        if (place < 0x80)
            level = window[half + place];
    }
    return level;
}

template <class Number, class Range>
bool IsWithin(Number sum, const Range &range) {
    return range.first <= sum && sum <= range.last;
}

} // namespace

void RotatePoints(const std::array<double, 9> &matrix, const fast::CoordinateArrays<const double> &p,
                  fast::PaddedPoints points, const fast::CoordinateArrays<float> &rotated) {
    for (std::size_t i = 0; i < points.Entries(); ++i)
        for (std::size_t row = 0; row < 3; ++row) {
            const double *m = &matrix[3 * row];
            rotated[row][i] = float(m[0] * p[0][i] + m[1] * p[1][i] + m[2] * p[2][i]);
        }
}

void MapCoordinates(const float *coordinates, fast::PaddedPoints points, float translation,
                    const fast::GridAxis &axis, std::int32_t *indices) {
    for (std::size_t i = 0; i < points.Entries(); ++i)
        indices[i] = axis.stride * NearestIndex(coordinates[i] + translation, axis);
}

bool MapWindows(const float *coordinates, fast::PaddedPoints points,
                const fast::UnitTranslations &translations, std::size_t count, const fast::GridAxis &axis,
                const fast::Windows &windows) {
    bool fits = true;
    for (std::size_t i = 0; i < points.Entries(); ++i)
        windows.starts[i] = std::min(NearestIndex(coordinates[i] + translations[0], axis),
                                     NearestIndex(coordinates[i] + translations[count - 1], axis));
    for (std::size_t i = 0; i < points.Points(); ++i)
        for (std::size_t k = 0; k < count; ++k) {
            const int place = NearestIndex(coordinates[i] + translations[k], axis) - windows.starts[i];
            fits = fits && place < int(windows.shape.bytes);
            std::uint8_t *pattern = windows.patterns + i * windows.shape.PatternBytes() +
                                    k / lookUpOffsets * windows.shape.bytes + k % lookUpOffsets;
            pattern[0] = std::uint8_t(place < 16 ? place : place | 0x80);
            if (windows.shape.bytes == 32)
                pattern[16] = std::uint8_t(place - 16);
        }
    return fits;
}

void SumRows(const fast::RowSums &job) {
    const fast::WindowShape &shape = job.windows.shape;
    std::size_t sum = 0;
    for (std::size_t x = 0; x < job.xs.size(); ++x)
        for (std::size_t row = job.rowsBegin[x]; row < job.rowsBegin[x + 1]; ++row)
            for (std::size_t lookUp = 0; lookUp < shape.lookUps; ++lookUp)
                for (std::size_t offset = 0; offset < lookUpOffsets; ++offset) {
                    unsigned levels = 0;
                    for (std::size_t i = 0; i < job.points.Entries(); ++i)
                        levels +=
                            LookUp(job.levels.First() + job.xs[x][i] + job.ys[row][i] + job.windows.starts[i],
                                   job.windows.patterns + (i * shape.lookUps + lookUp) * shape.bytes,
                                   shape.bytes, offset);
                    job.sums[sum++] = std::uint16_t(levels);
                }
}

void MarkSums(std::span<const std::uint16_t> sums, fast::SumRange a, fast::SumRange b,
              std::span<std::uint16_t> marks) {
    std::ranges::fill(marks, std::uint16_t(0));
    for (std::size_t i = 0; i < sums.size(); ++i)
        if (IsWithin(sums[i], a) || IsWithin(sums[i], b))
            marks[i / lookUpOffsets] |= std::uint16_t(1u << i % lookUpOffsets);
}

void MarkFineSums(std::span<const std::uint16_t> sums, std::span<const std::uint16_t> fineSums,
                  std::int32_t fineSteps, fast::FineRange a, fast::FineRange b,
                  std::span<std::uint16_t> marks) {
    std::ranges::fill(marks, std::uint16_t(0));
    for (std::size_t i = 0; i < sums.size(); ++i) {
        const std::int32_t sum = fineSteps * sums[i] - fineSums[i];
        if (IsWithin(sum, a) || IsWithin(sum, b))
            marks[i / lookUpOffsets] |= std::uint16_t(1u << i % lookUpOffsets);
    }
}

bool Touches(const fast::GridValues<std::uint8_t> &levels, fast::PaddedPoints points,
             const fast::PoseIndices &pose) {
    for (std::size_t i = 0; i < points.Points(); ++i)
        if (levels.First()[pose.x[i] + pose.y[i] + pose.z[i]] > 0)
            return true;
    return false;
}

void ScorePoses(const fast::GridValues<float> &voxels, fast::PaddedPoints points,
                std::span<const fast::PoseIndices> poses, std::span<double> scores) {
    for (std::size_t pose = 0; pose < poses.size(); ++pose) {
        const auto &[x, y, z] = poses[pose];
        double sum = 0;
        for (std::size_t i = 0; i < points.Points(); ++i)
            sum += double(voxels.First()[x[i] + y[i] + z[i]]);
        scores[pose] = sum;
    }
}

} // namespace plain
