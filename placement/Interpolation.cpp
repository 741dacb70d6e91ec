#include "placement/Interpolation.h"

#include <algorithm>

namespace placement {

double ValueAt(const Volume &volume, const Point &fromFirst) {
    const std::array<double, 3> at{fromFirst.x, fromFirst.y, fromFirst.z};
    std::array<std::size_t, 3> voxel;
    std::array<double, 3> part;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double u = std::max(0.0, at[axis] / volume.spacing[axis]);
        voxel[axis] = std::min(std::size_t(u), volume.count[axis] - 2);
        part[axis] = u - double(voxel[axis]);
    }
    const auto alongX = [&](std::size_t j, std::size_t k) {
        const float *first = volume.values.data() + volume.Index(voxel[0], voxel[1] + j, voxel[2] + k);
        return std::lerp(double(first[0]), double(first[1]), part[0]);
    };
    const auto inPlane = [&](std::size_t k) { return std::lerp(alongX(0, k), alongX(1, k), part[1]); };
    return std::lerp(inPlane(0), inPlane(1), part[2]);
}

} // namespace placement
