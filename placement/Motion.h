#pragma once

#include "placement/Geometry.h"

namespace placement {

/// A rigid motion: x' = rotation·x + translation.
struct Motion {
    Matrix rotation{1, 0, 0, 0, 1, 0, 0, 0, 1};
    Point translation; ///< Å

    friend Point operator*(const Motion &m, const Point &p) { return m.rotation * p + m.translation; }
};

/// b first, then a.
Motion operator*(const Motion &a, const Motion &b);
Motion InverseOf(const Motion &motion);

/// The motion that brings a frame at the origin, or a model about its centre, into a pose; and back.
Motion MotionInto(const Pose &pose);
/// A pose after a motion.
Pose Moved(const Motion &motion, const Pose &pose);

/// A motion as a turn about an axis and a shift along it (Chasles' theorem).
struct Screw {
    Point axis;      ///< of length 1; any direction where nothing turns and nothing shifts
    double turn = 0; ///< radians about the axis, by the right hand, from 0 to π
    double rise = 0; ///< Å along the axis
    Point point;     ///< on the axis, that nearest to the point asked for
};

/// The point of the axis is that nearest to `near`. A motion that does not turn has its axis along the shift,
/// through `near`.
Screw ScrewOf(const Motion &motion, const Point &near);

/// A unit vector perpendicular to another.
Point PerpendicularTo(const Point &direction);
Point Cross(const Point &a, const Point &b);
/// The vector over its length; (0, 0, 1) for one without length.
Point Unit(const Point &v);
/// The rotation whose columns are x, y and z of a frame with z along `main`, and x, which must not be
/// parallel to it, in the plane of `main` and `side`.
Matrix FrameOf(const Point &main, const Point &side);
Matrix Transposed(const Matrix &m);

} // namespace placement
