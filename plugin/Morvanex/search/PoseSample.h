#pragma once

#include "fit/Preparation.h"

namespace search {

/// Scores of a fixed sample of a search's poses: what a score found by the search is to be compared with.
struct PoseSample {
    std::size_t poses = 0; ///< of the sample that do not collide
    double mean = 0;       ///< of their scores
    double deviation = 0;  ///< standard deviation, with n - 1; 0 for fewer than two poses
};

/// Scores about `size` poses spread evenly over the search by their number, collided ones left out. The
/// sample depends on the preparation alone, not on how the search itself goes about its work.
PoseSample SamplePoses(const fit::Preparation &fit, std::uint64_t size = 4096);

} // namespace search
