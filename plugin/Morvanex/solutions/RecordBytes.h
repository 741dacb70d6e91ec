#pragma once

#include "solutions/Solution.h"

namespace solutions {

/// Memory that a record with that many extra scores takes in a list, bytes.
inline double RecordBytes(std::size_t extraScores) {
    // What the allocator and a list's links add.
    constexpr double overhead = 32;
    const double distances = extraScores > 0 ? overhead + sizeof(double) * double(extraScores) : 0;
    return sizeof(SolutionScore) + overhead + distances;
}

} // namespace solutions
