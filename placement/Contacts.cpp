#include "placement/Contacts.h"

#include "placement/Constants.h"

namespace placement {

std::vector<Point> ResiduesAt(const PointModel &model, const Pose &pose) {
    std::vector<Point> residues;
    residues.reserve(model.residues);
    // A residue's first point is that of its backbone.
    for (std::size_t i = 0; i < model.points.size(); ++i)
        if (model.residue[i] == residues.size())
            residues.push_back(pose.rotation * model.points[i] + pose.centre);
    return residues;
}

StandingResidues::StandingResidues(std::span<const Point> residues)
    : m_residues(residues.begin(), residues.end())
    , m_cells(contactDistance) {
    for (std::size_t i = 0; i < m_residues.size(); ++i)
        m_cells.Add(m_residues[i], i);
}

Contacts StandingResidues::ContactsOf(std::span<const Point> residues) const {
    Contacts number;
    for (const Point &p : residues) {
        const auto isWithin = [&](double distance) {
            return m_cells.AnyNear(p, [&](std::size_t i) { return Length(m_residues[i] - p) < distance; });
        };
        if (isWithin(contactDistance)) {
            ++number.contacts;
            number.clashes += isWithin(clashDistance) ? 1 : 0;
        }
    }
    return number;
}

bool Exclude(std::span<const Point> a, std::span<const Point> b) {
    const auto clash = [](std::span<const Point> moving, std::span<const Point> standing) {
        return double(StandingResidues(standing).ContactsOf(moving).clashes) >
               maxClashShare * double(moving.size());
    };
    return clash(a, b) || clash(b, a);
}

} // namespace placement
