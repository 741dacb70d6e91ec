#pragma once

#include "Quaternion.h"

namespace VARNO {

/// The rigid motion p -> r·p + t: rotation about the frame's origin, then translation in Å.
class Transform {
public:
    Transform(const Quaternion &rotation, const Vertex &translation)
        : m_rotation(rotation)
        , m_translation(translation) {}

    /// The moved point, not valid. The rotated coordinate is rounded to float before the translation is added
    /// in float: a coordinate of the result depends on that coordinate of the translation alone.
    Vertex operator*(const Vertex &p) const {
        Vertex moved = m_rotation * p;
        moved = moved + m_translation;
        return moved;
    }

private:
    RotationMatrix m_rotation;
    Vertex m_translation;
};

} // namespace VARNO
