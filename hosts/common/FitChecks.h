#pragma once

#include "hosts/common/FitInput.h"

#include "fit/Preparation.h"

#include <stdexcept>

namespace hosts {

/// The fit would take more than a year, or has more poses than `fit::poseLimit`; `FitOptions::force` runs it.
class FitTooLong : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The fit of these parameters, surveyed before it begins. Throws where it cannot be run or would be of no
/// use: a target without a residue that has a position, restraints that name none of them, a search that
/// memory cannot hold, and (FitTooLong) one of more than a year. `warn` gets restraints and solids without
/// effect.
fit::Survey CheckFit(const FitOptions &options, const FitInput &input, const fit::FitParameters &parameters,
                     const WarningSink &warn);

/// A warning where no pose of the search can touch the map, with the distance of the target from it; empty
/// where one can.
std::string WarningOfReach(const fit::Survey &survey, const FitOptions &options, const VARNO::Grid &map);

} // namespace hosts
