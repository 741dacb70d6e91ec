#pragma once

#include "placement/PointModel.h"
#include "placement/Volume.h"

namespace placement {

/// A map's resolution as far as its own spectrum S(k) shows it, in Å: the shortest wave
///
///   - whose power stands above the weakest shell's by a third, SSNR 1/3 where that shell is noise (FSC
///   0.143,
///     Rosenthal & Henderson 2003), and
///   - whose power over that of the model's points, S/Pm, is at least e^-3 of its maximum: the fall-off of a
///     map blurred to its resolution, or cut off there.
///
/// Waves longer than 25 Å hold the shape of whatever stands in the map, and waves shorter than the one where
/// S/Pm is weakest hold noise that was sharpened: neither counts. Good to about a factor of 1.4, which costs
/// a search nothing. Lies between 2 Å, or the shortest wave that the voxels hold, and 60 Å.
double EstimateResolution(const VolumeView &map, const PointModel &model, unsigned threads);

} // namespace placement
