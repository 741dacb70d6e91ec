#pragma once

#include "Types.h"
#include "solutions/Solution.h"

#include <cstdint>
#include <vector>

class QTextStream;

/// The scoring of one pose. Free functions without state: they touch only their arguments.

/// Density score: the sum in double, from the first point to the last, of the map's values at the voxels
/// nearest to the points. A point outside the map adds nothing. See `NearestVoxel` for where the map ends.
double Score(const std::vector<TaggedPoint> &points, const VARNO::Grid *map);

/// Collision measure: the sum in double of the solid's values that touch (`search::Touches`) at the voxels
/// nearest to the points.
double Collision(const std::vector<TaggedPoint> &points, const VARNO::Grid *solid);

/// Restraint distances under a pose: Scores[i] becomes |A - pose·B| in Å for the i-th pair (A, B). `Scores`
/// is not resized; each pair beyond its end is reported as a broken assertion and skipped.
void Score(const std::vector<RestraintPair> &restraints, const VARNO::Transform &pose,
           std::vector<double> &Scores);

/// Scores one pose. It is rejected when the moved points collide with the solid (measure
/// `search::collisionLimit` or more): the result then is a default record, with `SolutionScore::rejected`.
/// Otherwise the result holds the pose, its density score and one distance per restraint, and its line is
/// written to `log` if `logging`.
///
/// `map` may be null (score 0), so may `solid` (no collision test). `moved` and `extraScores` are the
/// caller's scratch arrays, overwritten and never resized: at least as many elements as points, exactly one
/// per restraint.
SolutionScore DoScores(const VARNO::Quaternion &rotation, const VARNO::Vertex &translation,
                       const VARNO::Grid *map, const std::vector<TaggedPoint> &points,
                       const VARNO::Grid *solid, const std::vector<RestraintPair> &restraints,
                       std::vector<TaggedPoint> &moved, std::vector<double> &extraScores, QTextStream &log,
                       bool logging);

/// Moves tagged points by a pose, which must outlive it.
class ApplyRT {
public:
    explicit ApplyRT(const VARNO::Transform &pose)
        : m_pose(pose) {}
    /// The vertex is made from its numbers: copying one whose bytes have just been stored apart takes three
    /// times as long as moving it.
    TaggedPoint operator()(const TaggedPoint &point) const {
        const VARNO::Vertex moved = m_pose * point.first;
        return {VARNO::Vertex(moved[0], moved[1], moved[2], moved.IsValid()), point.second};
    }

private:
    const VARNO::Transform &m_pose;
};

namespace search {

/// Whether a value of the solid's grid means that a point there touches the solid. The nodes of a keep-out
/// grid hold 6.0 minus the distance to the nearest solid point: one that lies closer than 4.0 Å touches.
inline bool Touches(float value) {
    constexpr float touching = 2.0f;
    return value > touching;
}

/// A pose collides when the values that touch sum to this or more; a single one is enough.
constexpr double collisionLimit = 0.01;

/// The index along one axis of the voxel nearest to a coordinate, or a number >= `count` when the coordinate
/// lies outside the grid.
///
/// (p - origin) / spacing is formed in float, widened to double, plus 0.5, truncated toward zero: everything
/// from one and a half spacings below the origin lands on index 0. A coordinate that is not a number, or
/// whose index does not fit, is outside.
inline unsigned NearestVoxel(float p, float origin, float spacing, unsigned count) {
    const double q = double((p - origin) / spacing) + 0.5;
    return q > -1.0 && q < double(count) ? unsigned(std::int64_t(q)) : count;
}

} // namespace search
