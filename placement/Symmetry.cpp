#include "placement/Symmetry.h"

#include "base/Numbers.h"
#include "base/Words.h"

#include <algorithm>
#include <numbers>

namespace placement {

namespace {

constexpr double degree = std::numbers::pi / 180;

Matrix TurnAbout(const Point &axis, double angle) {
    return RotationBy(angle * Unit(axis));
}

bool IsSame(const Matrix &a, const Matrix &b) {
    constexpr double tolerance = 1e-6;
    for (std::size_t i = 0; i < 9; ++i)
        if (std::abs(a[i] - b[i]) > tolerance)
            return false;
    return true;
}

/// All products of the generators, the rotation by nothing first.
std::vector<Matrix> Closure(const std::vector<Matrix> &generators) {
    std::vector<Matrix> group{RotationBy({})};
    for (std::size_t i = 0; i < group.size(); ++i)
        for (const Matrix &generator : generators) {
            const Matrix product = generator * group[i];
            if (std::ranges::none_of(group, [&](const Matrix &known) { return IsSame(known, product); }))
                group.push_back(product);
        }
    return group;
}

std::vector<Matrix> CyclicRotations(unsigned fold) {
    std::vector<Matrix> rotations;
    for (unsigned i = 0; i < fold; ++i)
        rotations.push_back(TurnAbout({0, 0, 1}, 2 * std::numbers::pi * i / fold));
    return rotations;
}

std::vector<Matrix> RotationsOf(const Symmetry &symmetry) {
    const Matrix half = TurnAbout({0, 0, 1}, std::numbers::pi);
    const Matrix third = TurnAbout({1, 1, 1}, 2 * std::numbers::pi / 3);
    switch (symmetry.kind) {
    case SymmetryKind::Dihedral: {
        std::vector<Matrix> rotations = CyclicRotations(symmetry.fold);
        for (unsigned i = 0; i < symmetry.fold; ++i)
            rotations.push_back(rotations[i] * TurnAbout({1, 0, 0}, std::numbers::pi));
        return rotations;
    }
    case SymmetryKind::Tetrahedral:
        return Closure({half, third});
    case SymmetryKind::Octahedral:
        return Closure({TurnAbout({0, 0, 1}, std::numbers::pi / 2), third});
    case SymmetryKind::Icosahedral:
        return Closure({half, third, TurnAbout({0, 1, std::numbers::phi}, 2 * std::numbers::pi / 5)});
    case SymmetryKind::Cyclic:
    case SymmetryKind::Helical:
        break;
    }
    return CyclicRotations(symmetry.fold);
}

/// The fold behind a letter: "7" of "C7".
std::optional<unsigned> ReadFold(std::string_view text) {
    const std::optional<double> number = base::ReadNumber(text);
    const bool isDigits = std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
    if (!isDigits || !number || !(*number >= 1 && *number <= maxFold))
        return std::nullopt;
    return unsigned(*number);
}

/// What stands behind "H:".
std::optional<Symmetry> ReadHelix(std::string_view text) {
    Symmetry helix{SymmetryKind::Helical, 1, 0, 0};
    const std::size_t comma = text.find(','), second = text.find(',', comma + 1);
    if (comma == std::string_view::npos)
        return std::nullopt;
    const std::optional<double> rise = base::ReadNumber(text.substr(0, comma));
    const std::optional<double> twist = base::ReadNumber(text.substr(comma + 1, second - comma - 1));
    if (!rise || !twist || !std::isfinite(*rise) || !std::isfinite(*twist) || !(*rise > 0))
        return std::nullopt;
    helix.rise = *rise;
    helix.twist = std::remainder(*twist, 360);
    if (second == std::string_view::npos)
        return helix;
    const std::optional<Symmetry> about = ReadSymmetry(text.substr(second + 1));
    if (!about || about->kind != SymmetryKind::Cyclic)
        return std::nullopt;
    helix.fold = about->fold;
    return helix;
}

} // namespace

std::optional<Symmetry> ReadSymmetry(std::string_view text) {
    std::string upper(text);
    std::ranges::transform(upper, upper.begin(),
                           [](char c) { return c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c; });
    if (upper == "T")
        return Symmetry{SymmetryKind::Tetrahedral, 3};
    if (upper == "O")
        return Symmetry{SymmetryKind::Octahedral, 4};
    if (upper == "I")
        return Symmetry{SymmetryKind::Icosahedral, 5};
    if (upper.starts_with("H:"))
        return ReadHelix(std::string_view(upper).substr(2));
    if (!upper.starts_with('C') && !upper.starts_with('D'))
        return std::nullopt;
    const std::optional<unsigned> fold = ReadFold(std::string_view(upper).substr(1));
    if (!fold)
        return std::nullopt;
    // D1 is a twofold axis alone.
    if (upper.front() == 'D' && *fold == 1)
        return Symmetry{SymmetryKind::Cyclic, 2};
    return Symmetry{upper.front() == 'C' ? SymmetryKind::Cyclic : SymmetryKind::Dihedral, *fold};
}

std::string NameOf(const Symmetry &symmetry) {
    switch (symmetry.kind) {
    case SymmetryKind::Cyclic:
        return std::string("C").append(std::to_string(symmetry.fold));
    case SymmetryKind::Dihedral:
        return std::string("D").append(std::to_string(symmetry.fold));
    case SymmetryKind::Tetrahedral:
        return "T";
    case SymmetryKind::Octahedral:
        return "O";
    case SymmetryKind::Icosahedral:
        return "I";
    case SymmetryKind::Helical:
        break;
    }
    return "H:" + base::PlainFixed(symmetry.rise, 2) + "," + base::PlainFixed(symmetry.twist, 2) +
           (symmetry.fold > 1 ? ",C" + std::to_string(symmetry.fold) : "");
}

std::vector<SymmetryOperator> OperatorsOf(const Symmetry &symmetry, int reach) {
    std::vector<SymmetryOperator> operators;
    for (const Matrix &rotation : RotationsOf(symmetry))
        operators.push_back({rotation, 0});
    if (!symmetry.IsHelical())
        return operators;
    const std::size_t atOneHeight = operators.size();
    for (int distance = 1; distance <= reach; ++distance)
        for (const int steps : {distance, -distance})
            for (std::size_t i = 0; i < atOneHeight; ++i)
                operators.push_back({operators[i].rotation, steps});
    return operators;
}

Motion MotionOf(const SymmetryOperator &op, const Symmetry &symmetry, const Pose &frame) {
    const Motion into = MotionInto(frame);
    const Matrix twisted = TurnAbout({0, 0, 1}, op.steps * symmetry.twist * degree) * op.rotation;
    return into * Motion{twisted, {0, 0, op.steps * symmetry.rise}} * InverseOf(into);
}

std::vector<Motion> MotionsOf(const Symmetry &symmetry, const Pose &frame, int reach) {
    std::vector<Motion> motions;
    for (const SymmetryOperator &op : OperatorsOf(symmetry, reach))
        motions.push_back(MotionOf(op, symmetry, frame));
    return motions;
}

} // namespace placement
