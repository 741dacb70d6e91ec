#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace report {

/// A point of a picture: in pixels from the centre of the first one, x to the right, y downwards.
struct PicturePoint {
    double x = 0, y = 0;
};

using Line = std::vector<PicturePoint>;

/// The lines along which values, given row by row, cross a level; what is not finite lies below it. A line
/// that closes ends with its first point, others end at the border.
std::vector<Line> Contours(std::span<const float> values, std::size_t width, float level);

} // namespace report
