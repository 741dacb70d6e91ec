#pragma once

#include "fit/Preparation.h"
#include "search/Search.h"

namespace hosts {

/// Poses that this machine scores in a second: measured on a small search of the surveyed target in the map
/// `m_Map`, with the translations of the fit. Leaves `Solutions` empty; writes no file, so `logging` has to
/// be off and `em_fname` empty.
double MeasurePace(const fit::Survey &survey, const search::SearchOptions &options);

} // namespace hosts
