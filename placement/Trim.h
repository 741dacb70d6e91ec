#pragma once

#include "placement/Fourier.h"
#include "placement/PointModel.h"

namespace placement {

/// The resolution at which a model is searched for in a map of `resolution`, Å: never finer than the map's,
/// and only as fine as it takes to tell such a model's poses apart.
double ScanResolution(const PointModel &model, double resolution);

/// The width by which a map is smoothed to see where the model's centre may lie, Å.
double MaskWidth(const PointModel &model, double resolution);

/// Up to which wavenumber a map's waves are needed to trim it for a model, 1/Å.
double TrimCutOff(const PointModel &model, double resolution);
/// These waves.
Waves TrimWaves(const VolumeView &map, double resolution, double cutOff, unsigned threads);

/// The part of a map that the model can reach with its centre in density: the smallest box about all such
/// places (see DensePlaces), widened by the model's radius and the map's padding. The whole map where that
/// would leave out less than a third of it. A search of it finds what a search of the map does, in less time
/// and memory. `waves` are those of the whole map, up to TrimCutOff or beyond.
VolumeView Trimmed(const VolumeView &map, const Waves &waves, const PointModel &model, double resolution,
                   unsigned threads);
/// Likewise, of a map that is trimmed once.
VolumeView Trimmed(const VolumeView &map, const PointModel &model, double resolution, unsigned threads);

} // namespace placement
