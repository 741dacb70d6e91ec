#pragma once

#include "placement/Fourier.h"

namespace placement {

/// Where samples lie: (i, j, k) at origin + (i·sx, j·sy, k·sz).
struct Lattice {
    std::array<std::size_t, 3> count{};
    std::array<double, 3> spacing{}; ///< Å
    Point origin;
};

/// A map in reciprocal space, up to where the filter ends.
struct Spectrum {
    Waves waves;                 ///< of the padded box, the border's mean subtracted
    RadialCurve power;           ///< S(k): mean of |F|² over shells, smoothed
    double strongest = 0;        ///< the largest value of S
    double nyquist = 0;          ///< of the map's widest voxel, 1/Å
    double resolution = 0;       ///< Å
    double sharpShare = 0;       ///< part of the map's power beyond `cutEnd` / resolution
    double sharpness = 0;        ///< power of a wave there, of that of one between `cutBegin` and `cutEnd`
    std::array<double, 3> box{}; ///< lengths of the map itself, Å
    Lattice lattice;             ///< of the low-passed map, before it was padded
};

/// Transforms a map. Its own box is low-passed first, so that the noise of faces that cut through density
/// does not spread; then the box is padded by 0.8 resolutions over which opposite faces are joined by a
/// smooth step: density that the box cuts makes no edge, and so no false peaks.
///
/// A map whose values are all equal gives a spectrum with `strongest` 0.
Spectrum TransformMap(const VolumeView &map, double resolution, unsigned threads);

/// Whether all of a map's values are equal: the rounding of a transform leaves it waves that are not quite 0.
bool IsConstant(const VolumeView &map);

/// The waves of other density in the map's box: `rows` gives its samples on the spectrum's lattice, and its
/// faces are joined as the map's were. The wave at k = 0 holds its whole mean.
Waves TransformLike(const Spectrum &spectrum, const RowSource &rows, unsigned threads);
/// The waves up to `cutOff` (1/Å) of a map whose box is padded by `pad` Å in the same way, the border's mean
/// subtracted.
Waves TransformPadded(const VolumeView &map, double pad, double cutOff, unsigned threads);

/// S(k) of some waves: the mean of |F|² over shells of 1/(shortest edge), smoothed twice by [1 2 1]/4 in the
/// logarithm.
RadialCurve RadialPower(const Waves &waves, double end, unsigned threads);

} // namespace placement
