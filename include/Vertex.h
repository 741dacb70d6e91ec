#pragma once

#include "Vector.h"

namespace VARNO {

/// A point or displacement of the model frame, in Å, with a flag that tells whether it is a real position.
/// The model answers with an invalid vertex where it has no position to give (a residue without coordinates).
/// Vertices that a caller computes for itself usually carry false: only positions handed out by the model are
/// ever asked.
class Vertex : public Vector<float, 3> {
public:
    /// (0, 0, 0), not valid.
    constexpr Vertex() = default;
    constexpr Vertex(float x, float y, float z, bool valid)
        : Vector<float, 3>(x, y, z)
        , m_valid(valid) {}
    constexpr Vertex(const float *xyz, bool valid)
        : Vertex(xyz[0], xyz[1], xyz[2], valid) {}
    constexpr Vertex(const Vertex &) = default;

    constexpr Vertex &operator=(const Vertex &) = default;
    /// Assigns the three components and leaves the validity as it is.
    constexpr Vertex &operator=(const Vector<float, 3> &xyz) {
        Vector<float, 3>::operator=(xyz);
        return *this;
    }

    constexpr void setValue(float x, float y, float z, bool valid) { *this = Vertex(x, y, z, valid); }
    constexpr bool IsValid() const { return m_valid; }

private:
    bool m_valid = false;
};

} // namespace VARNO
