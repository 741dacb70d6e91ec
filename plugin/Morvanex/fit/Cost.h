#pragma once

#include "fit/Preparation.h"

namespace fit {

/// What a fit would take, known before it touches anything. Sums are formed in double: nothing overflows.
struct FitCost {
    double axes = 0;
    double angles = 0; ///< values of the angle about each axis
    double poses = 0;
    double axisBytes = 0;
    double offsetBytes = 0;
    double identityBytes = 0; ///< the list that the identity pass fills without trimming
    double listBytes = 0; ///< 2·keep + 1 records, or when the fit has ended keep with what stands beside them
    double keepOutBytes = 0;

    double Bytes() const { return axisBytes + offsetBytes + identityBytes + listBytes + keepOutBytes; }
};

/// The most poses that a fit may have unless its user insists: weeks of computing.
constexpr double poseLimit = 1e13;

/// What a fit with these parameters costs, whose host adds `bytesBeside` for each solution in the end.
FitCost EstimateCost(const FitParameters &parameters, const Survey &survey, double bytesBeside = 0);

/// Why a fit of that cost cannot run, with the figures; empty when it can. It cannot when the rotation step
/// is not a positive finite number of radians or too small for an angle to grow by it, when it has more than
/// `poseLimit` poses (unless `anyNumberOfPoses`), or when it needs more than three quarters of the machine's
/// memory.
QString RefuseFit(const FitCost &cost, double angleStep, bool anyNumberOfPoses);

} // namespace fit
