#include "hosts/common/MapTreatment.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <numbers>

using namespace placement;

namespace hosts {

namespace {

/// 1 up to `begin`, then half a cosine down to 0 at `end`.
double FallOff(double x, double begin, double end) {
    if (x <= begin)
        return 1;
    return x >= end ? 0 : 0.5 * (1 + std::cos(std::numbers::pi * (x - begin) / (end - begin)));
}

/// The finest wavenumber along each axis, 1/Å, and in the corners of the box of waves.
double Nyquist(double voxel) {
    return 0.5 / voxel;
}

double CornerWavenumber(double voxel) {
    return std::sqrt(3.0) * Nyquist(voxel);
}

double WeightAt(double k, const MapTreatment &treatment) {
    const double sharpened = std::exp(treatment.sharpen * k * k / 4);
    return treatment.lowPass ? sharpened * FallOff(k * *treatment.lowPass, 0.9, 1.1) : sharpened;
}

void Filter(Volume &map, const MapTreatment &treatment) {
    const double end = CornerWavenumber(map.spacing[0]);
    const RadialCurve weight = Sample(end, end / 2000, [&](double k) { return WeightAt(k, treatment); });
    const Volume filtered = Synthesise(WavesOf(map), weight, map.spacing[0], 1);
    for (std::size_t k = 0; k < map.count[2]; ++k)
        for (std::size_t j = 0; j < map.count[1]; ++j)
            std::copy_n(filtered.values.begin() + std::ptrdiff_t(filtered.Index(0, j, k)), map.count[0],
                        map.values.begin() + std::ptrdiff_t(map.Index(0, j, k)));
}

/// Indices of an axis' voxels that lie within a distance of a coordinate: from `first` on, below `end`.
struct IndexRange {
    std::size_t first, end;
};

IndexRange Around(double coordinate, double reach, double origin, double voxel, std::size_t count) {
    const double low = std::ceil((coordinate - reach - origin) / voxel);
    const double high = std::floor((coordinate + reach - origin) / voxel) + 1;
    const auto clamped = [count](double i) { return std::size_t(std::clamp(i, 0.0, double(count))); };
    return {clamped(low), clamped(high)};
}

Point PointOf(const VARNO::Vertex &v) {
    return {double(v[0]), double(v[1]), double(v[2])};
}

/// The square of each voxel's distance from the nearest atom, Å²; beyond `reach` it is infinite.
std::vector<float> SquaredDistances(const Volume &map, std::span<const Scatterer> atoms, double reach) {
    std::vector<float> squares(map.values.size(), std::numeric_limits<float>::infinity());
    for (const Scatterer &atom : atoms) {
        const Point p = PointOf(atom.position);
        const IndexRange x = Around(p.x, reach, map.origin.x, map.spacing[0], map.count[0]);
        const IndexRange y = Around(p.y, reach, map.origin.y, map.spacing[1], map.count[1]);
        const IndexRange z = Around(p.z, reach, map.origin.z, map.spacing[2], map.count[2]);
        for (std::size_t k = z.first; k < z.end; ++k)
            for (std::size_t j = y.first; j < y.end; ++j)
                for (std::size_t i = x.first; i < x.end; ++i) {
                    const Point d = map.At(i, j, k) - p;
                    float &square = squares[map.Index(i, j, k)];
                    square = std::min(square, float(Dot(d, d)));
                }
    }
    return squares;
}

void Mask(Volume &map, std::span<const Scatterer> atoms, const MapTreatment &treatment) {
    const std::vector<float> squares = SquaredDistances(map, atoms, treatment.MaskReach());
    for (std::size_t i = 0; i < squares.size(); ++i)
        map.values[i] *= float(FallOff(std::sqrt(double(squares[i])), *treatment.mask,
                                       std::max(*treatment.mask, treatment.MaskReach())));
}

/// The voxels of an axis from the last one outside the atoms' extent and the margin to the first one.
IndexRange Within(std::span<const Scatterer> atoms, unsigned axis, double margin, double origin, double voxel,
                  std::size_t count) {
    const auto [low, high] =
        std::ranges::minmax_element(atoms, {}, [axis](const Scatterer &atom) { return atom.position[axis]; });
    const double first = std::floor((double(low->position[axis]) - margin - origin) / voxel);
    const double last = std::ceil((double(high->position[axis]) + margin - origin) / voxel);
    const auto clamped = [count](double i) { return std::size_t(std::clamp(i, 0.0, double(count))); };
    return {clamped(first), clamped(last + 1)};
}

void Cut(Volume &map, std::span<const Scatterer> atoms, double margin) {
    const IndexRange x = Within(atoms, 0, margin, map.origin.x, map.spacing[0], map.count[0]);
    const IndexRange y = Within(atoms, 1, margin, map.origin.y, map.spacing[1], map.count[1]);
    const IndexRange z = Within(atoms, 2, margin, map.origin.z, map.spacing[2], map.count[2]);
    Volume part;
    part.count = {x.end - x.first, y.end - y.first, z.end - z.first};
    part.spacing = map.spacing;
    part.origin = map.At(x.first, y.first, z.first);
    for (std::size_t k = z.first; k < z.end; ++k)
        for (std::size_t j = y.first; j < y.end; ++j) {
            const auto row = map.values.begin() + std::ptrdiff_t(map.Index(x.first, j, k));
            part.values.insert(part.values.end(), row, row + std::ptrdiff_t(part.count[0]));
        }
    map = std::move(part);
}

} // namespace

double SharpeningExponent(double bFactor, double voxel) {
    return bFactor * CornerWavenumber(voxel) * CornerWavenumber(voxel) / 4;
}

Waves WavesOf(const Volume &map) {
    std::array<std::size_t, 3> padded;
    for (std::size_t axis = 0; axis < 3; ++axis)
        padded[axis] = TransformSize(map.count[axis]);
    const RowSource rows = [&](std::size_t j, std::size_t k, float *row) {
        std::fill_n(row, padded[0], 0.0f);
        if (j < map.count[1] && k < map.count[2])
            std::copy_n(map.values.begin() + std::ptrdiff_t(map.Index(0, j, k)), map.count[0], row);
    };
    return Transform(padded, map.spacing, map.origin, rows, CornerWavenumber(map.spacing[0]), 1);
}

void Treat(Volume &map, std::span<const Scatterer> atoms, const MapTreatment &treatment) {
    if (treatment.Filters())
        Filter(map, treatment);
    if (treatment.mask)
        Mask(map, atoms, treatment);
    if (treatment.margin)
        Cut(map, atoms, *treatment.margin);
    if (treatment.invert)
        std::ranges::transform(map.values, map.values.begin(), std::negate());
}

} // namespace hosts
