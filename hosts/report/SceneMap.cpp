#include "hosts/report/SceneMap.h"

#include <algorithm>
#include <cmath>
#include <cstring>

using placement::Point;
using placement::Volume;
using placement::VolumeView;

namespace report {

namespace {

std::array<double, 3> Coordinates(const Point &point) {
    return {point.x, point.y, point.z};
}

VolumeView PartIn(const VolumeView &map, const Box &box) {
    std::array<std::size_t, 3> first{}, size = map.count;
    const auto low = Coordinates(box.low), high = Coordinates(box.high), origin = Coordinates(map.origin);
    for (unsigned axis = 0; axis < 3; ++axis) {
        const double last = double(map.count[axis] - 1);
        const double from = std::clamp((low[axis] - origin[axis]) / map.spacing[axis], 0.0, last);
        const double to = std::clamp((high[axis] - origin[axis]) / map.spacing[axis], 0.0, last);
        if (!(from < to))
            return map;
        first[axis] = std::size_t(from);
        size[axis] = std::size_t(std::ceil(to)) - first[axis] + 1;
    }
    return map.Part(first, size);
}

/// The mean of the voxels that are averaged to one; at the far border there may be fewer.
float MeanOf(const VolumeView &map, const std::array<std::size_t, 3> &first, std::size_t step) {
    double sum = 0;
    std::size_t number = 0;
    for (std::size_t k = first[2]; k < std::min(first[2] + step, map.count[2]); ++k)
        for (std::size_t j = first[1]; j < std::min(first[1] + step, map.count[1]); ++j)
            for (std::size_t i = first[0]; i < std::min(first[0] + step, map.count[0]); ++i, ++number)
                sum += double(map.values[map.Index(i, j, k)]);
    return float(sum / double(number));
}

std::size_t VoxelsAt(const VolumeView &map, std::size_t step) {
    std::size_t number = 1;
    for (const std::size_t count : map.count)
        number *= (count + step - 1) / step;
    return number;
}

/// Words of an MRC header, each of four bytes, counted from 1 as the format's description does.
class Header {
public:
    void Set(std::size_t word, std::int32_t value) { std::memcpy(&m_bytes[4 * (word - 1)], &value, 4); }
    void Set(std::size_t word, double value) {
        const auto single = float(value);
        std::memcpy(&m_bytes[4 * (word - 1)], &single, 4);
    }
    void SetText(std::size_t word, const std::string &text) {
        m_bytes.replace(4 * (word - 1), text.size(), text);
    }
    const std::string &Bytes() const { return m_bytes; }

private:
    std::string m_bytes = std::string(1024, '\0');
};

} // namespace

void Box::Include(const Point &point, double margin) {
    low = {std::min(low.x, point.x - margin), std::min(low.y, point.y - margin),
           std::min(low.z, point.z - margin)};
    high = {std::max(high.x, point.x + margin), std::max(high.y, point.y + margin),
            std::max(high.z, point.z + margin)};
}

SceneMap ReduceMap(const VolumeView &map, const Box &box, std::size_t maxVoxels) {
    const VolumeView part = PartIn(map, box);
    SceneMap scene{.volume = {}, .cropped = part.count};
    while (VoxelsAt(part, scene.step) > maxVoxels)
        ++scene.step;
    const double shift = 0.5 * double(scene.step - 1); // of a mean against the first of its voxels
    scene.volume.origin =
        part.origin + Point{shift * part.spacing[0], shift * part.spacing[1], shift * part.spacing[2]};
    for (unsigned axis = 0; axis < 3; ++axis) {
        scene.volume.count[axis] = (part.count[axis] + scene.step - 1) / scene.step;
        scene.volume.spacing[axis] = part.spacing[axis] * double(scene.step);
    }
    for (std::size_t k = 0; k < part.count[2]; k += scene.step)
        for (std::size_t j = 0; j < part.count[1]; j += scene.step)
            for (std::size_t i = 0; i < part.count[0]; i += scene.step)
                scene.volume.values.push_back(MeanOf(part, {i, j, k}, scene.step));
    return scene;
}

std::string ByteMap(const Volume &volume) {
    const auto [least, most] = std::ranges::minmax(volume.values);
    const double range = double(most) - double(least), step = range > 0 ? range / 255 : 1;
    Header header;
    const auto origin = Coordinates(volume.origin);
    for (unsigned axis = 0; axis < 3; ++axis) {
        const auto count = std::int32_t(volume.count[axis]);
        header.Set(1 + axis, count);
        header.Set(8 + axis, count);
        header.Set(11 + axis, double(count) * volume.spacing[axis]);
        header.Set(14 + axis, 90.0);
        header.Set(17 + axis, std::int32_t(axis + 1));
        header.Set(50 + axis, origin[axis]);
    }
    header.Set(20, double(least));
    header.Set(21, double(most));
    header.Set(23, 1);
    header.Set(40, -128);
    header.Set(41, 127);
    header.SetText(53, "MAP ");
    header.SetText(54, "\x44\x44");
    std::string bytes = header.Bytes();
    for (const float value : volume.values)
        bytes += char(std::lround((double(value) - double(least)) / step) - 128);
    return bytes;
}

} // namespace report
