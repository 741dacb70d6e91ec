#include "placement/Refinement.h"

#include <algorithm>

namespace placement {

namespace {

using Six = std::array<double, 6>;

constexpr int halvings = 4;           ///< tries of one step …
constexpr double shrinkage = 0.35;    ///< … each this much shorter than the one before
constexpr double armijo = 1e-4;       ///< least part of the growth that the gradient promises
constexpr double restartLength = 0.3; ///< of the first step, after one that failed
constexpr double shortStep = 0.02;    ///< of the first step: the end, where the score hardly grows either
constexpr double smallGrowth = 1e-4;  ///< of the score

double Dot(const Six &a, const Six &b) {
    double sum = 0;
    for (std::size_t i = 0; i < 6; ++i)
        sum += a[i] * b[i];
    return sum;
}

/// The inverse of the negated Hessian as BFGS knows it.
class InverseHessian {
public:
    explicit InverseHessian(double diagonal) {
        for (std::size_t i = 0; i < 6; ++i)
            m_rows[i][i] = diagonal;
    }

    Six operator*(const Six &v) const {
        Six product;
        for (std::size_t i = 0; i < 6; ++i)
            product[i] = Dot(m_rows[i], v);
        return product;
    }

    /// The step s changed the gradient by -y.
    void Update(const Six &s, const Six &y) {
        const double sy = Dot(s, y);
        if (!(sy > 1e-12))
            return;
        const Six hy = *this * y;
        const double factor = (1 + Dot(y, hy) / sy) / sy;
        for (std::size_t i = 0; i < 6; ++i)
            for (std::size_t j = 0; j < 6; ++j)
                m_rows[i][j] += factor * s[i] * s[j] - (hy[i] * s[j] + s[i] * hy[j]) / sy;
    }

private:
    std::array<Six, 6> m_rows{};
};

class Climb {
public:
    Climb(const Volume &volume, const WeightedPoints &points, double gyration, const Pose &start)
        : m_volume(volume)
        , m_points(points)
        // A model of one point has no rotation; any length keeps its unknowns finite.
        , m_gyration(std::max(gyration, 1.0)) {
        m_best = Evaluate(start);
    }

    ScoredPose Run(const RefinementSteps &steps) {
        bool fresh = true;
        double slope = std::sqrt(Dot(m_best.gradient, m_best.gradient));
        if (!(slope > 1e-20))
            return {m_best.pose, m_best.score};
        InverseHessian hessian(steps.first / slope);
        for (int step = 0; step < steps.max; ++step) {
            Six direction = hessian * m_best.gradient;
            const double length = std::sqrt(Dot(direction, direction));
            const double factor = length > steps.longest ? steps.longest / length : 1;
            Six taken;
            const Evaluation before = m_best;
            if (!TryAlong(direction, factor, taken)) {
                slope = std::sqrt(Dot(m_best.gradient, m_best.gradient));
                if (fresh || !(slope > 1e-20))
                    break;
                hessian = InverseHessian(restartLength * steps.first / slope);
                fresh = true;
                continue;
            }
            fresh = false;
            Six change;
            for (std::size_t i = 0; i < 6; ++i)
                change[i] = before.gradient[i] - m_best.gradient[i];
            hessian.Update(taken, change);
            if (std::sqrt(Dot(taken, taken)) < shortStep * steps.first &&
                m_best.score - before.score < smallGrowth * std::abs(m_best.score))
                break;
        }
        return {m_best.pose, m_best.score};
    }

private:
    struct Evaluation {
        Pose pose;
        double score = 0;
        Six gradient{};
    };

    Evaluation Evaluate(const Pose &pose) const {
        const ScoreGradient g = ScorePose(m_volume, m_points, pose);
        return {pose,
                g.score,
                {g.byShift.x, g.byShift.y, g.byShift.z, g.byRotation.x / m_gyration,
                 g.byRotation.y / m_gyration, g.byRotation.z / m_gyration}};
    }

    Pose Moved(const Six &by) const {
        const Point turn = 1 / m_gyration * Point{by[3], by[4], by[5]};
        return {RotationBy(turn) * m_best.pose.rotation, m_best.pose.centre + Point{by[0], by[1], by[2]}};
    }

    /// Goes along the direction, the given part of it or less, where the score grows enough.
    bool TryAlong(const Six &direction, double factor, Six &taken) {
        const double promised = Dot(direction, m_best.gradient);
        if (!(promised > 0))
            return false;
        for (int i = 0; i < halvings; ++i, factor *= shrinkage) {
            for (std::size_t j = 0; j < 6; ++j)
                taken[j] = factor * direction[j];
            const Evaluation next = Evaluate(Moved(taken));
            if (next.score > m_best.score + armijo * factor * promised) {
                m_best = next;
                return true;
            }
        }
        return false;
    }

    const Volume &m_volume;
    const WeightedPoints &m_points;
    double m_gyration;
    Evaluation m_best;
};

} // namespace

ScoredPose Refine(const Volume &volume, const WeightedPoints &points, double gyration, const Pose &start,
                  const RefinementSteps &steps) {
    return Climb(volume, points, gyration, start).Run(steps);
}

} // namespace placement
