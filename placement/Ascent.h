#pragma once

#include <array>
#include <cmath>
#include <cstddef>

namespace placement {

/// How far a refinement may go.
struct RefinementSteps {
    int max = 0;        ///< steps of the minimiser
    double first = 0;   ///< length of the first one, Å
    double longest = 0; ///< of any, Å
};

/// Unknowns that are lengths (Å) by which something moves, or the derivatives by them.
template <std::size_t number>
using Unknowns = std::array<double, number>;

template <std::size_t number>
double Dot(const Unknowns<number> &a, const Unknowns<number> &b) {
    double sum = 0;
    for (std::size_t i = 0; i < number; ++i)
        sum += a[i] * b[i];
    return sum;
}

/// The inverse of the negated Hessian as BFGS knows it.
template <std::size_t number>
class InverseHessian {
public:
    explicit InverseHessian(double diagonal) {
        for (std::size_t i = 0; i < number; ++i)
            m_rows[i][i] = diagonal;
    }

    Unknowns<number> operator*(const Unknowns<number> &v) const {
        Unknowns<number> product;
        for (std::size_t i = 0; i < number; ++i)
            product[i] = Dot(m_rows[i], v);
        return product;
    }

    /// The step s changed the gradient by -y.
    void Update(const Unknowns<number> &s, const Unknowns<number> &y) {
        const double sy = Dot(s, y);
        if (!(sy > 1e-12))
            return;
        const Unknowns<number> hy = *this * y;
        const double factor = (1 + Dot(y, hy) / sy) / sy;
        for (std::size_t i = 0; i < number; ++i)
            for (std::size_t j = 0; j < number; ++j)
                m_rows[i][j] += factor * s[i] * s[j] - (hy[i] * s[j] + s[i] * hy[j]) / sy;
    }

private:
    std::array<Unknowns<number>, number> m_rows{};
};

/// Climbs to the local maximum of a score: BFGS (Nocedal & Wright 2006, 6.1). Each step is halted until the
/// score grows (Armijo).
///
/// A Problem has the number of its `unknowns`, a State with `score` and `gradient`, and
/// `State Moved(const State &from, const Unknowns &by) const`, evaluated there.
template <class Problem>
class Ascent {
public:
    using State = typename Problem::State;
    using Vector = Unknowns<Problem::unknowns>;

    Ascent(const Problem &problem, const State &start)
        : m_problem(problem)
        , m_best(start) {}

    State Run(const RefinementSteps &steps) {
        bool fresh = true;
        double slope = Slope();
        if (!(slope > noSlope))
            return m_best;
        InverseHessian<Problem::unknowns> hessian(steps.first / slope);
        for (int step = 0; step < steps.max; ++step) {
            const Vector direction = hessian * m_best.gradient;
            const double length = std::sqrt(Dot(direction, direction));
            const double factor = length > steps.longest ? steps.longest / length : 1;
            Vector taken;
            const State before = m_best;
            if (!TryAlong(direction, factor, taken)) {
                slope = Slope();
                if (fresh || !(slope > noSlope))
                    break;
                hessian = InverseHessian<Problem::unknowns>(restartLength * steps.first / slope);
                fresh = true;
                continue;
            }
            fresh = false;
            Vector change;
            for (std::size_t i = 0; i < change.size(); ++i)
                change[i] = before.gradient[i] - m_best.gradient[i];
            hessian.Update(taken, change);
            if (std::sqrt(Dot(taken, taken)) < shortStep * steps.first &&
                m_best.score - before.score < smallGrowth * std::abs(m_best.score))
                break;
        }
        return m_best;
    }

private:
    static constexpr int halvings = 4;           ///< tries of one step …
    static constexpr double shrinkage = 0.35;    ///< … each this much shorter than the one before
    static constexpr double armijo = 1e-4;       ///< least part of the growth that the gradient promises
    static constexpr double restartLength = 0.3; ///< of the first step, after one that failed
    /// Of the first step: the end, where the score hardly grows either.
    static constexpr double shortStep = 0.02;
    static constexpr double smallGrowth = 1e-4; ///< of the score
    static constexpr double noSlope = 1e-20;

    double Slope() const { return std::sqrt(Dot(m_best.gradient, m_best.gradient)); }

    /// Goes along the direction, the given part of it or less, where the score grows enough.
    bool TryAlong(const Vector &direction, double factor, Vector &taken) {
        const double promised = Dot(direction, m_best.gradient);
        if (!(promised > 0))
            return false;
        for (int i = 0; i < halvings; ++i, factor *= shrinkage) {
            for (std::size_t j = 0; j < taken.size(); ++j)
                taken[j] = factor * direction[j];
            const State next = m_problem.Moved(m_best, taken);
            if (next.score > m_best.score + armijo * factor * promised) {
                m_best = next;
                return true;
            }
        }
        return false;
    }

    const Problem &m_problem;
    State m_best;
};

} // namespace placement
