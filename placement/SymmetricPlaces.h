#pragma once

#include "placement/FindPlaces.h"
#include "placement/MapSymmetry.h"
#include "placement/PlaceSymmetry.h"

namespace placement {

/// What a symmetry that was used follows from.
enum class SymmetrySource {
    Map,    ///< the map's own density
    Places, ///< the places of the model that were found without a symmetry
    Both,   ///< what the map shows best, not surely, relates all of these places
    Given,  ///< the request alone: in the mean over the copies a place stands out more than in the map
};

/// A symmetry that was used.
struct UsedSymmetry {
    Symmetry symmetry;
    Pose frame;
    SymmetrySource source = SymmetrySource::Map;
    std::size_t places = 0; ///< different ones that were found: each has its copies
    std::size_t copies = 0; ///< of all of them, as far as they lie in the map
};

/// Why a symmetry was not used.
enum class NotUsed {
    NotFound,   ///< neither the map nor the places have it
    NoPlace,    ///< in the map's mean over its copies no place stands out
    NotJudged,  ///< the map is sharpened so much that nothing is sure
    NotFinished ///< the search was cancelled before
};

/// Places of a model in a symmetric map.
struct SymmetricResult {
    /// With a symmetry that was used: the copies of the first place, of the second, …, and behind them places
    /// that were not found, once each. Scores are those in the map's mean over all copies. Otherwise what
    /// FindPlaces says.
    PlacementResult placement;
    MapSymmetry ofMap;
    PlaceSymmetry ofPlaces;
    std::optional<UsedSymmetry> used;
    NotUsed reason = NotUsed::NotFound; ///< where none was used
};

/// Finds the places of a model and the symmetry of the map, and the places anew by it.
///
/// The symmetry is the one that is asked for, or the largest one that the map shows by itself (MapSymmetry.h)
/// or that the places have which are found without it (PlaceSymmetry.h). The model is then searched for in
/// the mean of the map over all copies (MapAverage.h), in one asymmetric unit; places of which one is
/// another's copy are one. Each place that is found is refined on the sum of its copies' scores in the map
/// itself, and with the first one the axis, the centre, and a helix' rise and twist, but for what the request
/// holds.
///
/// Throws as FindPlaces does.
SymmetricResult FindSymmetricPlaces(const VolumeView &map, const std::vector<ModelAtom> &atoms,
                                    const PlacementParameters &parameters, const SymmetryRequest &request,
                                    Monitor &monitor);

} // namespace placement
