#pragma once

#include "placement/Motion.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace placement {

enum class SymmetryKind { Cyclic, Dihedral, Tetrahedral, Octahedral, Icosahedral, Helical };

/// A point group, or a helix: which motions lay an assembly upon itself.
///
/// The group's own frame has its main axis along z and its centre at the origin. Dn has a twofold axis along
/// x; T and I have twofold axes along x, y and z, O fourfold ones; I has fivefold axes along (0, ±1, ±φ). A
/// Pose, the "frame", tells where that stands: a point p of the group's frame lies at rotation·p + centre.
struct Symmetry {
    SymmetryKind kind = SymmetryKind::Cyclic;
    unsigned fold = 1; ///< n of Cn and Dn; of a helix that of its axis, mostly 1
    double rise = 0;   ///< of a helix, Å, greater than 0
    double twist = 0;  ///< of a helix, degrees, from -180 to 180: by the right hand along the rise

    bool IsHelical() const { return kind == SymmetryKind::Helical; }
    /// C1: no symmetry.
    bool IsNone() const { return kind == SymmetryKind::Cyclic && fold == 1; }
};

/// The highest fold of an axis that is understood.
constexpr unsigned maxFold = 60;

/// Reads "C7", "D2", "T", "O", "I", "H:27.6,-166.6" (rise in Å and twist in degrees) or "H:27.6,-166.6,C2";
/// in capitals or not. Nothing for other texts, a fold of 0 or above 60, a rise that is not above 0 or a
/// number that is not finite.
std::optional<Symmetry> ReadSymmetry(std::string_view text);

/// "C7", "T", "H:27.6,-166.6": rise and twist with two decimals.
std::string NameOf(const Symmetry &symmetry);

/// One of a group's operators in the group's own frame: a rotation, and behind it as many steps along the
/// helix, whose rise and twist are not part of it.
struct SymmetryOperator {
    Matrix rotation{1, 0, 0, 0, 1, 0, 0, 0, 1};
    int steps = 0;
};

/// The operators, the one that moves nothing first. Of a helix, which has no end, those of up to `reach`
/// steps to either side; otherwise `reach` is left out of account.
std::vector<SymmetryOperator> OperatorsOf(const Symmetry &symmetry, int reach = 0);

/// An operator as a motion, where the group stands in a frame.
Motion MotionOf(const SymmetryOperator &op, const Symmetry &symmetry, const Pose &frame);
std::vector<Motion> MotionsOf(const Symmetry &symmetry, const Pose &frame, int reach = 0);

} // namespace placement
