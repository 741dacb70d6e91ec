#pragma once

#include "placement/Cells.h"
#include "placement/ModelDensity.h"

#include <span>

namespace placement {

/// Parts of a complex that are already in place, in the map's frame.
///
/// Their density is no background for what is still to be placed: it is taken out of the map before the map's
/// spectrum is. And what is left of it rewards nothing: near them the filtered map is at most 0. A place that
/// touches them gains nothing by that, and is not forbidden: a true one often does.
class KnownNeighbours {
public:
    /// Atoms of one residue stand one after another. There may be none.
    explicit KnownNeighbours(std::span<const ModelAtom> atoms);

    /// Takes their density out of a map, with the amplitude that explains the most of it (ModelDensity.h).
    void SubtractFrom(Spectrum &spectrum, unsigned threads) const;

    /// Sets a filtered map to min(f, 0) within 4 Å of their residues.
    void KeepFree(Volume &filtered) const;

    /// Part of a model, by electrons, that lies within 4 Å of their residues in a pose.
    double Overlap(const PointModel &model, const Pose &pose) const;

private:
    std::vector<Scatterer> m_atoms;
    std::vector<Point> m_residues; ///< of each the centre of its backbone
    Cells m_cells;                 ///< of the residues
};

} // namespace placement
