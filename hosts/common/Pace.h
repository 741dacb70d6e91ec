#pragma once

#include "RunFit.h"
#include "fit/Target.h"

namespace hosts {

/// Poses that this machine scores in a second, measured on a small search of the target in the parameters'
/// map, with the translations of the fit. Writes no log.
double MeasurePace(const fit::FitParameters &parameters, const fit::Target &target,
                   const SearchOptions &options);

} // namespace hosts
