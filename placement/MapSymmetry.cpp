#include "placement/MapSymmetry.h"

#include "placement/Constants.h"
#include "placement/DistinctPlaces.h"
#include "placement/SymmetricRefinement.h"
#include "placement/SymmetryGuesses.h"

#include <algorithm>
#include <map>
#include <numbers>
#include <string>
#include <utility>

namespace placement {

namespace {

/// How many operators of it a map holds, to compare helices and groups by.
double NumberOfOperators(const Symmetry &symmetry, double gyration) {
    if (!symmetry.IsHelical())
        return double(OperatorsOf(symmetry).size());
    return symmetry.fold * (1 + 2 * gyration / symmetry.rise);
}

Point MainAxis(const Pose &frame) {
    return frame.rotation * Point{0, 0, 1};
}

/// The name without a helix' numbers, under which guesses compete.
std::string KindOf(const Symmetry &symmetry) {
    return symmetry.IsHelical() ? "H" : NameOf(symmetry);
}

/// Chance correlates two maps of n independent numbers as well as c with the probability (1 - c²)^(n/2):
/// like exp(-s²/b), the tail of wrong places, for s² = -ln(1 - c²).
double StrengthOf(double correlation) {
    constexpr double nearlyEqual = 1 - 1e-9;
    const double c = std::clamp(correlation, 0.0, nearlyEqual);
    return std::sqrt(-std::log1p(-c * c));
}

/// The fold of the axis along z of the group's own frame.
unsigned FoldAboutZ(const Symmetry &symmetry) {
    const bool isTwofold =
        symmetry.kind == SymmetryKind::Tetrahedral || symmetry.kind == SymmetryKind::Icosahedral;
    return isTwofold ? 2 : symmetry.fold;
}

/// Motions halfway between neighbouring operators: they correlate as well where the map is only round.
std::vector<Motion> MotionsBetween(const Symmetry &symmetry, const Pose &frame) {
    if (!symmetry.IsHelical()) {
        const Symmetry finer{SymmetryKind::Cyclic, 2 * FoldAboutZ(symmetry)};
        return {MotionOf(OperatorsOf(finer)[1], finer, frame)};
    }
    Symmetry finer = symmetry;
    finer.rise /= 2;
    finer.twist /= 2;
    const SymmetryOperator oneStep = OperatorsOf(finer, 1)[finer.fold];
    std::vector<Motion> motions{MotionOf(oneStep, finer, frame)};
    finer.twist += 180;
    motions.push_back(MotionOf(oneStep, finer, frame));
    return motions;
}

class Finder {
public:
    Finder(const SelfMap &map, std::vector<ScoredPose> motions, const SymmetryRequest &request)
        : m_map(map)
        , m_motions(std::move(motions))
        , m_request(request)
        , m_points(map.body.points, map.fineWeights) {}

    MapSymmetry Run() const {
        MapSymmetry best{.resolution = m_map.resolution};
        for (const SymmetryGuess &guess : Guesses()) {
            const MapSymmetry judged = Judged(guess);
            if (IsBetter(judged, best))
                best = judged;
        }
        if (!best.found && !best.symmetry.IsNone())
            best.tried = std::exchange(best.symmetry, {});
        return best;
    }

private:
    std::vector<SymmetryGuess> Guesses() const {
        if (m_request.frame)
            return {{*m_request.symmetry, *m_request.frame, 0}};
        if (m_request.symmetry && m_request.axis && !m_request.IsAnyHelix())
            return {HeldGuess(*m_request.symmetry, *m_request.axis)};
        std::vector<SymmetryGuess> guesses;
        std::map<std::string, std::size_t> ofKind;
        for (SymmetryGuess guess : GuessSymmetries(m_map.body, m_motions, samePlace * m_map.resolution))
            if (Fit(guess) && ofKind[KindOf(guess.symmetry)]++ < guessesOfKind)
                guesses.push_back(guess);
        return guesses;
    }

    /// Whether a guess is what is asked for; held axes and centres, rise and twist take the place of its own.
    bool Fit(SymmetryGuess &guess) const {
        const std::optional<Symmetry> &wanted = m_request.symmetry;
        if (!m_request.Asks(guess.symmetry))
            return false;
        const Point main = MainAxis(guess.frame);
        if (m_request.axis) {
            const Point axis = Dot(*m_request.axis, main) < 0 ? -1 * *m_request.axis : *m_request.axis;
            const Point across = Cross(main, Unit(axis));
            if (Length(across) > std::sin(heldAxis) || OperatorsOf(guess.symmetry, 1).size() < 2)
                return false;
            guess.frame.rotation =
                RotationBy(std::asin(Length(across)) * Unit(across)) * guess.frame.rotation;
        }
        if (m_request.centre) {
            const Point off = *m_request.centre - guess.frame.centre;
            const bool hasCentre = guess.symmetry.kind != SymmetryKind::Cyclic && !guess.symmetry.IsHelical();
            if (Length(hasCentre ? off : off - Dot(off, main) * main) > m_map.resolution)
                return false;
            guess.frame.centre = *m_request.centre;
        }
        if (wanted && wanted->rise > 0) {
            const double turn = std::abs(std::remainder(guess.symmetry.twist - wanted->twist, 360));
            if (std::abs(guess.symmetry.rise - wanted->rise) > m_map.resolution || turn > heldTwist)
                return false;
            guess.symmetry = *wanted;
        }
        return true;
    }

