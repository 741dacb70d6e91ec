#include "placement/Motion.h"

namespace placement {

Motion operator*(const Motion &a, const Motion &b) {
    return {a.rotation * b.rotation, a * b.translation};
}

Motion InverseOf(const Motion &motion) {
    const Matrix back = Transposed(motion.rotation);
    return {back, -1 * (back * motion.translation)};
}

Motion MotionInto(const Pose &pose) {
    return {pose.rotation, pose.centre};
}

Pose Moved(const Motion &motion, const Pose &pose) {
    return {motion.rotation * pose.rotation, motion * pose.centre};
}

Screw ScrewOf(const Motion &motion, const Point &near) {
    const UnitQuaternion q = QuaternionOf(motion.rotation);
    const Point vector{q.x, q.y, q.z};
    const double sine = Length(vector);
    const Point shift = motion * near - near;
    constexpr double noTurn = 1e-6;
    if (sine < noTurn)
        return {Unit(shift), 0, Length(shift), near};
    Screw screw{Unit(vector), 2 * std::atan2(sine, q.w), 0, {}};
    screw.rise = Dot(shift, screw.axis);
    // A point at p from the axis, perpendicular to it, moves by R·p - p; of that p is half, turned by a
    // quarter and scaled by the half angle's cotangent.
    const Point across = shift - screw.rise * screw.axis;
    screw.point = near + 0.5 * (across + q.w / sine * Cross(screw.axis, across));
    return screw;
}

Point Cross(const Point &a, const Point &b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

Point Unit(const Point &v) {
    const double length = Length(v);
    return length > 0 ? 1 / length * v : Point{0, 0, 1};
}

Point PerpendicularTo(const Point &direction) {
    const bool alongX = std::abs(direction.x) > 0.8 * Length(direction);
    return Unit(Cross(direction, alongX ? Point{0, 1, 0} : Point{1, 0, 0}));
}

Matrix FrameOf(const Point &main, const Point &side) {
    const Point z = Unit(main), x = Unit(side - Dot(side, z) * z), y = Cross(z, x);
    return {x.x, y.x, z.x, x.y, y.y, z.y, x.z, y.z, z.z};
}

Matrix Transposed(const Matrix &m) {
    return {m[0], m[3], m[6], m[1], m[4], m[7], m[2], m[5], m[8]};
}

} // namespace placement
