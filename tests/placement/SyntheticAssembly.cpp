#include "SyntheticAssembly.h"

#include <algorithm>
#include <numbers>

using namespace placement;

namespace {

constexpr int helixReach = 3;

double NearestCopy(const std::vector<Motion> &motions, const Point &centre) {
    double nearest = 1e9;
    for (const Motion &motion : motions)
        if (const double distance = Length(motion * centre - centre); distance > 1e-3)
            nearest = std::min(nearest, distance);
    return nearest;
}

} // namespace

SyntheticAssembly::SyntheticAssembly(const std::string &name, std::size_t residues, unsigned seed)
    : symmetry(ReadSymmetry(name).value()) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> offset(-20, 20);
    frame = {RandomRotation(random), {offset(random), offset(random), offset(random)}};
    const std::vector<Motion> motions = MotionsOf(symmetry, frame, helixReach);
    copies = motions.size();
    const double radius = 4 + 3.2 * std::cbrt(double(residues));
    const Point direction = Unit({0.9, 0.25, 0.45});
    double distance = radius;
    const auto centreAt = [&](double r) { return frame.centre + frame.rotation * (r * direction); };
    while (!symmetry.IsHelical() && !symmetry.IsNone() &&
           NearestCopy(motions, centreAt(distance)) < 1.55 * radius)
        distance += 1;
    const std::vector<ModelAtom> model = RandomModel(residues, seed);
    const Matrix turn = RandomRotation(random);
    const Point middle = turn * MakePointModel(model).centre;
    subunit = Moved(model, turn, centreAt(distance) - middle);
    for (const Motion &motion : motions) {
        const std::vector<ModelAtom> copy = Moved(subunit, motion.rotation, motion.translation);
        atoms.insert(atoms.end(), copy.begin(), copy.end());
    }
}

double SyntheticAssembly::AngleFromMainAxis(const Pose &other) const {
    const Point axis = other.rotation * Point{0, 0, 1};
    std::vector<Point> axes;
    for (const SymmetryOperator &op : OperatorsOf(symmetry))
        axes.push_back(frame.rotation * (op.rotation * Point{0, 0, 1}));
    if (symmetry.kind == SymmetryKind::Dihedral && symmetry.fold == 2)
        for (const Point &p : {Point{1, 0, 0}, Point{0, 1, 0}})
            axes.push_back(frame.rotation * p);
    double least = 180;
    for (const Point &a : axes)
        least = std::min(least,
                         std::atan2(Length(Cross(a, axis)), std::abs(Dot(a, axis))) * 180 / std::numbers::pi);
    return least;
}

double SyntheticAssembly::DistanceFromCentre(const Pose &other) const {
    const Point off = other.centre - frame.centre, axis = frame.rotation * Point{0, 0, 1};
    const bool isLine = symmetry.kind == SymmetryKind::Cyclic || symmetry.IsHelical();
    return Length(isLine ? off - Dot(off, axis) * axis : off);
}
