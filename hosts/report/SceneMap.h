#pragma once

#include "placement/Volume.h"

#include <string>

namespace report {

/// A corner of a box, and the opposite one; Å, map frame.
struct Box {
    placement::Point low{1e30, 1e30, 1e30}, high{-1e30, -1e30, -1e30};

    bool IsEmpty() const { return low.x > high.x; }
    void Include(const placement::Point &point, double margin);
};

/// A map made small enough to be looked at in a browser.
struct SceneMap {
    placement::Volume volume;
    std::array<std::size_t, 3> cropped{}; ///< voxels of the map that are in it
    std::size_t step = 1;                 ///< voxels along each axis that were averaged to one
};

/// The part of the map in the box, all of it where the box is empty or leaves nothing, with neighbouring
/// voxels averaged until there are at most `maxVoxels`.
SceneMap ReduceMap(const placement::VolumeView &map, const Box &box, std::size_t maxVoxels);

/// The map as an MRC2014 file of mode 0, one byte for each voxel. Its range fills the 255 steps; ORIGIN is
/// the volume's, the start indices are 0. Words 40 and 41 of the header hold -128 and 127, by which NGL knows
/// that the bytes stand for the range from DMIN to DMAX.
std::string ByteMap(const placement::Volume &volume);

} // namespace report
