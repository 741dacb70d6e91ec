#include "placement/AsymmetricUnit.h"

#include <algorithm>

namespace placement {

bool AsymmetricUnit::Holds(const Point &p, double margin) const {
    const double distance = Length(p - m_reference);
    return std::ranges::all_of(m_motions, [&](const Motion &motion) {
        return distance <= Length(motion * p - m_reference) + margin;
    });
}

} // namespace placement
