#pragma once

#include "Vertex.h"

#include "placement/Fourier.h"

#include <optional>
#include <span>

namespace hosts {

/// What scatters: a position in Å, and the number of electrons there.
struct Scatterer {
    VARNO::Vertex position;
    int electrons;
};

/// What people do to a map between its reconstruction and its deposition, in this order: the waves are
/// weighted, a mask is laid round the atoms, the box is cut, the values change their sign.
struct MapTreatment {
    double sharpen = 0; ///< B in Å²: waves are multiplied by exp(B·k²/4); negative: blurred
    std::optional<double> lowPass = {}; ///< wavelength in Å below which waves are left out
    std::optional<double> mask = {};    ///< Å about the atoms that a mask leaves as they are
    double maskEdge = 0;                ///< Å over which the mask then falls to 0, half a cosine
    std::optional<double> margin = {};  ///< Å between the outermost atoms and the box's faces
    bool invert = false;                ///< density becomes negative

    bool Filters() const { return sharpen != 0 || lowPass; }
    /// How far from an atom the mask ends, Å; 0 without one.
    double MaskReach() const { return mask ? *mask + maskEdge : 0; }
};

constexpr double minMask = 0.1, maxMask = 1000; ///< Å
constexpr double maxMargin = 10000;             ///< Å

/// The natural logarithm of what sharpening multiplies the finest wave by that voxels (Å) can hold: values in
/// single precision end at exp(88).
double SharpeningExponent(double bFactor, double voxel);
constexpr double maxSharpeningExponent = 60;

/// All waves of a map, padded with zeros to a size that transforms fast.
placement::Waves WavesOf(const placement::Volume &map);

/// Treats a map of those atoms, at least one, in place. The low-pass filter falls from 1 to 0 by half a
/// cosine from 0.9 to 1.1 times its wavenumber. The margin only cuts: a box that ends nearer to the atoms
/// stays.
void Treat(placement::Volume &map, std::span<const Scatterer> atoms, const MapTreatment &treatment);

} // namespace hosts
