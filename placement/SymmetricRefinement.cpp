#include "placement/SymmetricRefinement.h"

#include <algorithm>
#include <numbers>

namespace placement {

namespace {

constexpr double degree = std::numbers::pi / 180;

/// Derivatives of the sum of the scores: by shift (1/Å) and turn (1/rad) of the pose about its centre and of
/// the frame about its own, by rise (1/Å) and twist (1/rad).
struct SymmetricGradient {
    Point poseShift, poseTurn, frameShift, frameTurn;
    double rise = 0, twist = 0;
};

class Copies {
public:
    static constexpr std::size_t unknowns = 14;
    struct State {
        SymmetricPose at;
        double score = 0;
        Unknowns<unknowns> gradient{};
    };

    Copies(const SymmetricJob &job, const SymmetricPose &start)
        : m_job(job)
        // A turn of the frame moves copies by about their distance from it; one point at the centre keeps its
        // unknowns finite.
        , m_gyration(std::max(job.gyration, 1.0))
        , m_distance(m_gyration + Length(start.pose.centre - start.frame.centre)) {
        for (const SymmetryOperator &op : job.operators)
            m_steps = std::max(m_steps, std::abs(double(op.steps)));
    }

    State At(const SymmetricPose &at) const {
        State state{at, 0, {}};
        SymmetricGradient sum;
        const Point axis = at.frame.rotation * Point{0, 0, 1};
        for (const SymmetryOperator &op : m_job.operators) {
            const Motion motion = MotionOf(op, at.symmetry, at.frame);
            const Pose copy = placement::Moved(motion, at.pose);
            const ScoreGradient g = ScorePose(m_job.volume, m_job.points, copy);
            state.score += g.score;
            Add(sum, g, motion, at, copy.centre);
            sum.rise += op.steps * Dot(axis, g.byShift);
            sum.twist += op.steps * Dot(axis, g.byRotation + Cross(copy.centre - at.frame.centre, g.byShift));
        }
        const Point aboutAxis = Dot(axis, sum.frameTurn) * axis, ofAxis = sum.frameTurn - aboutAxis;
        sum.frameTurn = (m_job.freedom.turn ? 1 : 0) * aboutAxis + (m_job.freedom.axis ? 1 : 0) * ofAxis;
        state.gradient = AsLengths(sum);
        state.at.score = state.score;
        return state;
    }

    State Moved(const State &from, const Unknowns<unknowns> &by) const {
        SymmetricPose next = from.at;
        next.pose = MovedBy(next.pose, {by[0], by[1], by[2]}, 1 / m_gyration * Point{by[3], by[4], by[5]});
        next.frame =
            MovedBy(next.frame, {by[6], by[7], by[8]}, 1 / m_distance * Point{by[9], by[10], by[11]});
        next.symmetry.rise += by[12] / m_steps;
        next.symmetry.twist += by[13] / (m_steps * m_distance) / degree;
        return At(next);
    }

private:
    static Pose MovedBy(const Pose &pose, const Point &shift, const Point &turn) {
        return {RotationBy(turn) * pose.rotation, pose.centre + shift};
    }

    /// What a copy's score says of the pose and the frame. A frame that moves by E turns an operator g into
    /// E·g·E⁻¹.
    static void Add(SymmetricGradient &sum, const ScoreGradient &g, const Motion &motion,
                    const SymmetricPose &at, const Point &copyCentre) {
        const Matrix back = Transposed(motion.rotation);
        const Point shift = back * g.byShift, turn = back * g.byRotation;
        sum.poseShift = sum.poseShift + shift;
        sum.poseTurn = sum.poseTurn + turn;
        sum.frameShift = sum.frameShift + g.byShift - shift;
        sum.frameTurn = sum.frameTurn + g.byRotation - turn + Cross(copyCentre - at.frame.centre, g.byShift) -
                        Cross(at.pose.centre - at.frame.centre, shift);
    }

    Unknowns<unknowns> AsLengths(const SymmetricGradient &sum) const {
        Unknowns<unknowns> gradient{};
        const auto set = [&](std::size_t first, const Point &p, double length) {
            gradient[first] = p.x / length;
            gradient[first + 1] = p.y / length;
            gradient[first + 2] = p.z / length;
        };
        if (m_job.freedom.pose) {
            set(0, sum.poseShift, 1);
            set(3, sum.poseTurn, m_gyration);
        }
        if (m_job.freedom.centre)
            set(6, sum.frameShift, 1);
        set(9, sum.frameTurn, m_distance);
        if (m_job.freedom.helix) {
            gradient[12] = sum.rise / m_steps;
            gradient[13] = sum.twist / (m_steps * m_distance);
        }
        return gradient;
    }

    const SymmetricJob &m_job;
    double m_gyration, m_distance; ///< Å
    double m_steps = 1;            ///< along the helix to the farthest copy
};

} // namespace

double SymmetricScore(const SymmetricJob &job, const SymmetricPose &at) {
    double score = 0;
    for (const SymmetryOperator &op : job.operators)
        score += ScorePose(job.volume, job.points, Moved(MotionOf(op, at.symmetry, at.frame), at.pose)).score;
    return score;
}

SymmetricPose RefineSymmetric(const SymmetricJob &job, const SymmetricPose &start,
                              const RefinementSteps &steps) {
    const Copies problem(job, start);
    return Ascent(problem, problem.At(start)).Run(steps).at;
}

} // namespace placement
