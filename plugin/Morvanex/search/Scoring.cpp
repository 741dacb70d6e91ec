#include "search/Scoring.h"

#include "Assertion.h"

#include <QTextStream>

#include <algorithm>
#include <cmath>

using namespace VARNO;

namespace {

/// Sums `term` of the values at the voxels nearest to the points, as a double, in the order of the points.
template <class Term>
double Sum(const std::vector<TaggedPoint> &points, const Grid &grid, Term term) {
    const auto &count = grid.Dimensions();
    const auto &origin = grid.Origin();
    const auto &spacing = grid.Spacing();
    double sum = 0;
    for (const auto &[p, tag] : points) {
        const unsigned i = search::NearestVoxel(p[0], origin[0], spacing[0], count[0]);
        const unsigned j = search::NearestVoxel(p[1], origin[1], spacing[1], count[1]);
        const unsigned k = search::NearestVoxel(p[2], origin[2], spacing[2], count[2]);
        if (i < count[0] && j < count[1] && k < count[2])
            sum += term(grid.GetValue(i, j, k));
    }
    return sum;
}

} // namespace

double Score(const std::vector<TaggedPoint> &points, const Grid *map) {
    return Sum(points, *map, [](float value) { return double(value); });
}

double Collision(const std::vector<TaggedPoint> &points, const Grid *solid) {
    return Sum(points, *solid, [](float value) { return search::Touches(value) ? double(value) : 0.0; });
}

void Score(const std::vector<RestraintPair> &restraints, const Transform &pose, std::vector<double> &Scores) {
    auto score = Scores.begin();
    for (const auto &[preferred, point] : restraints) {
        if (score == Scores.end()) {
            WarnAssertion("Scores.end() != iss", "Morvanex", __LINE__);
            continue;
        }
        *score++ = std::sqrt(double((preferred - pose * point).SquaredLength()));
    }
}

SolutionScore DoScores(const Quaternion &rotation, const Vertex &translation, const Grid *map,
                       const std::vector<TaggedPoint> &points, const Grid *solid,
                       const std::vector<RestraintPair> &restraints, std::vector<TaggedPoint> &moved,
                       std::vector<double> &extraScores, QTextStream &log, bool logging) {
    SolutionScore result;
    const Transform pose(rotation, translation);
    std::transform(points.begin(), points.end(), moved.begin(), ApplyRT(pose));
    if (solid && !(Collision(moved, solid) < search::collisionLimit))
        return result;

    result.rotation = rotation;
    result.translation = translation;
    result.score = map ? Score(moved, map) : 0.0;
    Score(restraints, pose, extraScores);
    result.extraScores = extraScores;
    if (logging)
        log << result.getLine() << '\n';
    return result;
}
