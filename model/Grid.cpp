#include "Grid.h"

namespace VARNO {

Grid::Grid(std::string name, const Vector<unsigned, 3> &dimensions, const Vector<float, 3> &origin,
           const Vector<float, 3> &spacing, const Vector<float, 3> &angles)
    : m_name(std::move(name))
    , m_dimensions(dimensions)
    , m_origin(origin)
    , m_spacing(spacing)
    , m_angles(angles)
    , m_values(std::size_t(dimensions[0]) * dimensions[1] * dimensions[2]) {}

Vertex Grid::GetPoint(unsigned i, unsigned j, unsigned k) const {
    return Vertex(m_origin[0] + float(i) * m_spacing[0], m_origin[1] + float(j) * m_spacing[1],
                  m_origin[2] + float(k) * m_spacing[2], false);
}

void Grid::Discard() {
    m_dimensions = {};
    m_values = {};
}

} // namespace VARNO
