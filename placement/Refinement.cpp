#include "placement/Refinement.h"

#include <algorithm>

namespace placement {

namespace {

/// One pose in a volume.
class OnePose {
public:
    static constexpr std::size_t unknowns = 6;
    struct State {
        Pose pose;
        double score = 0;
        Unknowns<unknowns> gradient{};
    };

    OnePose(const Volume &volume, const WeightedPoints &points, double gyration)
        : m_volume(volume)
        , m_points(points)
        // A model of one point has no rotation; any length keeps its unknowns finite.
        , m_gyration(std::max(gyration, 1.0)) {}

    State At(const Pose &pose) const {
        const ScoreGradient g = ScorePose(m_volume, m_points, pose);
        return {pose,
                g.score,
                {g.byShift.x, g.byShift.y, g.byShift.z, g.byRotation.x / m_gyration,
                 g.byRotation.y / m_gyration, g.byRotation.z / m_gyration}};
    }

    State Moved(const State &from, const Unknowns<unknowns> &by) const {
        const Point turn = 1 / m_gyration * Point{by[3], by[4], by[5]};
        return At({RotationBy(turn) * from.pose.rotation, from.pose.centre + Point{by[0], by[1], by[2]}});
    }

private:
    const Volume &m_volume;
    const WeightedPoints &m_points;
    double m_gyration;
};

} // namespace

ScoredPose Refine(const Volume &volume, const WeightedPoints &points, double gyration, const Pose &start,
                  const RefinementSteps &steps) {
    const OnePose problem(volume, points, gyration);
    const OnePose::State end = Ascent(problem, problem.At(start)).Run(steps);
    return {end.pose, end.score};
}

} // namespace placement