    /// A group about an axis that is held, in the turn about it that fits best.
    SymmetryGuess HeldGuess(const Symmetry &symmetry, const Point &axis) const {
        const SymmetricJob job = JobOf(symmetry);
        const Pose body{RotationBy({}), m_map.body.centre};
        SymmetricPose best;
        for (double turn = 0; turn < std::numbers::pi; turn += heldStep) {
            const Pose frame{FrameOf(axis, PerpendicularTo(axis)) * RotationBy({0, 0, turn}),
                             m_request.centre.value_or(m_map.body.centre)};
            SymmetricPose tried{body, symmetry, frame, 0};
            tried.score = SymmetricScore(job, tried);
            if (turn == 0 || tried.score > best.score)
                best = tried;
        }
        return {symmetry, best.frame, 0};
    }

    SymmetricJob JobOf(const Symmetry &symmetry) const {
        std::vector<SymmetryOperator> operators =
            OperatorsOf(symmetry, symmetry.IsHelical() ? helixReach : 0);
        operators.erase(operators.begin());
        return {m_map.fine, m_points, m_map.body.gyration, std::move(operators), m_request.Freedom(false)};
    }

    MapSymmetry Judged(const SymmetryGuess &guess) const {
        const SymmetricJob job = JobOf(guess.symmetry);
        const SymmetricPose start{{RotationBy({}), m_map.body.centre}, guess.symmetry, guess.frame, 0};
        const SymmetricPose end = RefineSymmetric(
            job, start, {finalSteps, firstFinalStep * m_map.resolution, longestFinalStep * m_map.resolution});
        std::vector<double> correlations;
        for (const SymmetryOperator &op : job.operators)
            correlations.push_back(m_map.Correlation(Moved(MotionOf(op, end.symmetry, end.frame), end.pose)));
        return WithEvidence(end, correlations);
    }

    MapSymmetry WithEvidence(const SymmetricPose &at, const std::vector<double> &correlations) const {
        MapSymmetry judged{.symmetry = at.symmetry, .frame = at.frame, .resolution = m_map.resolution};
        for (const double correlation : correlations)
            judged.correlation += correlation / double(correlations.size());
        const auto [weakest, strongest] = std::ranges::minmax_element(correlations);
        judged.weakest = *weakest;
        const std::vector<double> wrong = WrongScores(at);
        judged.wrong = wrong.empty() ? 0 : wrong.front();
        double between = 0;
        for (const Motion &motion : MotionsBetween(at.symmetry, at.frame))
            between = std::max(between, m_map.Correlation(Moved(motion, at.pose)));
        std::vector<double> strengths;
        for (const double correlation : wrong)
            strengths.push_back(StrengthOf(correlation));
        const WrongTail tail = FitWrongTail(strengths);
        judged.logExpected = tail.LogExpected(StrengthOf(judged.correlation));
        // E is what chance does in as many tries as there are motions; one that is held is one try.
        if (m_request.IsHeld() && tail.number > 0)
            judged.logExpected -= std::log(double(tail.number));
        judged.probability = 1 / (1 + wrongPerExpected * std::exp(judged.logExpected));
        judged.found =
            judged.probability >= declared && HasPitch(at.symmetry) && *weakest > between &&
            StrengthOf(*weakest) >= weakestOperator * StrengthOf(std::min(*strongest, surelyEqual));
        return judged;
    }

    /// A helix without a pitch is none: a rise of nothing is left of a cyclic group's operator.
    bool HasPitch(const Symmetry &symmetry) const {
        return !symmetry.IsHelical() ||
               symmetry.rise * 360 > minPitch * m_map.resolution * std::abs(symmetry.twist);
    }

    /// The correlations after motions that are none of the symmetry's.
    std::vector<double> WrongScores(const SymmetricPose &at) const {
        const int reach =
            at.symmetry.IsHelical() ? int(m_map.body.gyration / at.symmetry.rise) + helixReach : 0;
        const std::vector<Motion> motions = MotionsOf(at.symmetry, at.frame, reach);
        std::vector<Pose> right;
        right.reserve(motions.size());
        for (const Motion &motion : motions)
            right.push_back(Moved(motion, at.pose));
        std::vector<double> scores;
        for (const ScoredPose &motion : m_motions) {
            const auto isNear = [&](const Pose &pose) {
                return SquaredRmsd(m_map.body, pose, motion.pose) < m_map.resolution * m_map.resolution;
            };
            if (std::ranges::none_of(right, isNear))
                scores.push_back(motion.score);
        }
        return scores;
    }

    /// The larger of two symmetries that were found; of those that were not the one that correlates better.
    bool IsBetter(const MapSymmetry &a, const MapSymmetry &b) const {
        if (a.found != b.found)
            return a.found;
        if (!a.found)
            return a.correlation > b.correlation;
        const double numberA = NumberOfOperators(a.symmetry, m_map.body.gyration);
        const double numberB = NumberOfOperators(b.symmetry, m_map.body.gyration);
        return numberA != numberB ? numberA > numberB : a.correlation > b.correlation;
    }

    const SelfMap &m_map;
    std::vector<ScoredPose> m_motions;
    const SymmetryRequest &m_request;
    WeightedPoints m_points;
};

} // namespace

MapSymmetry FindMapSymmetry(const VolumeView &map, double resolution, const SymmetryRequest &request,
                            unsigned threads, Monitor &monitor) {
    const SelfMap self = MakeSelfMap(map, resolution, threads);
    if (self.IsEmpty())
        return {.resolution = self.resolution};
    return Finder(self, FindSelfPoses(self, threads, monitor), request).Run();
}

} // namespace placement
