#pragma once

#include "SyntheticModel.h"

#include "placement/Symmetry.h"

#include <string>

/// Copies of a random model that touch one another, about an axis that stands askew beside the origin.
struct SyntheticAssembly {
    placement::Symmetry symmetry;
    placement::Pose frame;
    std::vector<placement::ModelAtom> subunit; ///< in its place
    std::vector<placement::ModelAtom> atoms;   ///< of all copies
    std::size_t copies = 0;

    /// `name` as ReadSymmetry takes it; a helix has seven copies for each of its fold. The same seed gives
    /// the same assembly.
    SyntheticAssembly(const std::string &name, std::size_t residues, unsigned seed);

    /// The angle between an axis and the nearest one that the assembly could as well be said to have,
    /// degrees.
    double AngleFromMainAxis(const placement::Pose &other) const;
    /// The distance from the centre, of a cyclic group or a helix from the axis, Å.
    double DistanceFromCentre(const placement::Pose &other) const;
};
