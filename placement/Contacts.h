#pragma once

#include "placement/Cells.h"
#include "placement/PointModel.h"

#include <span>

namespace placement {

/// The centres of a model's residues in a pose: of their backbones where they have one.
std::vector<Point> ResiduesAt(const PointModel &model, const Pose &pose);

/// How many residues of one model are near those of others.
struct Contacts {
    std::size_t contacts = 0; ///< within 8 Å
    std::size_t clashes = 0;  ///< of these within 3 Å, nearer than backbones come
};

/// Residues that stand in place, in cells of space.
class StandingResidues {
public:
    explicit StandingResidues(std::span<const Point> residues);

    /// How many of the given residues they touch.
    Contacts ContactsOf(std::span<const Point> residues) const;

private:
    std::vector<Point> m_residues;
    Cells m_cells;
};

/// Whether two models cannot both stand where they do: more than a tenth of the residues of one of them
/// clash with the other.
bool Exclude(std::span<const Point> a, std::span<const Point> b);

} // namespace placement
