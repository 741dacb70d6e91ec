#include "fit/Rotations.h"

namespace fit {

VARNO::Quaternion Rotations::At(std::uint64_t number) {
    if (number == 0)
        return Identity();
    const std::uint64_t axis = (number - 1) / m_perAxis, firstOfAxis = 1 + axis * m_perAxis;
    if (m_reached < firstOfAxis || m_reached > number) {
        m_reached = firstOfAxis;
        m_angle = m_angles.begin();
    }
    for (; m_reached < number; ++m_reached)
        ++m_angle;
    return RotationAbout(m_axes[axis], *m_angle);
}

} // namespace fit
