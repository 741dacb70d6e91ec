#pragma once

#include "placement/Geometry.h"

#include <span>
#include <vector>

namespace placement {

/// The centres of a model's residues, chain after chain.
struct ResidueCentres {
    std::vector<Point> positions; ///< Å
    std::vector<unsigned> chains; ///< of each position; those of one chain stand one after another
};

/// The rotations about `centre` that lay a model upon itself, the one by no angle first: those that bring its
/// first chain upon another chain of as many residues, and every chain upon some chain, with an RMSD of
/// residue centres below `tolerance` (Å). A single chain has none but the first: its own pseudo-symmetry is
/// no reason to call two of its poses one.
std::vector<Matrix> EqualTurns(const ResidueCentres &residues, const Point &centre, double tolerance);

/// Whether two models are one molecule: as many points, which lie upon one another with an RMSD below
/// `tolerance` (Å) after the best superposition.
bool AreEqual(std::span<const Point> a, std::span<const Point> b, double tolerance);

} // namespace placement
