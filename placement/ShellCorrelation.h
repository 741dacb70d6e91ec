#pragma once

#include "placement/Volume.h"

#include <vector>

namespace placement {

/// The correlation of two maps in one shell of reciprocal space.
struct Shell {
    double wavenumber = 0; ///< middle of the shell, 1/Å
    double correlation = 0;
};

/// The Fourier shell correlation (Harauz & van Heel 1986) of two maps on the same lattice,
///
///     FSC(k) = sum of Re(F·conj(G)) / sqrt(sum of |F|² · sum of |G|²)
///
/// over shells of 1/(shortest edge), from the first one to the lattice's Nyquist frequency. Neither map is
/// masked: what only one of them holds counts against them.
std::vector<Shell> ShellCorrelation(const VolumeView &a, const VolumeView &b, unsigned threads);

/// The resolution, Å, at which a shell correlation first falls below a threshold, linear between shells. The
/// last shell's where it does not, and 0 where the first shell lies below it.
double ResolutionAt(const std::vector<Shell> &shells, double threshold);

} // namespace placement
