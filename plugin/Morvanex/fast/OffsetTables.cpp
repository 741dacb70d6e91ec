#include "fast/OffsetTables.h"

#include <algorithm>

namespace fast {

OffsetTables::OffsetTables(const GridLayout &layout, const RotatedTarget &target, const OffsetUnits &units)
    : m_layout(layout)
    , m_target(target)
    , m_units(units)
    , m_points(target.Points())
    , m_starts(m_points.Entries() * units.units.size())
    , m_scratch(m_points.Entries())
    , m_patterns(m_points.Entries() * units.units.size() * units.shape.PatternBytes()) {
    // Fillers read nothing.
    const std::size_t bytes = units.shape.PatternBytes(), entries = m_points.Entries();
    for (std::size_t unit = 0; unit < units.units.size(); ++unit)
        std::fill(m_patterns.data() + (unit * entries + m_points.Points()) * bytes,
                  m_patterns.data() + (unit + 1) * entries * bytes, std::uint8_t(0x80));
    for (auto &indices : m_indices)
        indices.resize(m_points.Entries() * target.Offsets());
}

Windows OffsetTables::WindowsOf(std::size_t unit) {
    return {m_units.shape, m_starts.data() + unit * m_points.Entries(), m_scratch.data(),
            m_patterns.data() + unit * m_points.Entries() * m_units.shape.PatternBytes()};
}

void OffsetTables::MapAxis(std::size_t axis) {
    for (std::size_t i = 0; i < m_target.Offsets(); ++i)
        MapCoordinates(m_target.Coordinates(axis), m_points, m_target.Translations(axis)[i],
                       m_layout.Axis(axis), m_indices[axis].data() + i * m_points.Entries());
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
        UnitTranslations translations;
        for (std::size_t i = 0; i < translations.size(); ++i)
            translations[i] = m_target.Translations(2)[first + std::min(i, count - 1)];
        fits &= fast::MapWindows(m_target.Coordinates(2), m_points, translations, count, m_layout.Axis(2),
                                 WindowsOf(unit));
    }
    return fits;
}

void OffsetTables::MapZ() {
    if (!m_zMapped)
        MapAxis(2);
    m_zMapped = true;
}

} // namespace fast
