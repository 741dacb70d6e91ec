#pragma once

#include "placement/Geometry.h"

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace placement {

/// Leaves memory as it comes where a vector grows by resize(n): whoever fills it in is the first to touch it,
/// each thread its own part.
template <class Value>
struct UnfilledMemory : std::allocator<Value> {
    template <class Other>
    struct rebind {
        using other = UnfilledMemory<Other>;
    };
    template <class Other>
    void construct(Other *) noexcept {}
    template <class Other, class... Arguments>
    void construct(Other *at, Arguments &&...arguments) {
        std::construct_at(at, std::forward<Arguments>(arguments)...);
    }
};

/// Many numbers; resize(n) does not fill them in, assign(n, 0) does.
template <class Number>
using LargeVector = std::vector<Number, UnfilledMemory<Number>>;

/// Values on an orthogonal lattice: value (i, j, k) stands at index i + nx·(j + ny·k) and at the position
/// origin + (i·sx, j·sy, k·sz) in Å, model frame.
struct Volume {
    std::array<std::size_t, 3> count{}; ///< nx, ny, nz
    std::array<double, 3> spacing{};    ///< sx, sy, sz in Å
    Point origin;
    LargeVector<float> values;

    std::size_t Index(std::size_t i, std::size_t j, std::size_t k) const {
        return i + count[0] * (j + count[1] * k);
    }
    Point At(std::size_t i, std::size_t j, std::size_t k) const {
        return origin + Point{double(i) * spacing[0], double(j) * spacing[1], double(k) * spacing[2]};
    }
};

/// Values that belong to somebody else, laid out as those of a volume, or a part of them.
struct VolumeView {
    std::array<std::size_t, 3> count{};
    std::array<double, 3> spacing{};
    Point origin;
    std::span<const float> values;
    std::size_t rowPitch = 0, planePitch = 0; ///< values between neighbours along y and z

    VolumeView(const std::array<std::size_t, 3> &size, const std::array<double, 3> &voxel, const Point &first,
               std::span<const float> data)
        : count(size)
        , spacing(voxel)
        , origin(first)
        , values(data)
        , rowPitch(size[0])
        , planePitch(size[0] * size[1]) {}
    /// A volume may stand wherever a view is asked for.
    VolumeView(const Volume &volume)
        : VolumeView(volume.count, volume.spacing, volume.origin, volume.values) {}

    std::size_t Index(std::size_t i, std::size_t j, std::size_t k) const {
        return i + rowPitch * j + planePitch * k;
    }
    std::span<const float> Row(std::size_t j, std::size_t k) const {
        return values.subspan(Index(0, j, k), count[0]);
    }
    /// `size` voxels along each axis from voxel `first` on.
    VolumeView Part(const std::array<std::size_t, 3> &first, const std::array<std::size_t, 3> &size) const {
        VolumeView part = *this;
        part.count = size;
        part.origin = origin + Point{double(first[0]) * spacing[0], double(first[1]) * spacing[1],
                                     double(first[2]) * spacing[2]};
        part.values = values.subspan(Index(first[0], first[1], first[2]));
        return part;
    }
};

} // namespace placement
