#pragma once

#include "placement/Motion.h"
#include "placement/Volume.h"

#include <span>

namespace placement {

/// The mean of a map and of the same map after each of some motions that lay it upon itself: noise falls by
/// the root of their number, what is symmetric stays. Where a motion leads out of the map, it takes no part.
///
/// The mean stands in the map's box, in voxels as fine as its resolution (Å) needs; shorter waves are left
/// out.
Volume AverageOver(std::span<const Motion> motions, const VolumeView &map, double resolution,
                   unsigned threads);

} // namespace placement
