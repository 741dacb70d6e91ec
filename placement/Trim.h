#pragma once

#include "placement/PointModel.h"
#include "placement/Volume.h"

namespace placement {

/// The resolution at which a model is searched for in a map of `resolution`, Å: never finer than the map's,
/// and only as fine as it takes to tell such a model's poses apart.
double ScanResolution(const PointModel &model, double resolution);

/// The width by which a map is smoothed to see where the model's centre may lie, Å.
double MaskWidth(const PointModel &model, double resolution);

/// The part of a map that the model can reach with its centre in density: the smallest box about all such
/// places (see DensePlaces), widened by the model's radius and the map's padding. The whole map where that
/// would leave out less than a third of it. A search of it finds what a search of the map does, in less time
/// and memory.
VolumeView Trimmed(const VolumeView &map, const PointModel &model, double resolution, unsigned threads);

} // namespace placement
