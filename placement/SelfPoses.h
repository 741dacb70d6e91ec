#pragma once

#include "placement/Monitor.h"
#include "placement/PointModel.h"
#include "placement/Refinement.h"

#include <vector>

namespace placement {

/// A map as it is laid upon itself: its density at low resolution, filtered, and as points.
///
/// The resolution is the map's, or coarser, so that about 2500 points hold the density: what that leaves out
/// adds little to what it says of a symmetry, and a large map takes no longer than a small one.
struct SelfMap {
    double resolution = 0;     ///< Å
    double scanResolution = 0; ///< of the coarse map, Å
    Volume coarse, fine; ///< the map, every wave of it as strong as its share of signal; coarse is smoother
    PointModel body;     ///< where there is density; its centre and spread
    std::vector<double> coarseWeights, fineWeights; ///< the filtered maps at the body's points
    std::vector<Point> strongest;                   ///< of the coarse map, about the body's centre
    std::array<double, 3> box{};                    ///< lengths of the map itself, Å

    /// Whether there is density at all.
    bool IsEmpty() const { return body.points.empty(); }
    /// The correlation of the fine map with itself after a motion that brings the body into a pose, over the
    /// part that stays in the box, or half of the map where that is less.
    double Correlation(const Pose &pose) const;
};

/// Throws std::bad_alloc where memory does not suffice.
SelfMap MakeSelfMap(const VolumeView &map, double resolution, unsigned threads);

/// The motions that lay a map upon itself better than those next to them, best first, at most 210 and
/// without those that hardly move it: a symmetric map has its symmetry's operators among them. Found as
/// places of a model are: a scan over all rotations and shifts up to the radius of gyration, refined. The
/// poses are those of the body, the score is the correlation. A cancelled search returns none.
std::vector<ScoredPose> FindSelfPoses(const SelfMap &map, unsigned threads, Monitor &monitor);

} // namespace placement
