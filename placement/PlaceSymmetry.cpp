#include "placement/PlaceSymmetry.h"

#include "placement/Constants.h"
#include "placement/DistinctPlaces.h"
#include "placement/SymmetryGuesses.h"

#include <algorithm>

namespace placement {

namespace {

/// The model at all places, as one body.
PointModel BodyOf(const PointModel &model, std::span<const Pose> places) {
    std::vector<ModelAtom> atoms;
    for (const Pose &place : places)
        for (const Point &point : model.scanPoints)
            atoms.push_back({MotionInto(place) * point, 1, unsigned(atoms.size()), 0, true});
    return MakePointModel(atoms);
}

/// The motions that bring one place upon another, as poses of the body that all of them make; each counts
/// once.
std::vector<ScoredPose> MotionsBetween(const PointModel &model, std::span<const Pose> places,
                                       const PointModel &body, double tolerance) {
    const Pose atRest{RotationBy({}), body.centre};
    std::vector<ScoredPose> motions;
    for (const Pose &from : places)
        for (const Pose &to : places)
            for (const Matrix &turn : model.equalTurns)
                if (&from != &to)
                    motions.push_back(
                        {Moved(MotionInto({to.rotation * turn, to.centre}) * InverseOf(MotionInto(from)),
                               atRest),
                         1});
    return DistinctBest(body, std::move(motions), tolerance, maxPlaceMotions);
}

class Judge {
public:
    Judge(const PointModel &model, std::span<const Pose> places, double tolerance)
        : m_model(model)
        , m_places(places)
        , m_tolerance(tolerance) {}

    PlaceSymmetry Judged(const SymmetryGuess &guess) const {
        std::vector<SymmetryOperator> operators =
            OperatorsOf(guess.symmetry, guess.symmetry.IsHelical() ? 1 : 0);
        operators.erase(operators.begin());
        double found = 0, squares = 0;
        for (const SymmetryOperator &op : operators) {
            const Motion motion = placement::MotionOf(op, guess.symmetry, guess.frame);
            for (const Pose &place : m_places) {
                const double square = NearestSquare(Moved(motion, place));
                if (square < m_tolerance * m_tolerance) {
                    found += 1;
                    squares += square;
                }
            }
        }
        PlaceSymmetry judged{guess.symmetry, guess.frame, m_places.size(), 0, 0};
        judged.share = found / ExpectedLinks(guess.symmetry, double(operators.size()));
        judged.rmsd = found > 0 ? std::sqrt(squares / found) : 0;
        return judged;
    }

private:
    /// How many pairs of place and operator lead to another place.
    double ExpectedLinks(const Symmetry &symmetry, double operators) const {
        const auto number = double(m_places.size());
        return symmetry.IsHelical() ? std::max(1.0, operators * (number - symmetry.fold))
                                    : operators * number;
    }

    double NearestSquare(const Pose &pose) const {
        double nearest = SquaredRmsd(m_model, pose, m_places.front());
        for (const Pose &place : m_places.subspan(1))
            nearest = std::min(nearest, SquaredRmsd(m_model, pose, place));
        return nearest;
    }

    const PointModel &m_model;
    std::span<const Pose> m_places;
    double m_tolerance;
};

/// How many copies a symmetry gives to a place among so many.
std::size_t OrderAmong(const Symmetry &symmetry, std::size_t places) {
    return symmetry.IsHelical() ? places : OperatorsOf(symmetry).size();
}

} // namespace

PlaceSymmetry FindPlaceSymmetry(const PointModel &model, std::span<const Pose> places, double resolution) {
    PlaceSymmetry best;
    best.places = places.size();
    if (places.size() < 2)
        return best;
    const double tolerance = samePlace * resolution;
    const PointModel body = BodyOf(model, places);
    const std::vector<ScoredPose> motions = MotionsBetween(model, places, body, tolerance);
    const Judge judge(model, places, tolerance);
    for (const SymmetryGuess &guess : GuessSymmetries(body, motions, tolerance)) {
        if (guess.symmetry.IsHelical() && places.size() < 3)
            continue;
        const PlaceSymmetry judged = judge.Judged(guess);
        const std::size_t order = OrderAmong(judged.symmetry, places.size());
        const std::size_t bestOrder = OrderAmong(best.symmetry, places.size());
        const bool isLarger = order > bestOrder || (order == bestOrder && judged.share > best.share);
        if (judged.share >= minPlaceShare && isLarger)
            best = judged;
    }
    return best;
}

} // namespace placement
