#pragma once

#include "placement/PointModel.h"
#include "placement/Symmetry.h"

#include <span>

namespace placement {

/// The symmetry that places of a model have among one another.
struct PlaceSymmetry {
    Symmetry symmetry;      ///< C1 where there is none
    Pose frame;             ///< where it stands
    std::size_t places = 0; ///< that were looked at
    /// Of the copies that the symmetry gives each place, the part that stands among the places; of a helix,
    /// of its neighbours along it, the ends left out.
    double share = 0;
    double rmsd = 0; ///< Å, of those copies from the places
};

/// Finds the largest group, or the helix, that brings most places upon others: within an RMSD of half the
/// resolution (Å). Two places that are related by a turn alone suffice for C2; a helix takes three.
PlaceSymmetry FindPlaceSymmetry(const PointModel &model, std::span<const Pose> places, double resolution);

} // namespace placement
