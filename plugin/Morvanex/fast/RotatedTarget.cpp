#include "fast/RotatedTarget.h"

#include <cmath>

using namespace VARNO;

namespace fast {

namespace {

/// The side of the cube of offsets.
std::size_t CubeSide(std::size_t offsets) {
    return std::size_t(std::llround(std::cbrt(double(offsets))));
}

} // namespace

RotatedTarget::RotatedTarget(const fit::Preparation &fit)
    : m_points(fit.target.points.size())
    , m_centre(fit.target.centre)
    , m_offsets(CubeSide(fit.offsets.size())) {
    // z runs fastest, and the cube is the same along each direction.
    for (std::size_t i = 0; i < m_offsets.size(); ++i)
        m_offsets[i] = fit.offsets[i][2];
    for (const unsigned axis : {0u, 1u, 2u}) {
        m_coordinates[axis].resize(m_points.Entries());
        for (std::size_t i = 0; i < m_points.Points(); ++i)
            m_coordinates[axis][i] = double(fit.target.points[i].first[axis]);
        m_rotated[axis].resize(m_points.Entries());
        m_translations[axis].resize(m_offsets.size());
    }
}

void RotatedTarget::Rotate(const Quaternion &rotation) {
    const RotationMatrix matrix(rotation);
    const auto centring = m_centre - matrix * m_centre;
    for (const unsigned axis : {0u, 1u, 2u})
        for (std::size_t i = 0; i < m_offsets.size(); ++i)
            m_translations[axis][i] = centring[axis] + m_offsets[i];
    RotatePoints(matrix.Entries(),
                 {m_coordinates[0].data(), m_coordinates[1].data(), m_coordinates[2].data()}, m_points,
                 {m_rotated[0].data(), m_rotated[1].data(), m_rotated[2].data()});
}

} // namespace fast
