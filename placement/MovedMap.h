#pragma once

#include "placement/Motion.h"
#include "placement/Spectrum.h"

namespace placement {

/// Where a map comes to lie in the frame of another: its mirror image, where that is asked for, after a
/// motion. The mirror image has the voxels in the opposite order along x, in the same box: what lay at x lies
/// at 2·origin.x + (nx - 1)·sx - x.
struct MapMotion {
    bool mirrored = false;
    Motion motion;
};

/// The mirror image of a position in a map's frame.
Point MirroredIn(const VolumeView &map, const Point &p);

/// A map after a motion, sampled on a lattice; 0 outside of its box. All of its waves are kept; between its
/// voxels it is interpolated linearly on a finer lattice, for which some times its memory is needed.
Volume MovedMap(const VolumeView &map, const MapMotion &motion, const Lattice &lattice, unsigned threads);

} // namespace placement
