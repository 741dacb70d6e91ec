#pragma once

#include "placement/Geometry.h"

#include <cstddef>
#include <span>
#include <vector>

namespace placement {

/// Values on an orthogonal lattice: value (i, j, k) stands at index i + nx·(j + ny·k) and at the position
/// origin + (i·sx, j·sy, k·sz) in Å, model frame.
struct Volume {
    std::array<std::size_t, 3> count{}; ///< nx, ny, nz
    std::array<double, 3> spacing{};    ///< sx, sy, sz in Å
    Point origin;
    std::vector<float> values;

    std::size_t Index(std::size_t i, std::size_t j, std::size_t k) const {
        return i + count[0] * (j + count[1] * k);
    }
    Point At(std::size_t i, std::size_t j, std::size_t k) const {
        return origin + Point{double(i) * spacing[0], double(j) * spacing[1], double(k) * spacing[2]};
    }
};

/// Values that belong to somebody else, laid out as those of a volume.
struct VolumeView {
    std::array<std::size_t, 3> count{};
    std::array<double, 3> spacing{};
    Point origin;
    std::span<const float> values;

    VolumeView() = default;
    VolumeView(const std::array<std::size_t, 3> &size, const std::array<double, 3> &voxel, const Point &first,
               std::span<const float> data)
        : count(size)
        , spacing(voxel)
        , origin(first)
        , values(data) {}
    /// A volume may stand wherever a view is asked for.
    VolumeView(const Volume &volume)
        : VolumeView(volume.count, volume.spacing, volume.origin, volume.values) {}

    std::size_t Index(std::size_t i, std::size_t j, std::size_t k) const {
        return i + count[0] * (j + count[1] * k);
    }
};

} // namespace placement
