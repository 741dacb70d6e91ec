#pragma once

#include "placement/Geometry.h"
#include "placement/Volume.h"

#include <cstdint>
#include <span>

namespace placement {

/// The inner loops of the search, compiled for every instruction set that the machine may have and chosen
/// when first called.

/// Places that the scan takes as one: their levels stand side by side, so that 64 sums are one load and one
/// addition of bytes for each point.
constexpr std::size_t chunkPlaces = 64;
/// Chunks that are summed together, for as many sums as the registers hold.
constexpr std::size_t blockChunks = 8;
/// The highest level of a voxel; 17 of them fit a byte.
constexpr unsigned highestLevel = 15;

/// For each of `blockChunks` chunks c and each place p of it the sum of chunks[c][p + offset] over all
/// offsets. Bit c of the result tells whether a sum of chunk c exceeds `threshold`; only then are
/// sums[chunkPlaces·c + p] written. There may be at most 2184 offsets.
unsigned SumLevels(const std::uint8_t *const *chunks, std::span<const std::int32_t> offsets,
                   std::uint16_t threshold, std::uint16_t *sums);

/// Weighted points as the kernel reads them: single precision, padded with points of weight 0.
class WeightedPoints {
public:
    WeightedPoints(std::span<const Point> points, std::span<const double> weights);

    std::size_t Padded() const { return m_x.size(); }
    const float *X() const { return m_x.data(); }
    const float *Y() const { return m_y.data(); }
    const float *Z() const { return m_z.data(); }
    const float *Weights() const { return m_weights.data(); }

private:
    std::vector<float> m_x, m_y, m_z, m_weights;
};

/// A score and its derivatives by a shift (1/Å) and by a rotation about the pose's centre (1/rad), each along
/// x, y and z of the model frame.
struct ScoreGradient {
    double score = 0;
    Point byShift, byRotation;
};

/// The sum over the points of weight · volume(rotation·p + centre), the volume being linear between its
/// voxels along each axis and 0 outside.
ScoreGradient ScorePose(const Volume &volume, const WeightedPoints &points, const Pose &pose);

} // namespace placement
