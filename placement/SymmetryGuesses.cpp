#include "placement/SymmetryGuesses.h"

#include "placement/Constants.h"
#include "placement/DistinctPlaces.h"

#include <algorithm>
#include <numbers>
#include <numeric>
#include <set>

namespace placement {

namespace {

constexpr double pi = std::numbers::pi;

/// A rotation of a group in its own frame.
struct Turn {
    Point axis;
    double angle = 0; ///< radians, above 0 up to π
};

Turn TurnOf(const Matrix &rotation) {
    const Screw screw = ScrewOf({rotation, {}}, {});
    return {screw.axis, screw.turn};
}

std::vector<Turn> TurnsOf(const std::vector<SymmetryOperator> &operators) {
    std::vector<Turn> turns;
    for (const SymmetryOperator &op : std::span(operators).subspan(1))
        turns.push_back(TurnOf(op.rotation));
    return turns;
}

/// One of each class of rotations that the group itself turns into one another.
std::vector<Turn> ClassesOf(const std::vector<SymmetryOperator> &operators) {
    std::vector<Turn> classes;
    for (const Turn &turn : TurnsOf(operators)) {
        const auto isLike = [&](const Turn &known) {
            return std::abs(known.angle - turn.angle) < 1e-6 &&
                   std::ranges::any_of(operators, [&](const SymmetryOperator &op) {
                       const double along = Dot(op.rotation * turn.axis, known.axis);
                       // A half turn is one about the opposite axis too.
                       return (turn.angle > pi - 1e-6 ? std::abs(along) : along) > 1 - 1e-6;
                   });
        };
        if (std::ranges::none_of(classes, isLike))
            classes.push_back(turn);
    }
    return classes;
}

/// The numbers of some operators whose products are all of the group's.
std::vector<std::size_t> GeneratorsOf(const Symmetry &symmetry) {
    switch (symmetry.kind) {
    case SymmetryKind::Dihedral:
        return {1, symmetry.fold};
    case SymmetryKind::Tetrahedral:
    case SymmetryKind::Octahedral:
    case SymmetryKind::Icosahedral:
        return {1, 2, 3};
    case SymmetryKind::Cyclic:
    case SymmetryKind::Helical:
        break;
    }
    return {1};
}

class Guesses {
public:
    Guesses(const PointModel &body, std::span<const ScoredPose> motions, double tolerance)
        : m_body(body)
        , m_motions(motions)
        , m_tolerance(tolerance)
        , m_angle(std::min(maxGuessAngle, tolerance / std::max(body.gyration, 1.0))) {
        for (const ScoredPose &motion : motions.first(std::min(guessingMotions, motions.size())))
            m_screws.push_back(ScrewOf(MotionOf(body, motion.pose), body.centre));
    }

    std::vector<SymmetryGuess> Run() {
        for (const Screw &screw : m_screws)
            if (std::abs(screw.rise) <= m_tolerance)
                GuessCyclic(screw);
            else
                GuessHelices(screw);
        std::vector<Symmetry> groups{
            {SymmetryKind::Tetrahedral, 3}, {SymmetryKind::Octahedral, 4}, {SymmetryKind::Icosahedral, 5}};
        for (const unsigned fold : m_folds)
            groups.push_back({SymmetryKind::Dihedral, fold});
        for (const Symmetry &group : groups)
            GuessFromPairs(group);
        GuessHelicesWithFolds();
        std::ranges::stable_sort(m_guesses, std::ranges::greater(), &SymmetryGuess::support);
        return std::move(m_guesses);
    }

private:
    void GuessCyclic(const Screw &screw) {
        for (unsigned fold = 2; fold <= maxGuessedFold; ++fold)
            for (unsigned k = 1; 2 * k <= fold; ++k) {
                if (std::gcd(k, fold) != 1 || std::abs(screw.turn - 2 * pi * k / fold) > m_angle)
                    continue;
                if (Add({{SymmetryKind::Cyclic, fold},
                         {FrameOf(screw.axis, PerpendicularTo(screw.axis)), screw.point},
                         0},
                        0))
                    m_folds.insert(fold);
            }
    }

    /// The motion may be several steps of the helix, with whole turns between.
    void GuessHelices(const Screw &screw) {
        const double sign = screw.rise < 0 ? -1 : 1;
        const Point axis = sign * screw.axis;
        for (int steps = 1; steps <= maxGuessedSteps; ++steps)
            for (int whole = 0; whole < steps; ++whole) {
                const double twist = (sign * screw.turn + 2 * pi * whole) / steps * 180 / pi;
                Add({{SymmetryKind::Helical, 1, sign * screw.rise / steps, std::remainder(twist, 360)},
                     {FrameOf(axis, PerpendicularTo(axis)), screw.point},
                     0},
                    steps);
            }
    }

    /// Helices about an axis that has a fold of its own.
    void GuessHelicesWithFolds() {
        const std::vector<SymmetryGuess> guesses = m_guesses;
        for (const SymmetryGuess &helix : guesses)
            for (const SymmetryGuess &cyclic : guesses) {
                const Point axis = helix.frame.rotation * Point{0, 0, 1};
                const Point other = cyclic.frame.rotation * Point{0, 0, 1};
                const Point apart = Cross(cyclic.frame.centre - helix.frame.centre, axis);
                if (!helix.symmetry.IsHelical() || cyclic.symmetry.kind != SymmetryKind::Cyclic ||
                    Length(Cross(axis, other)) > m_angle || Length(apart) > m_tolerance)
                    continue;
                SymmetryGuess both = helix;
                both.symmetry.fold = cyclic.symmetry.fold;
                Add(both, 1);
            }
    }

