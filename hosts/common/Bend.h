#pragma once

#include "Vertex.h"

#include "placement/Geometry.h"

#include <cstdint>
#include <span>
#include <vector>

namespace hosts {

/// A smooth deformation, as between a model and the molecule that a map shows: a sum of waves one to two
/// times as long as the model's longest extent, in random directions, of which the rigid-body motion is taken
/// out.
class Bend {
public:
    /// Displaces these atoms by a root mean square of `rmsd` Å. The same seed gives the same deformation.
    /// Throws std::invalid_argument for atoms on one line, which every deformation turns or shifts.
    Bend(std::span<const VARNO::Vertex> atoms, double rmsd, std::uint64_t seed);

    /// Where a position comes to lie, Å.
    VARNO::Vertex operator()(const VARNO::Vertex &position) const;

private:
    struct Wave {
        placement::Point wavevector, amplitude; ///< rad/Å; relative, later Å
        double phase;                           ///< rad
    };

    placement::Point Displacement(const placement::Point &fromCentre) const;

    placement::Point m_centre;
    std::vector<Wave> m_waves;
    placement::Point m_shift, m_turn; ///< the waves' rigid-body motion: shift + turn × r
};

} // namespace hosts
