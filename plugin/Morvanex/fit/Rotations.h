#pragma once

#include "fit/Angles.h"
#include "fit/Preparation.h"

namespace fit {

/// The rotation by `angle` radians about a unit vector.
inline VARNO::Quaternion RotationAbout(const VARNO::Vertex &axis, double angle) {
    VARNO::Quaternion rotation;
    rotation.Set(angle, axis);
    return rotation;
}

/// The rotations of a search by their number in its order: 0 is the identity, then come all angles about the
/// first axis, about the second, and so on.
class Rotations {
public:
    /// The preparation must outlive it.
    explicit Rotations(const Preparation &fit)
        : m_axes(fit.axes)
        , m_angles(fit.angleStep)
        , m_perAxis(m_angles.Count())
        , m_angle(m_angles.begin()) {}

    static VARNO::Quaternion Identity() { return RotationAbout(VARNO::Vertex(1, 0, 0, false), 0.0); }

    std::uint64_t PerAxis() const { return m_perAxis; }
    std::uint64_t Count() const { return 1 + m_axes.size() * m_perAxis; }

    /// The rotation of that number. Reached by adding angles up, so that ascending numbers take a single
    /// pass.
    VARNO::Quaternion At(std::uint64_t number);

private:
    const std::vector<VARNO::Vertex> &m_axes;
    Angles m_angles;
    std::uint64_t m_perAxis;
    std::uint64_t m_reached = 1; ///< the number that `m_angle` belongs to
    Angles::Iterator m_angle;
};

} // namespace fit
