#pragma once

#include "fast/GridLayout.h"
#include "fast/OffsetUnits.h"
#include "fast/RotatedTarget.h"

namespace fast {

/// For one rotation: where in one grid each point lies at each offset.
class OffsetTables {
public:
    /// All must outlive it.
    OffsetTables(const GridLayout &layout, const RotatedTarget &target, const OffsetUnits &units);

    /// Fills the tables of the x and y axes for the target as it is rotated now.
    void MapXY();
    /// Fills the table of the z axis, if that has not been done since the last `MapXY`.
    void MapZ();
    /// Fills the windows of the z axis. False when a unit's offsets do not fit into their windows, as happens
    /// only where coordinates are so large that their rounding is felt: then no window may be used.
    bool MapWindows();

    /// The points' indices along an axis at one offset; their sum over the axes is a voxel's index.
    const std::int32_t *Indices(std::size_t axis, std::size_t offset) const {
        return m_indices[axis].data() + offset * m_points.Entries();
    }
    Windows WindowsOf(std::size_t unit);

private:
    void MapAxis(std::size_t axis);

    const GridLayout &m_layout;
    const RotatedTarget &m_target;
    const OffsetUnits &m_units;
    PaddedPoints m_points;
    std::array<std::vector<std::int32_t>, 3> m_indices;
    bool m_zMapped = false;
    std::vector<std::int32_t> m_starts, m_scratch;
    std::vector<std::uint8_t> m_patterns;
};

} // namespace fast
