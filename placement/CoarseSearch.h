#pragma once

#include "placement/Monitor.h"
#include "placement/PointModel.h"
#include "placement/Volume.h"

#include <functional>
#include <span>

namespace placement {

/// Which part of a volume may hold the model's centre.
using PlaceFilter = std::function<bool(const Point &centre)>;

/// What the scan goes through.
struct CoarseJob {
    const Volume &level;                ///< the filtered map, coarse
    std::vector<bool> places;           ///< which of its voxels may hold the model's centre
    std::array<std::size_t, 3> inBox{}; ///< the level's first voxels that lie in the map; the rest is padding
    std::span<const Point> points;      ///< of the model, about its centre, all of one weight
    std::span<const Matrix> rotations;
};

/// The value above which a smoothed map counts as density: 15 % of the way from the lowest tenth of its
/// voxels `inBox` to their maximum.
double DensityThreshold(const Volume &smoothed, const std::array<std::size_t, 3> &inBox);

/// The voxels of a smoothed map, of those `inBox`, where a model's centre may lie: above that threshold, and
/// allowed by the filter, where there is one.
std::vector<bool> DensePlaces(const Volume &smoothed, const std::array<std::size_t, 3> &inBox,
                              const PlaceFilter &allowed);

/// Sums the level, in 16 steps between ±2 deviations, at the model's points, for each rotation with its
/// centre at each place. Returns the best poses, best first: at most `keptCandidates`, one for each rotation
/// and chunk of 64 neighbouring places. Order is by score, rotation and place, so that it is the same on any
/// number of threads. A cancelled scan returns the best of what it came to.
std::vector<Pose> CoarseSearch(const CoarseJob &job, unsigned threads, Monitor &monitor);

} // namespace placement
