#include "hosts/report/Slices.h"

#include "hosts/report/Contour.h"
#include "hosts/report/Markup.h"
#include "hosts/report/Packing.h"

#include <algorithm>
#include <array>
#include <cmath>

using placement::Point;
using placement::VolumeView;

namespace report {

namespace {

constexpr double traceDepth = 5;               ///< Å to either side of the plane
constexpr double sharpestPixel = 0.5;          ///< Å
constexpr std::size_t maxPixels = 150;         ///< along a side
constexpr double side = 300, labelHeight = 22; ///< of a slice's picture, in its own units
constexpr float darkest = 190;                 ///< grey steps from white, so that lines show on it

struct Plane {
    const char *name;
    unsigned across, down, through; ///< axes of the map: x is 0
};

constexpr std::array<Plane, 3> planes{{{"xy", 0, 1, 2}, {"xz", 0, 2, 1}, {"yz", 1, 2, 0}}};

double Along(const Point &point, unsigned axis) {
    return axis == 0 ? point.x : axis == 1 ? point.y : point.z;
}

/// The value at a position, linear between voxels; 0 outside of the map.
float ValueAt(const VolumeView &map, const std::array<double, 3> &position) {
    std::array<std::size_t, 3> first{};
    std::array<double, 3> part{};
    const std::array<double, 3> origin{map.origin.x, map.origin.y, map.origin.z};
    for (unsigned axis = 0; axis < 3; ++axis) {
        const double voxel = (position[axis] - origin[axis]) / map.spacing[axis];
        if (!(voxel >= 0 && voxel <= double(map.count[axis] - 1)))
            return 0;
        first[axis] = std::min(std::size_t(voxel), std::max<std::size_t>(map.count[axis], 2) - 2);
        part[axis] = voxel - double(first[axis]);
    }
    double value = 0;
    for (unsigned corner = 0; corner < 8; ++corner) {
        double weight = 1;
        std::array<std::size_t, 3> at = first;
        for (unsigned axis = 0; axis < 3; ++axis) {
            const bool upper = corner >> axis & 1;
            weight *= upper ? part[axis] : 1 - part[axis];
            at[axis] = std::min(at[axis] + (upper ? 1 : 0), map.count[axis] - 1);
        }
        if (weight > 0)
            value += weight * double(map.values[map.Index(at[0], at[1], at[2])]);
    }
    return float(value);
}

/// One slice: what it samples, and how positions lie in its picture.
class Slice {
public:
    Slice(const VolumeView &map, const Plane &plane, const Point &centre, double reach)
        : m_plane(plane)
        , m_centre(centre)
        , m_reach(reach) {
        const double finest =
            std::max(std::min({map.spacing[0], map.spacing[1], map.spacing[2]}), sharpestPixel);
        m_pixels = std::clamp(std::size_t(std::ceil(2 * reach / finest)), std::size_t(2), maxPixels);
        m_values = Sampled(map);
    }

    std::string Svg(double level, const SlicedModels &models) const {
        return "<image href=\"data:image/png;base64," + Base64(Picture()) + "\" width=\"" + Coordinate(side) +
               "\" height=\"" + Coordinate(side) + "\" preserveAspectRatio=\"none\" class=\"density\"/>" +
               "<path class=\"contour\" d=\"" + ContourPath(m_values, float(level)) + "\"/>" +
               "<path class=\"around\" d=\"" + TracePath(models.others) + "\"/>" +
               "<path class=\"trace\" d=\"" + TracePath(models.placed) + "\"/>" +
               (models.map ? MovedContour(*models.map) : "");
    }

    /// "xy plane, z = 12.0 Å".
    std::string Label() const {
        return std::string(m_plane.name) + " plane, " + "xyz"[m_plane.through] + " = " +
               Figure(Along(m_centre, m_plane.through), 1) + " Å";
    }

private:
    /// Pixels are the centres of squares that fill the slice.
    double PixelSize() const { return 2 * m_reach / double(m_pixels); }

    std::vector<float> Sampled(const VolumeView &map) const {
        std::vector<float> values;
        for (std::size_t y = 0; y < m_pixels; ++y)
            for (std::size_t x = 0; x < m_pixels; ++x)
                values.push_back(ValueAt(map, PositionOf(x, y)));
        return values;
    }

