#include "fast/OffsetTables.h"

#include <algorithm>
#include <cmath>
#include <limits>

using namespace VARNO;

namespace fast {

namespace {

/// Offsets that always fit into a window: the first stands at its beginning, each further one `stride` voxels
/// on, and the rounding to the nearest voxel may add one.
std::size_t OffsetsInWindow(const WindowShape &shape, double stride) {
    const double fitting = std::floor(double(shape.bytes - 2) / stride) + 1;
    return std::size_t(std::min(fitting, double(shape.MostOffsets())));
}

/// Instructions that four points of a row take on x86: to find and load the windows, and for each look-up to
/// permute and to sum; in a wide window its halves are folded too.
std::size_t WorkOf(const WindowShape &shape) {
    return 12 + shape.lookUps * (shape.bytes == 32 ? 12 : 10);
}

std::size_t RoundedUpRatio(std::size_t a, std::size_t b) {
    return (a + b - 1) / b;
}

/// The side of the cube of offsets.
std::size_t CubeSide(std::size_t offsets) {
    return std::size_t(std::llround(std::cbrt(double(offsets))));
}

} // namespace

OffsetUnits CutIntoUnits(std::size_t count, double stride) {
    std::size_t units = 0, least = std::numeric_limits<std::size_t>::max();
    OffsetUnits cut;
    for (const WindowShape shape : {WindowShape{16, 1}, {16, 2}, {32, 1}, {32, 2}}) {
        const std::size_t needed = RoundedUpRatio(count, OffsetsInWindow(shape, stride));
        const std::size_t work = needed * WorkOf(shape);
        if (shape.bytes <= LargestWindow() && work < least) {
            least = work;
            units = needed;
            cut.shape = shape;
        }
    }
    for (std::size_t first = 0; units > 0; --units) {
        const std::size_t size = RoundedUpRatio(count - first, units);
        cut.units.push_back({first, size});
        first += size;
    }
    return cut;
}

TurnedTarget::TurnedTarget(const fit::Preparation &fit)
    : m_points(fit.target.points.size())
    , m_centre(fit.target.centre)
    , m_offsets(CubeSide(fit.offsets.size())) {
    // z runs fastest, and the cube is the same along each direction.
    for (std::size_t i = 0; i < m_offsets.size(); ++i)
        m_offsets[i] = fit.offsets[i][2];
    for (const unsigned axis : {0u, 1u, 2u}) {
        m_coordinates[axis].resize(PaddedPoints());
        for (std::size_t i = 0; i < m_points; ++i)
            m_coordinates[axis][i] = double(fit.target.points[i].first[axis]);
        m_turned[axis].resize(PaddedPoints());
        m_translations[axis].resize(m_offsets.size());
    }
}

void TurnedTarget::Turn(const Quaternion &rotation) {
    const RotationMatrix matrix(rotation);
    const auto centring = m_centre - matrix * m_centre;
    for (const unsigned axis : {0u, 1u, 2u})
        for (std::size_t i = 0; i < m_offsets.size(); ++i)
            m_translations[axis][i] = centring[axis] + m_offsets[i];
    const double *points[] = {m_coordinates[0].data(), m_coordinates[1].data(), m_coordinates[2].data()};
    float *turned[] = {m_turned[0].data(), m_turned[1].data(), m_turned[2].data()};
    RotatePoints(matrix.Entries().data(), points, PaddedPoints(), turned);
}

OffsetTables::OffsetTables(const GridLayout &layout, const TurnedTarget &target, const OffsetUnits &units)
    : m_layout(layout)
    , m_target(target)
    , m_units(units)
    , m_padded(target.PaddedPoints())
    , m_starts(m_padded * units.units.size())
    , m_scratch(m_padded)
    , m_patterns(m_padded * units.units.size() * units.shape.PatternBytes()) {
    // Points that only fill the array up read nothing.
    const std::size_t bytes = units.shape.PatternBytes();
    for (std::size_t unit = 0; unit < units.units.size(); ++unit)
        std::fill(m_patterns.data() + (unit * m_padded + target.Points()) * bytes,
                  m_patterns.data() + (unit + 1) * m_padded * bytes, std::uint8_t(0x80));
    for (auto &indices : m_indices)
        indices.resize(m_padded * target.Offsets());
}

Windows OffsetTables::WindowsOf(std::size_t unit) {
    return {m_units.shape, m_starts.data() + unit * m_padded, m_scratch.data(),
            m_patterns.data() + unit * m_padded * m_units.shape.PatternBytes()};
}

void OffsetTables::MapAxis(std::size_t axis) {
    for (std::size_t i = 0; i < m_target.Offsets(); ++i)
        MapCoordinates(m_target.Coordinates(axis), m_padded, m_target.Translations(axis)[i],
                       m_layout.Axis(axis), m_indices[axis].data() + i * m_padded);
}

void OffsetTables::MapXY() {
    MapAxis(0);
    MapAxis(1);
    m_zMapped = false;
}

bool OffsetTables::MapWindows() {
    bool fits = true;
    for (std::size_t unit = 0; unit < m_units.units.size(); ++unit) {
        const auto [first, count] = m_units.units[unit];
        float translations[mostLookUps * lookUpOffsets];
        for (std::size_t i = 0; i < std::size(translations); ++i)
            translations[i] = m_target.Translations(2)[first + std::min(i, count - 1)];
        fits &= fast::MapWindows(m_target.Coordinates(2), m_target.Points(), m_padded, translations, count,
                                 m_layout.Axis(2), WindowsOf(unit));
    }
    return fits;
}

void OffsetTables::MapZ() {
    if (!m_zMapped)
        MapAxis(2);
    m_zMapped = true;
}

} // namespace fast
