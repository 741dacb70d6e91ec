#pragma once

#include <cstdint>
#include <span>

namespace formats {

/// Turns the bytes of voxels in a map's mode into floats: 0 signed bytes, 1 signed 16 bit, 2 32-bit floats,
/// 6 unsigned 16 bit, 12 16-bit floats. `bytes` holds as many voxels as `values` has places.
void ConvertVoxels(std::span<const char> bytes, int mode, bool bigEndian, std::span<float> values);

/// The values as little-endian 32-bit floats, the bytes of mode 2.
void EncodeVoxels(std::span<const float> values, std::span<char> bytes);

/// Sets every value that is not finite to 0 and returns how many there were.
std::uint64_t ZeroNotFinite(std::span<float> values);

/// Of a map's values, those that are not finite left out; all 0 where no value is left.
struct MapStatistics {
    float minimum = 0, maximum = 0;
    double mean = 0;
    double deviation = 0; ///< standard deviation from the mean
};

MapStatistics StatisticsOf(std::span<const float> values);

} // namespace formats
