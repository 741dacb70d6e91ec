#pragma once

#include "placement/Geometry.h"

#include <vector>

namespace placement {

/// `number` rotations spread evenly over all: the super-Fibonacci spiral on the sphere of unit quaternions
/// (Alexa 2022, CVPR, "Super-Fibonacci Spirals: Fast, Low-Discrepancy Sampling of SO(3)").
std::vector<Matrix> SpreadRotations(std::size_t number);

/// How many rotations have neighbours about `step` radians apart: the volume of all rotations, 8π², over
/// step³; at least 24, the rotations of a cube.
std::size_t RotationsForStep(double step);

} // namespace placement
