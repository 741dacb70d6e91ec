#pragma once

#include "placement/PointModel.h"
#include "placement/Volume.h"

namespace placement {

/// A map's density as points, so that it may be placed in another map as a model is.
struct MapPoints {
    /// One for each voxel above the threshold of density (CoarseSearch.h), a residue of its own, which weighs
    /// as much as its density exceeds that. They stand in the order of a space-filling curve (Morton 1966),
    /// so that consecutive ones lie close together.
    std::vector<ModelAtom> points;
    double resolution = 0; ///< up to which they hold the density, Å
};

/// The points of a map that is low-passed at a resolution (Å). Where they would be more than ten thousand the
/// voxels are larger and the resolution is as much coarser, which costs a large map little: it is the more
/// sensitive to being turned. A map whose values are all equal has none. Throws as Synthesise does.
MapPoints PointsOf(const VolumeView &map, double resolution, unsigned threads);

} // namespace placement