    void GuessFromPairs(const Symmetry &group) {
        const std::vector<SymmetryOperator> operators = OperatorsOf(group);
        const std::vector<Turn> classes = ClassesOf(operators), turns = TurnsOf(operators);
        for (std::size_t i = 0; i < m_screws.size(); ++i)
            for (std::size_t j = 0; j < m_screws.size(); ++j)
                for (const Turn &first : classes)
                    for (const Turn &second : turns)
                        if (i != j)
                            GuessFromPair(group, m_screws[i], m_screws[j], first, second);
    }

    bool IsLike(const Screw &screw, const Turn &turn) const {
        return std::abs(screw.rise) <= m_tolerance && std::abs(screw.turn - turn.angle) <= m_angle;
    }

    void GuessFromPair(const Symmetry &group, const Screw &a, const Screw &b, const Turn &first,
                       const Turn &second) {
        if (!IsLike(a, first) || !IsLike(b, second))
            return;
        const double wanted = Dot(first.axis, second.axis), found = Dot(a.axis, b.axis);
        constexpr double parallel = 0.99;
        if (std::abs(wanted) > parallel || std::abs(found) > parallel)
            return;
        if (std::abs(std::acos(wanted) - std::acos(found)) > 2 * m_angle)
            return;
        // The middle between the axes where they are nearest.
        const Point across = Unit(Cross(a.axis, b.axis)), between = b.point - a.point;
        if (std::abs(Dot(between, across)) > 2 * m_tolerance)
            return;
        const Point onA =
            a.point + Dot(between, Cross(b.axis, across)) / Dot(a.axis, Cross(b.axis, across)) * a.axis;
        Add({group,
             {FrameOf(a.axis, b.axis) * Transposed(FrameOf(first.axis, second.axis)),
              onA + 0.5 * Dot(between, across) * across},
             0},
            0);
    }

    /// Takes a guess that has support, once; whether it has.
    bool Add(SymmetryGuess guess, int reach) {
        if (std::ranges::any_of(m_guesses, [&](const SymmetryGuess &known) { return IsSame(known, guess); }))
            return true;
        guess.support = SupportOf(guess, reach);
        if (guess.support > 0)
            m_guesses.push_back(guess);
        return guess.support > 0;
    }

    Pose PoseAfter(const SymmetryGuess &guess, const SymmetryOperator &op) const {
        return Moved(MotionOf(op, guess.symmetry, guess.frame), {RotationBy({}), m_body.centre});
    }

    bool IsNear(const Pose &a, const Pose &b) const {
        return SquaredRmsd(m_body, a, b) < m_tolerance * m_tolerance;
    }

    /// 0 where too little of it is among the motions.
    double SupportOf(const SymmetryGuess &guess, int reach) const {
        const std::vector<SymmetryOperator> operators = OperatorsOf(guess.symmetry, reach);
        const double best = m_motions.front().score, all = double(operators.size() - 1);
        double support = 0, missing = 0;
        for (const SymmetryOperator &op : std::span(operators).subspan(1)) {
            const Pose pose = PoseAfter(guess, op);
            const auto found = std::ranges::find_if(
                m_motions, [&](const ScoredPose &motion) { return IsNear(motion.pose, pose); });
            const double score = found != m_motions.end() ? found->score : 0;
            support += score;
            missing += best - score;
            if (missing > (1 - minSupport) * best * all)
                return 0;
        }
        return support / all;
    }

    /// Whether two guesses of one group stand alike: then the operators that make the first one's group are
    /// among the second one's.
    bool IsSame(const SymmetryGuess &a, const SymmetryGuess &b) const {
        if (a.symmetry.kind != b.symmetry.kind || a.symmetry.fold != b.symmetry.fold)
            return false;
        const std::vector<SymmetryOperator> operators = OperatorsOf(a.symmetry, 1);
        return std::ranges::all_of(GeneratorsOf(a.symmetry), [&](std::size_t generator) {
            const Pose pose = PoseAfter(a, operators[generator]);
            return std::ranges::any_of(
                operators, [&](const SymmetryOperator &other) { return IsNear(pose, PoseAfter(b, other)); });
        });
    }

    const PointModel &m_body;
    std::span<const ScoredPose> m_motions;
    double m_tolerance; ///< Å
    double m_angle;     ///< radians
    std::vector<Screw> m_screws;
    std::set<unsigned> m_folds; ///< of the cyclic groups that were found
    std::vector<SymmetryGuess> m_guesses;
};

} // namespace

Motion MotionOf(const PointModel &body, const Pose &pose) {
    return MotionInto(pose) * Motion{RotationBy({}), -1 * body.centre};
}

std::vector<SymmetryGuess> GuessSymmetries(const PointModel &body, std::span<const ScoredPose> motions,
                                           double tolerance) {
    return motions.empty() ? std::vector<SymmetryGuess>{} : Guesses(body, motions, tolerance).Run();
}

} // namespace placement
