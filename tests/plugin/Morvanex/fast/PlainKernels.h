#pragma once

#include "fast/Kernels.h"

/// The plain twins of the kernels: the same functions as loops over single numbers, written to be read. A
/// kernel must give the same bits, with every instruction set. They stand here since nothing but tests calls
/// them.
namespace plain {

void RotatePoints(const std::array<double, 9> &matrix, const fast::CoordinateArrays<const double> &p,
                  fast::PaddedPoints points, const fast::CoordinateArrays<float> &rotated);

void MapCoordinates(const float *coordinates, fast::PaddedPoints points, float translation,
                    const fast::GridAxis &axis, std::int32_t *indices);

/// The patterns are those of the `count` offsets alone.
bool MapWindows(const float *coordinates, fast::PaddedPoints points,
                const fast::UnitTranslations &translations, std::size_t count, const fast::GridAxis &axis,
                const fast::Windows &windows);

void SumRows(const fast::RowSums &job);

void MarkSums(std::span<const std::uint16_t> sums, fast::SumRange a, fast::SumRange b,
              std::span<std::uint16_t> marks);

void MarkFineSums(std::span<const std::uint16_t> sums, std::span<const std::uint16_t> fineSums,
                  std::int32_t fineSteps, fast::FineRange a, fast::FineRange b,
                  std::span<std::uint16_t> marks);

bool Touches(const fast::GridValues<std::uint8_t> &levels, fast::PaddedPoints points,
             const fast::PoseIndices &pose);

void ScorePoses(const fast::GridValues<float> &voxels, fast::PaddedPoints points,
                std::span<const fast::PoseIndices> poses, std::span<double> scores);

} // namespace plain
