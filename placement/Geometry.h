#pragma once

#include <array>
#include <cmath>

namespace placement {

/// A position or displacement, Å, model frame unless said otherwise.
struct Point {
    double x = 0, y = 0, z = 0;

    friend Point operator+(const Point &a, const Point &b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
    friend Point operator-(const Point &a, const Point &b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
    friend Point operator*(double f, const Point &p) { return {f * p.x, f * p.y, f * p.z}; }
};

inline double Dot(const Point &a, const Point &b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

inline double Length(const Point &p) {
    return std::sqrt(Dot(p, p));
}

/// A ball in space.
struct Sphere {
    Point centre;
    double radius = 0; ///< Å

    bool Holds(const Point &p) const { return Length(p - centre) <= radius; }
};

/// A 3 x 3 matrix, rows first.
using Matrix = std::array<double, 9>;

inline Point operator*(const Matrix &m, const Point &p) {
    return {m[0] * p.x + m[1] * p.y + m[2] * p.z, m[3] * p.x + m[4] * p.y + m[5] * p.z,
            m[6] * p.x + m[7] * p.y + m[8] * p.z};
}

Matrix operator*(const Matrix &a, const Matrix &b);

/// A rotation as unit quaternion w + xi + yj + zk.
struct UnitQuaternion {
    double w = 1, x = 0, y = 0, z = 0;
};

/// The rotation matrix of the quaternion, which is normalised first.
Matrix MatrixOf(const UnitQuaternion &q);

/// The quaternion of a rotation matrix, with w >= 0.
UnitQuaternion QuaternionOf(const Matrix &rotation);

/// The angle of a rotation, from 0 to π radians.
double AngleOf(const Matrix &rotation);

/// The rotation by |v| radians about v.
Matrix RotationBy(const Point &v);

/// Where a model stands: a point p of the model, taken about the model's centre, lies at rotation·p + centre.
struct Pose {
    Matrix rotation{1, 0, 0, 0, 1, 0, 0, 0, 1};
    Point centre;
};

} // namespace placement
