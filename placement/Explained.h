#pragma once

#include "placement/ModelDensity.h"

namespace placement {

/// The part of a map's power up to its resolution that each of some models explains, with the amplitude that
/// explains the most of it by all of them: Σ A·Re(F·conj Fi) / Σ |F|². The parts add up to what they explain
/// together. A part is negative where a model stands against the density.
std::vector<double> ExplainedShares(const Spectrum &map, std::span<const std::vector<Scatterer>> models,
                                    unsigned threads);

/// What atoms leave of a map, on its own lattice: the map less their density with the amplitude that explains
/// the most of it. Waves beyond the map's resolution, which no model explains, stay in it.
Volume Unexplained(const VolumeView &map, std::span<const Scatterer> atoms, double resolution,
                   unsigned threads);

} // namespace placement
