#pragma once

#include "hosts/common/FitInput.h"

#include "fit/Preparation.h"

namespace hosts {

/// The fit of these parameters, looked at before it begins. Throws where it cannot be run or would
/// be of no use: a target without a residue that has a position, restraints that name none of them, a search
/// that memory cannot hold or (unless `options.force`) that would take more than a year. `warn` hears of
/// restraints and of solids without effect.
fit::Survey CheckFit(const FitOptions &options, const FitInput &input, const fit::FitParameters &parameters,
                     const WarningSink &warn);

/// A warning where no pose of the search can touch the map, with the distance of the target from it; empty
/// where one can.
std::string WarningOfReach(const fit::Survey &survey, const FitOptions &options, const VARNO::Grid &map);

} // namespace hosts
