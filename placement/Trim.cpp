#include "placement/Trim.h"

#include "placement/CoarseSearch.h"
#include "placement/Constants.h"
#include "placement/Filter.h"
#include "placement/Spectrum.h"

#include <algorithm>

namespace placement {

namespace {

/// A box of voxels, from `first` up to and without `end` along each axis.
struct Box {
    std::array<std::size_t, 3> first{}, end{};
};

/// The smallest box that holds all places of a volume; empty where there is none.
Box BoxOf(const std::vector<bool> &places, const Volume &volume) {
    Box box{volume.count, {}};
    std::size_t index = 0;
    for (std::size_t k = 0; k < volume.count[2]; ++k)
        for (std::size_t j = 0; j < volume.count[1]; ++j)
            for (std::size_t i = 0; i < volume.count[0]; ++i) {
                if (!places[index++])
                    continue;
                const std::array<std::size_t, 3> at{i, j, k};
                for (std::size_t axis = 0; axis < 3; ++axis) {
                    box.first[axis] = std::min(box.first[axis], at[axis]);
                    box.end[axis] = std::max(box.end[axis], at[axis] + 1);
                }
            }
    return box;
}

} // namespace

double ScanResolution(const PointModel &model, double resolution) {
    const double finest = std::max(finestScan, scanPerRadius * model.gyration);
    const double bySize = 2 * std::cbrt(residueVolume * double(model.residues) / scanCells);
    return std::max(resolution, std::min(finest, bySize));
}

double MaskWidth(const PointModel &model, double resolution) {
    return std::max(maskWidth * ScanResolution(model, resolution), maskWidthPerRadius * model.gyration);
}

double TrimCutOff(const PointModel &model, double resolution) {
    return gaussianEnd / MaskWidth(model, resolution);
}

Waves TrimWaves(const VolumeView &map, double resolution, double cutOff, unsigned threads) {
    return TransformPadded(map, padding * resolution, cutOff, threads);
}

VolumeView Trimmed(const VolumeView &map, const Waves &waves, const PointModel &model, double resolution,
                   unsigned threads) {
    const double width = MaskWidth(model, resolution), pad = padding * resolution;
    const Volume smoothed =
        Synthesise(waves, GaussianFilter(width, gaussianEnd / width), trimVoxel * width, threads);
    std::array<double, 3> lengths;
    for (std::size_t axis = 0; axis < 3; ++axis)
        lengths[axis] = double(map.count[axis]) * map.spacing[axis];
    const std::array<std::size_t, 3> inBox = VoxelsInBox(smoothed, lengths);
    const Box box = BoxOf(DensePlaces(smoothed, inBox, {}), smoothed);
    if (box.first[0] >= box.end[0])
        return map;
    std::array<std::size_t, 3> first, count;
    double share = 1;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double reach = model.radius + pad, voxel = map.spacing[axis];
        const double low = double(box.first[axis]) * smoothed.spacing[axis] - reach;
        const double high = double(box.end[axis]) * smoothed.spacing[axis] + reach;
        first[axis] = std::size_t(std::max(0.0, low / voxel));
        count[axis] = std::min(map.count[axis], std::size_t(std::ceil(high / voxel))) - first[axis];
        share *= double(count[axis]) / double(map.count[axis]);
    }
    return share < maxTrimmedShare ? map.Part(first, count) : map;
}

VolumeView Trimmed(const VolumeView &map, const PointModel &model, double resolution, unsigned threads) {
    return Trimmed(map, TrimWaves(map, resolution, TrimCutOff(model, resolution), threads), model, resolution,
                   threads);
}

} // namespace placement
