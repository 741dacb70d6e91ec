#include "placement/Rotations.h"

#include <algorithm>
#include <numbers>

namespace placement {

std::vector<Matrix> SpreadRotations(std::size_t number) {
    // The positive root of psi⁴ = psi + 4.
    constexpr double psi = 1.533751168755204288118041;
    std::vector<Matrix> rotations;
    rotations.reserve(number);
    for (std::size_t i = 0; i < number; ++i) {
        const double s = double(i) + 0.5, t = s / double(number);
        const double inner = std::sqrt(t), outer = std::sqrt(1 - t);
        const double alpha = 2 * std::numbers::pi * s / std::numbers::sqrt2;
        const double beta = 2 * std::numbers::pi * s / psi;
        rotations.push_back(MatrixOf({inner * std::sin(alpha), inner * std::cos(alpha),
                                      outer * std::sin(beta), outer * std::cos(beta)}));
    }
    return rotations;
}

std::size_t RotationsForStep(double step) {
    const double number = 8 * std::numbers::pi * std::numbers::pi / (step * step * step);
    return std::max<std::size_t>(24, std::size_t(std::lround(number)));
}

} // namespace placement
