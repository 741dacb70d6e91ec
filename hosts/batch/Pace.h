#pragma once

#include "Preparation.h"

namespace Batch {

/// Poses that this machine scores in a second: measured on a small search of the surveyed target in the map
/// `m_Map`, with the translations of the fit. With a log poses are scored one by one. Leaves `Solutions`
/// empty; writes no file, so `logging` has to be off and `em_fname` empty.
double MeasurePace(const Survey &survey, bool withLog);

} // namespace Batch
