#pragma once

#include "Vertex.h"

#include <array>
#include <cmath>

namespace VARNO {

/// A rotation about the frame's origin, four doubles w + xi + yj + zk. The numbers are kept as they are set;
/// the rotation is that of the normalised quaternion, so that a quaternion read back from a text with two
/// decimals is still a rigid motion.
class Quaternion {
public:
    /// The identity (1, 0, 0, 0).
    constexpr Quaternion() = default;

    /// Rotation by `angle` radians about the unit vector `axis`, right-handed.
    void Set(double angle, const Vertex &axis) {
        const double sine = std::sin(angle / 2);
        Set(std::cos(angle / 2), sine * double(axis[0]), sine * double(axis[1]), sine * double(axis[2]));
    }
    constexpr void Set(double w, double x, double y, double z) {
        m_w = w;
        m_x = x;
        m_y = y;
        m_z = z;
    }

    constexpr double w() const { return m_w; }
    constexpr double x() const { return m_x; }
    constexpr double y() const { return m_y; }
    constexpr double z() const { return m_z; }

private:
    double m_w = 1, m_x = 0, m_y = 0, m_z = 0;
};

/// The 3 x 3 rotation matrix of a quaternion, rows first, in double.
class RotationMatrix {
public:
    /// The matrix of the normalised quaternion; four zeros give the identity.
    constexpr explicit RotationMatrix(const Quaternion &q)
        : m_entry{1, 0, 0, 0, 1, 0, 0, 0, 1} {
        const double w = q.w(), x = q.x(), y = q.y(), z = q.z();
        const double n = w * w + x * x + y * y + z * z;
        if (n == 0)
            return;
        m_entry = {1 - 2 * (y * y + z * z) / n, 2 * (x * y - w * z) / n,     2 * (x * z + w * y) / n,
                   2 * (x * y + w * z) / n,     1 - 2 * (x * x + z * z) / n, 2 * (y * z - w * x) / n,
                   2 * (x * z - w * y) / n,     2 * (y * z + w * x) / n,     1 - 2 * (x * x + y * y) / n};
    }

    /// The nine entries, row after row.
    constexpr const std::array<double, 9> &Entries() const { return m_entry; }

    /// The rotated point: each coordinate summed in double from x to z and rounded once to float. Not valid.
    constexpr Vertex operator*(const Vertex &p) const {
        return Vertex(Row(0, p), Row(3, p), Row(6, p), false);
    }

private:
    constexpr float Row(std::size_t first, const Vertex &p) const {
        return float(m_entry[first] * double(p[0]) + m_entry[first + 1] * double(p[1]) +
                     m_entry[first + 2] * double(p[2]));
    }

    std::array<double, 9> m_entry;
};

/// The vertex rotated about the frame's origin; not valid.
constexpr Vertex operator*(const Quaternion &q, const Vertex &p) {
    return RotationMatrix(q) * p;
}

} // namespace VARNO
