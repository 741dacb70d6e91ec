#pragma once

#include "placement/Motion.h"

#include <vector>

namespace placement {

/// A part of space that the motions of a symmetry bring everywhere, once: the points that are nearer to a
/// reference than all of their copies are (a Dirichlet domain).
class AsymmetricUnit {
public:
    /// Near a point, which should lie on no axis. Without motions it is all of space.
    AsymmetricUnit(std::vector<Motion> motions, const Point &reference)
        : m_motions(std::move(motions))
        , m_reference(reference) {}

    /// Whether a point lies in it, or up to about `margin` Å outside of it.
    bool Holds(const Point &p, double margin) const;

private:
    std::vector<Motion> m_motions;
    Point m_reference;
};

} // namespace placement
