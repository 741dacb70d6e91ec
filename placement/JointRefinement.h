#pragma once

#include "placement/Monitor.h"
#include "placement/PointModel.h"
#include "placement/Spectrum.h"

#include <span>

namespace placement {

/// A model in its place, to be refined together with others.
struct Body {
    std::span<const ModelAtom> atoms;  ///< as they were given, before the pose
    const PointModel *model = nullptr; ///< of these atoms
    Pose pose;
};

/// Refines models together as rigid bodies: each in turn climbs to the local maximum of its score in what the
/// others leave of the map (ModelDensity.h), less a penalty for residues that clash, and that twice for all.
/// `standing` are residues of parts that do not move; their density is out of the map already. Returns the
/// poses; a cancelled refinement leaves what it has not come to.
std::vector<Pose> RefineTogether(const Spectrum &map, std::span<const Body> bodies,
                                 std::span<const Point> standing, unsigned threads, Monitor &monitor);

} // namespace placement
