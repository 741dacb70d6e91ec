#pragma once

#include <cstddef>

namespace VARNO {

/// N numbers of one type, addressed by index: a point, a displacement, a triple of counts or spacings.
/// All arithmetic is done in T, component by component.
template <class T, unsigned N>
class Vector {
public:
    constexpr Vector() = default;
    constexpr Vector(T x, T y, T z) requires(N == 3)
        : m_component{x, y, z} {}

    constexpr T &operator[](std::size_t i) { return m_component[i]; }
    constexpr const T &operator[](std::size_t i) const { return m_component[i]; }

    /// Equal when every component is; a NaN equals nothing, -0.0 equals 0.0.
    friend constexpr bool operator==(const Vector &a, const Vector &b) {
        for (unsigned i = 0; i < N; ++i)
            if (!(a[i] == b[i]))
                return false;
        return true;
    }

    friend constexpr Vector operator+(const Vector &a, const Vector &b) {
        Vector sum;
        for (unsigned i = 0; i < N; ++i)
            sum[i] = a[i] + b[i];
        return sum;
    }

    friend constexpr Vector operator-(const Vector &a, const Vector &b) {
        Vector difference;
        for (unsigned i = 0; i < N; ++i)
            difference[i] = a[i] - b[i];
        return difference;
    }

    /// Sum of the squares, from the first component to the last, in T.
    constexpr T SquaredLength() const {
        T sum = m_component[0] * m_component[0];
        for (unsigned i = 1; i < N; ++i)
            sum = sum + m_component[i] * m_component[i];
        return sum;
    }

private:
    T m_component[N] = {};
};

} // namespace VARNO
