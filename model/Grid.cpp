#include "Grid.h"

#include <new>

namespace VARNO {

namespace {

/// Asked in double, since the product of three counts need not fit into 64 bits.
std::size_t VoxelCount(const Vector<unsigned, 3> &n) {
    if (double(n[0]) * double(n[1]) * double(n[2]) > double(std::vector<float>().max_size()))
        throw std::bad_alloc();
    return std::size_t(n[0]) * n[1] * n[2];
}

} // namespace

Grid::Grid(std::string name, const Vector<unsigned, 3> &dimensions, const Vector<float, 3> &origin,
           const Vector<float, 3> &spacing, const Vector<float, 3> &angles)
    : m_name(std::move(name))
    , m_dimensions(dimensions)
    , m_origin(origin)
    , m_spacing(spacing)
    , m_angles(angles)
    , m_values(new float[VoxelCount(dimensions)]())
    , m_size(VoxelCount(dimensions)) {}

std::unique_ptr<Grid> Grid::Share() const {
    std::unique_ptr<Grid> grid(new Grid(m_name));
    grid->m_dimensions = m_dimensions;
    grid->m_origin = m_origin;
    grid->m_spacing = m_spacing;
    grid->m_angles = m_angles;
    grid->m_values = m_values;
    grid->m_size = m_size;
    return grid;
}

Vertex Grid::GetPoint(unsigned i, unsigned j, unsigned k) const {
    return Vertex(m_origin[0] + float(i) * m_spacing[0], m_origin[1] + float(j) * m_spacing[1],
                  m_origin[2] + float(k) * m_spacing[2], false);
}

void Grid::Discard() {
    m_dimensions = {};
    m_values = {};
    m_size = 0;
}

} // namespace VARNO
