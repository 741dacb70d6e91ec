#include "placement/MapPoints.h"

#include "placement/CoarseSearch.h"
#include "placement/Constants.h"
#include "placement/Filter.h"
#include "placement/Spectrum.h"

#include <algorithm>
#include <cstdint>

namespace placement {

namespace {

/// The low 21 bits of a number, two places apart.
std::uint64_t SpreadBits(std::uint64_t x) {
    x &= 0x1fffff;
    x = (x | x << 32) & 0x1f00000000ffff;
    x = (x | x << 16) & 0x1f0000ff0000ff;
    x = (x | x << 8) & 0x100f00f00f00f00f;
    x = (x | x << 4) & 0x10c30c30c30c30c3;
    return (x | x << 2) & 0x1249249249249249;
}

/// The number of a voxel along the curve.
std::uint64_t MortonNumber(std::size_t i, std::size_t j, std::size_t k) {
    return SpreadBits(i) | SpreadBits(j) << 1 | SpreadBits(k) << 2;
}

/// A voxel above the threshold.
struct DenseVoxel {
    std::uint64_t number;
    ModelAtom atom;
};

/// The voxels that lie in density, where the sharpened map is positive.
std::vector<DenseVoxel> DenseVoxels(const Volume &density, const Volume &sharpened,
                                    const std::array<std::size_t, 3> &inBox) {
    const double threshold = DensityThreshold(density, inBox);
    std::vector<DenseVoxel> voxels;
    for (std::size_t k = 0; k < inBox[2]; ++k)
        for (std::size_t j = 0; j < inBox[1]; ++j)
            for (std::size_t i = 0; i < inBox[0]; ++i) {
                const std::size_t voxel = density.Index(i, j, k);
                const float value = sharpened.values[voxel];
                if (double(density.values[voxel]) > threshold && value > 0)
                    voxels.push_back({MortonNumber(i, j, k),
                                      {.position = density.At(i, j, k), .electrons = double(value)}});
            }
    return voxels;
}

/// Makes all waves equally strong, down to 0 behind the resolution.
RadialCurve Whitening(const Spectrum &spectrum, double resolution) {
    const double floor = powerFloor * spectrum.strongest;
    return Sample(cutEnd / resolution, 0.01 / resolution, [&](double k) {
        return CutOff(k * resolution) *
               std::sqrt(SignalShare(k * resolution) / (spectrum.power.At(k) + floor));
    });
}

} // namespace

MapPoints PointsOf(const VolumeView &map, double resolution, unsigned threads) {
    MapPoints result{{}, resolution};
    const Spectrum spectrum = TransformMap(map, resolution, threads);
    if (!(spectrum.strongest > 0))
        return result;
    std::vector<DenseVoxel> voxels;
    for (;;) {
        const double voxel = mapPointVoxel * result.resolution, end = cutEnd / result.resolution;
        const Volume sharpened =
            Synthesise(spectrum.waves, Whitening(spectrum, result.resolution), voxel, threads);
        const Volume density =
            Synthesise(spectrum.waves, GaussianFilter(finestWidth * result.resolution, end), voxel, threads);
        voxels = DenseVoxels(density, sharpened, VoxelsInBox(density, spectrum.box));
        if (voxels.size() <= mapPoints)
            break;
        // A little more than needed, so that the next time is the last.
        result.resolution *= 1.02 * std::cbrt(double(voxels.size()) / double(mapPoints));
    }
    std::ranges::sort(voxels, {}, &DenseVoxel::number);
    for (DenseVoxel &voxel : voxels) {
        voxel.atom.residue = unsigned(result.points.size());
        result.points.push_back(voxel.atom);
    }
    return result;
}

} // namespace placement
