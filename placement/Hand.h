#pragma once

#include "placement/FindPlaces.h"

namespace placement {

/// The hand of a map. A reconstruction from projections is as good as its mirror image, in which every
/// structure is wrong; at low resolution it is not to be seen.
enum class Hand {
    AsGiven,  ///< the map has the right hand
    Mirrored, ///< the map is the mirror image of the right one
    Unknown,
};

/// Both hands of a map, searched for one model.
///
/// The mirrored map is the map with its voxels in the opposite order along x, in the same box: what lay at x
/// lies at 2·origin.x + (nx - 1)·sx - x.
struct HandResult {
    Hand hand = Hand::Unknown;
    double asGiven = 0.5;     ///< probability that the map has the right hand
    PlacementResult given;    ///< places in the map as it is
    PlacementResult mirrored; ///< places in the mirrored map, in its coordinates
};

/// The probability that the first of two hands is right, from how sure the best place in each is.
///
/// In the wrong hand the best place is there by chance, in the right one it may be. Of E wrong places that
/// are expected to score as well, the odds of a true place are 1 to 3E, so that it is there by chance with
/// the probability q = 3E / (1 + 3E). Both hands being as likely before, Bayes' theorem gives
///
///     P = q2 / (q1 + q2).
double FirstHand(const Confidence &first, const Confidence &second);

/// Searches the map and the mirrored map, as FindPlaces does; `parameters` are in the coordinates of the map
/// as it is, those of the neighbours too. A cancelled search tells no hand.
HandResult FindHand(const VolumeView &map, const std::vector<ModelAtom> &atoms,
                    const PlacementParameters &parameters, Monitor &monitor);

} // namespace placement
