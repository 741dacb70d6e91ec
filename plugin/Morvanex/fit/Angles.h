#pragma once

#include <cstdint>

namespace fit {

/// The sweep about each axis: the angles step, step + step, ... below a full turn, each got by adding the
/// step to the one before (in double), never as a product. Where the step divides the turn, rounding decides
/// whether the last sum still lies below it.

/// 2π as a double.
constexpr double fullTurn = 6.283185307179586;

/// Whether repeated addition of the step reaches a full turn: false for a step so small that a sum near the
/// full turn absorbs it.
inline bool GrowsToFullTurn(double step) {
    return step > 0 && fullTurn - step < fullTurn;
}

/// Number of angles; the step must grow to a full turn.
inline std::uint64_t CountAngles(double step) {
    std::uint64_t count = 0;
    for (double angle = step; angle < fullTurn; angle += step)
        ++count;
    return count;
}

} // namespace fit
