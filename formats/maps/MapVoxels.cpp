#include "formats/maps/MapVoxels.h"

#include "base/Statistics.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace formats {

namespace {

/// The unsigned number that stands in sizeof(Bits) bytes.
template <class Bits>
Bits Load(const char *bytes, bool bigEndian) {
    std::uint32_t bits = 0;
    for (unsigned i = 0; i < sizeof(Bits); ++i) {
        const std::uint32_t byte = static_cast<unsigned char>(bytes[i]);
        bits |= byte << 8 * (bigEndian ? sizeof(Bits) - 1 - i : i);
    }
    return Bits(bits);
}

template <class Bits, class Value>
void Convert(std::span<const char> bytes, bool bigEndian, std::span<float> values, Value valueOf) {
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = valueOf(Load<Bits>(bytes.data() + i * sizeof(Bits), bigEndian));
}

/// IEEE 754 binary16: 1 bit sign, 5 bits exponent (bias 15), 10 bits fraction.
float HalfToFloat(std::uint16_t half) {
    const std::uint32_t sign = std::uint32_t(half & 0x8000) << 16, exponent = half >> 10 & 31,
                        fraction = half & 0x3ff;
    if (exponent == 0)
        return std::copysign(float(fraction) * 0x1p-24f, std::bit_cast<float>(sign));
    const std::uint32_t wide = exponent == 31 ? 255 : exponent + (127 - 15);
    return std::bit_cast<float>(sign | wide << 23 | fraction << 13);
}

} // namespace

void ConvertVoxels(std::span<const char> bytes, int mode, bool bigEndian, std::span<float> values) {
    using std::uint16_t, std::uint32_t, std::uint8_t;
    if (mode == 0)
        Convert<uint8_t>(bytes, bigEndian, values, [](uint8_t bits) { return float(std::int8_t(bits)); });
    else if (mode == 1)
        Convert<uint16_t>(bytes, bigEndian, values, [](uint16_t bits) { return float(std::int16_t(bits)); });
    else if (mode == 2)
        Convert<uint32_t>(bytes, bigEndian, values, [](uint32_t bits) { return std::bit_cast<float>(bits); });
    else if (mode == 6)
        Convert<uint16_t>(bytes, bigEndian, values, [](uint16_t bits) { return float(bits); });
    else
        Convert<uint16_t>(bytes, bigEndian, values, HalfToFloat);
}

void EncodeVoxels(std::span<const float> values, std::span<char> bytes) {
    for (std::size_t i = 0; i < values.size(); ++i)
        for (unsigned byte = 0; byte < 4; ++byte)
            bytes[4 * i + byte] = char(std::bit_cast<std::uint32_t>(values[i]) >> 8 * byte & 0xff);
}

std::uint64_t ZeroNotFinite(std::span<float> values) {
    std::uint64_t count = 0;
    for (float &value : values)
        if (!std::isfinite(value)) {
            value = 0;
            ++count;
        }
    return count;
}

MapStatistics StatisticsOf(std::span<const float> values) {
    const base::Statistics sums = base::StatisticsOf(values);
    if (sums.count == 0)
        return {};
    float minimum = std::numeric_limits<float>::infinity(), maximum = -minimum;
    for (const float value : values)
        if (std::isfinite(value)) {
            minimum = std::min(minimum, value);
            maximum = std::max(maximum, value);
        }
    return {minimum, maximum, sums.mean, sums.Deviation()};
}

} // namespace formats