    std::string MovedContour(const std::pair<VolumeView, double> &moved) const {
        return "<path class=\"trace\" d=\"" + ContourPath(Sampled(moved.first), float(moved.second)) + "\"/>";
    }

    std::array<double, 3> PositionOf(std::size_t x, std::size_t y) const {
        std::array<double, 3> position{m_centre.x, m_centre.y, m_centre.z};
        position[m_plane.across] += (double(x) + 0.5) * PixelSize() - m_reach;
        position[m_plane.down] += m_reach - (double(y) + 0.5) * PixelSize();
        return position;
    }

    /// Nothing is white, the densest part dark, but for a few outliers.
    std::string Picture() const {
        std::vector<float> sorted = m_values;
        const auto densest = sorted.begin() + std::ptrdiff_t(0.997 * double(sorted.size() - 1));
        std::ranges::nth_element(sorted, densest);
        const float dense = *densest > 0 ? *densest : 1;
        std::vector<std::uint8_t> pixels;
        for (const float value : m_values)
            pixels.push_back(std::uint8_t(std::lround(255 - darkest * std::clamp(value / dense, 0.f, 1.f))));
        return GreyPng(pixels, m_pixels);
    }

    std::string ContourPath(const std::vector<float> &values, float level) const {
        const double scale = side / double(m_pixels);
        std::string path;
        for (const Line &line : Contours(values, m_pixels, level)) {
            char command = 'M';
            for (const PicturePoint &point : line) {
                path +=
                    command + Coordinate((point.x + 0.5) * scale) + ' ' + Coordinate((point.y + 0.5) * scale);
                command = 'L';
            }
        }
        return path;
    }

    bool IsNear(const Point &point) const {
        return std::abs(Along(point, m_plane.through) - Along(m_centre, m_plane.through)) <= traceDepth;
    }

    std::string TracePath(const std::vector<Trace> &traces) const {
        std::string path;
        for (const Trace &trace : traces) {
            bool isBegun = false;
            for (std::size_t i = 1; i < trace.size(); ++i) {
                const bool isDrawn =
                    IsNear(trace[i]) && IsNear(trace[i - 1]) && AreBound(trace[i - 1], trace[i]);
                if (isDrawn)
                    path += (isBegun ? "" : 'M' + InPicture(trace[i - 1])) + 'L' + InPicture(trace[i]);
                isBegun = isDrawn;
            }
        }
        return path;
    }

    /// Neighbours along a chain, nucleotides at most 8 Å apart; farther ones have a gap between them.
    static bool AreBound(const Point &a, const Point &b) { return Length(a - b) < 8; }

    std::string InPicture(const Point &point) const {
        const double scale = side / (2 * m_reach);
        const double x = Along(point, m_plane.across) - Along(m_centre, m_plane.across);
        const double y = Along(point, m_plane.down) - Along(m_centre, m_plane.down);
        return Coordinate((m_reach + x) * scale) + ' ' + Coordinate((m_reach - y) * scale);
    }

    Plane m_plane;
    Point m_centre;
    double m_reach;
    std::size_t m_pixels = 0;
    std::vector<float> m_values;
};

} // namespace

std::string SlicesSvg(const VolumeView &map, double level, const SlicedModels &models, const Point &centre,
                      double reach) {
    std::string pictures;
    for (const Plane &plane : planes) {
        const Slice slice(map, plane, centre, reach);
        const std::string label = Escaped(slice.Label());
        pictures += "<svg viewBox=\"0 0 " + Coordinate(side) + ' ' + Coordinate(side + labelHeight) +
                    "\" role=\"img\" aria-label=\"Slice, " + label + "\"><svg width=\"" + Coordinate(side) +
                    "\" height=\"" + Coordinate(side) + "\">" + slice.Svg(level, models) +
                    "</svg><text y=\"" + Coordinate(side + labelHeight - 6) + "\">" + label + "</text></svg>";
    }
    return "<div class=\"slices\">" + pictures + "</div>";
}

} // namespace report
