#pragma once

#include "placement/Volume.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace report {

/// The positions of a chain's residues, in their order; Å, map frame.
using Trace = std::vector<placement::Point>;

/// What slices show besides the density.
struct SlicedModels {
    std::vector<Trace> placed, others; ///< what is at the place, and what stands around it
    /// A map that was placed, and its level: its contour is drawn as the model.
    std::optional<std::pair<placement::VolumeView, double>> map{};
};

/// Three slices through a point of the map, along its planes xy, xz and yz, an SVG picture each: the density
/// in grey, its contour at the level, and the parts of the traces within 5 Å of the plane. Each reaches
/// `reach` Å from the point in every direction.
std::string SlicesSvg(const placement::VolumeView &map, double level, const SlicedModels &models,
                      const placement::Point &centre, double reach);

} // namespace report
