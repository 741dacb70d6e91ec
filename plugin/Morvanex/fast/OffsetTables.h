#pragma once

#include "fast/LevelGrids.h"
#include "fit/Preparation.h"

#include <array>

namespace fast {

/// The T offsets along z, cut into units: neighbouring offsets that read one window of each row.
struct OffsetUnits {
    struct Unit {
        std::size_t first, count;
    };
    std::vector<Unit> units;
    WindowShape shape;
};

/// Cuts `count` offsets into units that are summed with the least work. `stride` is the distance of
/// neighbouring offsets in voxels.
OffsetUnits CutIntoUnits(std::size_t count, double stride);

/// The points of the target, turned, and the translations of one rotation.
class TurnedTarget {
public:
    explicit TurnedTarget(const fit::Preparation &fit);

    void Turn(const VARNO::Quaternion &rotation);

    std::size_t Points() const { return m_points; }
    /// Entries of an array with one entry per point.
    std::size_t PaddedPoints() const { return Padded(m_points); }
    /// Offsets along each direction.
    std::size_t Offsets() const { return m_offsets.size(); }
    /// The turned points' coordinates along an axis, Å.
    const float *Coordinates(std::size_t axis) const { return m_turned[axis].data(); }
    /// What is added to them at each offset, Å.
    const std::vector<float> &Translations(std::size_t axis) const { return m_translations[axis]; }

private:
    std::size_t m_points;
    VARNO::Vertex m_centre;
    std::vector<float> m_offsets;
    std::array<std::vector<double>, 3> m_coordinates;
    std::array<std::vector<float>, 3> m_turned, m_translations;
};

/// For one rotation: where in one grid each point lies at each offset.
class OffsetTables {
public:
    /// All must outlive it.
    OffsetTables(const GridLayout &layout, const TurnedTarget &target, const OffsetUnits &units);

    /// Fills the tables of the x and y axes for the target as it is turned now.
    void MapXY();
    /// Fills the table of the z axis, if that has not been done since the last `MapXY`.
    void MapZ();
    /// Fills the windows of the z axis. False when a unit's offsets do not fit into their windows, as happens
    /// only where coordinates are so large that their rounding is felt: then no window may be used.
    bool MapWindows();

    /// The points' indices along an axis at one offset; their sum over the axes is a voxel's index.
    const std::int32_t *Indices(std::size_t axis, std::size_t offset) const {
        return m_indices[axis].data() + offset * m_padded;
    }
    Windows WindowsOf(std::size_t unit);

private:
    void MapAxis(std::size_t axis);

    const GridLayout &m_layout;
    const TurnedTarget &m_target;
    const OffsetUnits &m_units;
    std::size_t m_padded;
    std::array<std::vector<std::int32_t>, 3> m_indices;
    bool m_zMapped = false;
    std::vector<std::int32_t> m_starts, m_scratch;
    std::vector<std::uint8_t> m_patterns;
};

} // namespace fast
