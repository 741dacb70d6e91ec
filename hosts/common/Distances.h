#pragma once

#include "hosts/common/PlaceInput.h"

#include "placement/Connections.h"

namespace hosts {

/// "A:120", or "FILE/A:120" where that is how it was named.
std::string TextOf(const ResidueName &residue);

/// Where the residues of known distances are, in the parts of an assembly or what stands already. Throws
/// ParameterError for one that none of them has, and for one that several have.
std::vector<placement::Connection> ConnectionsOf(const std::vector<DistanceOptions> &distances,
                                                 const PlaceInput &input);

} // namespace hosts
