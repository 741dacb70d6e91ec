#include "placement/Geometry.h"

#include <algorithm>

namespace placement {

Matrix operator*(const Matrix &a, const Matrix &b) {
    Matrix product;
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            product[3 * i + j] = a[3 * i] * b[j] + a[3 * i + 1] * b[3 + j] + a[3 * i + 2] * b[6 + j];
    return product;
}

Matrix MatrixOf(const UnitQuaternion &q) {
    const double n = std::sqrt(q.w * q.w + q.x * q.x + q.y * q.y + q.z * q.z);
    const double w = q.w / n, x = q.x / n, y = q.y / n, z = q.z / n;
    return {1 - 2 * (y * y + z * z), 2 * (x * y - w * z),     2 * (x * z + w * y),
            2 * (x * y + w * z),     1 - 2 * (x * x + z * z), 2 * (y * z - w * x),
            2 * (x * z - w * y),     2 * (y * z + w * x),     1 - 2 * (x * x + y * y)};
}

UnitQuaternion QuaternionOf(const Matrix &m) {
    // Four times the square of each component; the largest one divides without loss of digits.
    const std::array<double, 4> squares{1 + m[0] + m[4] + m[8], 1 + m[0] - m[4] - m[8],
                                        1 - m[0] + m[4] - m[8], 1 - m[0] - m[4] + m[8]};
    const auto largest = std::max_element(squares.begin(), squares.end()) - squares.begin();
    const double root = 2 * std::sqrt(squares[std::size_t(largest)]);
    UnitQuaternion q;
    switch (largest) {
    case 0:
        q = {root / 4, (m[7] - m[5]) / root, (m[2] - m[6]) / root, (m[3] - m[1]) / root};
        break;
    case 1:
        q = {(m[7] - m[5]) / root, root / 4, (m[1] + m[3]) / root, (m[2] + m[6]) / root};
        break;
    case 2:
        q = {(m[2] - m[6]) / root, (m[1] + m[3]) / root, root / 4, (m[5] + m[7]) / root};
        break;
    default:
        q = {(m[3] - m[1]) / root, (m[2] + m[6]) / root, (m[5] + m[7]) / root, root / 4};
    }
    return q.w < 0 ? UnitQuaternion{-q.w, -q.x, -q.y, -q.z} : q;
}

double AngleOf(const Matrix &rotation) {
    return 2 * std::acos(std::min(1.0, QuaternionOf(rotation).w));
}

Matrix RotationBy(const Point &v) {
    const double angle = Length(v);
    // sin(angle / 2) / angle tends to 1/2.
    const double factor = angle < 1e-8 ? 0.5 : std::sin(angle / 2) / angle;
    return MatrixOf({std::cos(angle / 2), factor * v.x, factor * v.y, factor * v.z});
}

} // namespace placement
