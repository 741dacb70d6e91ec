#pragma once

#include "placement/Volume.h"

namespace placement {

/// A volume's value between its voxels, linear along each axis. The position, in Å from its first voxel, lies
/// within the volume, but for rounding; along each axis there are two voxels or more.
double ValueAt(const Volume &volume, const Point &fromFirst);

} // namespace placement
