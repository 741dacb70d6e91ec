#pragma once

#include "placement/Assembly.h"
#include "placement/SymmetricPlaces.h"

namespace placement {

/// The copies that a symmetric search found as an assembly of one part, with their contacts and clashes with
/// one another and what each explains of the map. They are refined already, by their symmetry. Throws as
/// FindPlaces does.
AssemblyResult AssemblyOf(const SymmetricResult &found, const VolumeView &map,
                          const std::vector<ModelAtom> &atoms, const PlacementParameters &parameters);

} // namespace placement
