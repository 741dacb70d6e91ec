#pragma once

#include "placement/Motion.h"

#include <optional>
#include <span>

namespace placement {

/// One end of a known connection: a residue of a part, or of what stands already.
struct ConnectionEnd {
    std::optional<std::size_t> part; ///< not set: of what stands already
    Point position; ///< Å, in the part's coordinates as they were given, or in the map's frame
};

/// Two residues that are known to be near each other, by a cross-link or a linker.
struct Connection {
    ConnectionEnd a, b;
    double maxDistance = 0; ///< Å
};

/// A copy of a part: x' = motion·x.
struct PartInPlace {
    std::size_t part = 0;
    Motion motion;
};

/// The shortest distance between the ends over all copies, Å: any copy of the one part to any of the other.
/// Nothing where a part has no copy.
std::optional<double> ShortestDistance(const Connection &connection, std::span<const PartInPlace> copies);

/// How many connections hold among the copies.
std::size_t NumberHeld(std::span<const Connection> connections, std::span<const PartInPlace> copies);

} // namespace placement
