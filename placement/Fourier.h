#pragma once

#include "placement/RadialCurve.h"
#include "placement/Volume.h"

#include <complex>

namespace placement {

/// The waves of a periodic box up to a cut-off along each axis. A box of lengths L (Å) holds the waves
/// k = (h/Lx, j/Ly, l/Lz) in 1/Å; kept are 0 <= h <= band[0], |j| <= band[1], |l| <= band[2] (those of
/// negative h are the conjugates), at index h + (band[0] + 1)·(row(j, 1) + (2·band[1] + 1)·row(l, 2)).
/// The box's value at its origin + p is the sum over all waves of F(k)·exp(2πi·k·p).
struct Waves {
    std::array<std::size_t, 3> band{};
    std::array<double, 3> length{}; ///< Å
    Point origin;
    LargeVector<std::complex<float>> values;

    /// Where frequency f of axis 1 or 2 stands, -band <= f <= band: negative ones lie behind the others.
    std::size_t Row(long f, std::size_t axis) const {
        return std::size_t(f < 0 ? f + 2 * long(band[axis]) + 1 : f);
    }
    /// The frequency that stands in a row.
    long Frequency(std::size_t row, std::size_t axis) const {
        return row > band[axis] ? long(row) - 2 * long(band[axis]) - 1 : long(row);
    }
    std::size_t Rows(std::size_t axis) const { return 2 * band[axis] + 1; }
};

/// Calls visit(k, index, weight) for each wave that is held in a section, the waves of one row of axis 2; k
/// is the wavenumber in 1/Å and the index that of `values`. A wave that stands for its conjugate too has the
/// weight 2, others 1.
template <class Visit>
void ForEachWaveIn(const Waves &waves, std::size_t section, Visit visit) {
    std::size_t index = (waves.band[0] + 1) * waves.Rows(1) * section;
    const double kz = double(waves.Frequency(section, 2)) / waves.length[2];
    for (std::size_t row = 0; row < waves.Rows(1); ++row) {
        const double ky = double(waves.Frequency(row, 1)) / waves.length[1];
        for (std::size_t h = 0; h <= waves.band[0]; ++h) {
            const double kx = double(h) / waves.length[0];
            visit(std::sqrt(kx * kx + ky * ky + kz * kz), index++, h > 0 ? 2.0 : 1.0);
        }
    }
}

/// Likewise for each wave of all sections.
template <class Visit>
void ForEachWave(const Waves &waves, Visit visit) {
    for (std::size_t section = 0; section < waves.Rows(2); ++section)
        ForEachWaveIn(waves, section, visit);
}

/// The smallest number of samples, at least `minimum`, that is even and has no prime factor above 7.
std::size_t TransformSize(std::size_t minimum);

/// One row of a box that is to be transformed: fills nx values of row (j, k). Called from several threads.
using RowSource = std::function<void(std::size_t j, std::size_t k, float *row)>;

/// The waves up to `cutOff` (1/Å) of a box of `count` samples; only they are ever held in memory, so that a
/// transform takes little more than what it keeps.
Waves Transform(const std::array<std::size_t, 3> &count, const std::array<double, 3> &spacing,
                const Point &origin, const RowSource &rows, double cutOff, unsigned threads);

/// What becomes of a volume's values between its voxels.
enum class Between {
    Nothing, ///< they are taken as they are
    /// They are interpolated linearly along each axis, which multiplies a wave by sinc²(k·voxel): each wave
    /// is divided by that beforehand, so that a coarse lattice does for a fine one.
    Linear,
};

/// The box's values on a lattice with voxels of at most `voxel` Å, each wave multiplied by `weight`(|k|);
/// waves that the lattice cannot hold, and those beyond the curve's end, are left out.
Volume Synthesise(const Waves &waves, const RadialCurve &weight, double voxel, unsigned threads,
                  Between between = Between::Nothing);

} // namespace placement
