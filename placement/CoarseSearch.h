#pragma once

#include "placement/Monitor.h"
#include "placement/PointModel.h"
#include "placement/Volume.h"

#include <optional>
#include <span>

namespace placement {

/// What the scan goes through.
struct CoarseJob {
    const Volume &level;                ///< the filtered map, coarse
    std::vector<bool> places;           ///< which of its voxels may hold the model's centre
    std::array<std::size_t, 3> inBox{}; ///< the level's first voxels that lie in the map; the rest is padding
    std::span<const Point> points;      ///< of the model, about its centre, all of one weight
    std::span<const Matrix> rotations;
};

/// How many of a volume's voxels lie within a box of these lengths (Å) that begins where it does; the rest is
/// padding.
std::array<std::size_t, 3> VoxelsInBox(const Volume &volume, const std::array<double, 3> &lengths);

/// The values of the voxels `inBox`; of more than a quarter of a million an even sample of rows.
std::vector<float> ValuesInBox(const Volume &volume, const std::array<std::size_t, 3> &inBox);

/// The lowest and the highest value of all voxels `inBox`.
std::pair<float, float> RangeInBox(const Volume &volume, const std::array<std::size_t, 3> &inBox);

/// The value above which a smoothed map counts as density: 15 % of the way from the lowest tenth of its
/// voxels `inBox` to their maximum.
double DensityThreshold(const Volume &smoothed, const std::array<std::size_t, 3> &inBox);

/// The voxels of a smoothed map, of those `inBox`, where a model's centre may lie: above that threshold, and,
/// where a region is given, in it or in a voxel that reaches into it.
std::vector<bool> DensePlaces(const Volume &smoothed, const std::array<std::size_t, 3> &inBox,
                              const std::optional<Sphere> &region);

/// Sums the level, in 16 steps between ±2 deviations, at the model's points, for each rotation with its
/// centre at each place. Returns the best poses, best first: at most `keptCandidates`, one for each rotation
/// and chunk of 64 neighbouring places. Order is by score, rotation and place, so that it is the same on any
/// number of threads. A cancelled scan returns the best of what it came to.
std::vector<Pose> CoarseSearch(const CoarseJob &job, unsigned threads, Monitor &monitor);

} // namespace placement
