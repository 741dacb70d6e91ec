#pragma once

#include "fast/Kernels.h"
#include "fit/Preparation.h"

#include <array>

namespace fast {

/// The points of the target, rotated, and the translations of one rotation.
class RotatedTarget {
public:
    explicit RotatedTarget(const fit::Preparation &fit);

    void Rotate(const VARNO::Quaternion &rotation);

    PaddedPoints Points() const { return m_points; }
    /// Offsets along each direction.
    std::size_t Offsets() const { return m_offsets.size(); }
    /// The rotated points' coordinates along an axis, Å.
    const float *Coordinates(std::size_t axis) const { return m_rotated[axis].data(); }
    /// What is added to them at each offset, Å.
    const std::vector<float> &Translations(std::size_t axis) const { return m_translations[axis]; }

private:
    PaddedPoints m_points;
    VARNO::Vertex m_centre;
    std::vector<float> m_offsets;
    std::array<std::vector<double>, 3> m_coordinates;
    std::array<std::vector<float>, 3> m_rotated, m_translations;
};

} // namespace fast
