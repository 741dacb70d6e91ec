#pragma once

#include "placement/Hand.h"
#include "placement/MovedMap.h"
#include "placement/ShellCorrelation.h"

namespace placement {

/// How one map lies in another.
struct MapInMapResult {
    Hand hand = Hand::Unknown; ///< of the map that was moved
    double asGiven = 0.5;      ///< probability that both have the same hand
    /// Of the hand that is right, or scores better where none can be told. The places' rotations and
    /// translations act on coordinates in the moved map, in its mirror image where that is the right one.
    PlacementResult result;
    Confidence given, mirrored; ///< how sure the best place of each hand is
    MapMotion motion;           ///< to the first place
    std::size_t points = 0;     ///< that stood for the moved map
    double resolution = 0;      ///< to which they hold its density, Å
    std::vector<Shell> shells;  ///< correlation of the maps in the first place, by shells
};

/// Finds where a map's density lies in another map, as FindPlaces does with the points of PointsOf: as it is
/// and as its mirror image. The resolution of the parameters is that of the coarser map. Throws
/// std::invalid_argument where the moved map has no density, and as FindPlaces does.
MapInMapResult FindMapInMap(const VolumeView &map, const VolumeView &moved,
                            const PlacementParameters &parameters, Monitor &monitor);

/// Brings a map that lies nearly right in another to the best place near by, as RefinePlace does, in the hand
/// that it has. Throws as FindMapInMap does.
MapInMapResult RefineMapInMap(const VolumeView &map, const VolumeView &moved,
                              const PlacementParameters &parameters, Monitor &monitor);

} // namespace placement
