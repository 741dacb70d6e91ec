#pragma once

#include "placement/Motion.h"
#include "placement/PointModel.h"
#include "placement/Spectrum.h"

#include <span>

namespace placement {

/// An atom as density.
struct Scatterer {
    Point position; ///< Å, the map's frame
    double electrons = 0;
};

/// A model's atoms after a motion.
std::vector<Scatterer> ScatterersOf(std::span<const ModelAtom> atoms, const Motion &motion = {});

/// The waves of atoms as Gaussians of 0.225 resolutions, in the box of a map and up to where its waves are
/// held. What lies outside the map's box does not take part.
Waves TransformAtoms(std::span<const Scatterer> atoms, const Spectrum &like, unsigned threads);

/// The amplitude of some waves that explains the most of others, least squares over shells, smoothed and
/// never below 0:
///
///     A(k) = Re<F·conj(Fs)> / <|Fs|²>.
///
/// Neither scale nor solvent nor sharpening of the map have to be known for it. `shells` gives their width
/// and number.
RadialCurve FittedAmplitude(const Waves &all, const Waves &part, const RadialCurve &shells);

/// Takes the waves, with an amplitude, out of a map, and takes its power anew.
void Subtract(const Waves &part, const RadialCurve &amplitude, Spectrum &spectrum, unsigned threads);

} // namespace placement
