#pragma once

#include "Grid.h"

#include "hosts/common/MapTreatment.h"

#include <QString>

#include <cstdint>
#include <memory>

namespace hosts {

/// The density of a model at a resolution.
///
/// Every atom becomes a Gaussian of standard deviation s = R / (π·√2), about 0.225·R, R being the resolution
/// in Å: the one whose Fourier transform exp(-2·π²·s²·q²) has fallen to 1/e at the wavenumber q = 1/R. This
/// is the usual definition of a simulated map's resolution (`molmap` of UCSF Chimera has it as its default),
/// and the same as giving every atom the temperature factor B = 8·π²·s² = 4·R². With the atomic number Z as
/// its weight,
///
///     density(x) = sum over atoms of Z · (2·π·s²)^(-3/2) · exp(-|x - atom|² / (2·s²)),   electrons / Å³,
///
/// so that the density's integral is the number of electrons. Along each axis a Gaussian is cut off at 5 s,
/// where it has fallen to 4·10⁻⁶ of its height.
///
/// Bulk solvent lowers the contrast of slow waves. By Babinet's principle it is the negative of the model,
/// smoothed: the transform is multiplied by 1 - K·exp(-Bs·q²/4) with Bs = 200 Å² (Tronrud 1997), K being the
/// ratio of the solvent's density to the molecule's. In space each atom loses a wider Gaussian of weight K·Z.
///
/// Noise as strong as the resolution implies: a map has the resolution R where the FSC of its halves is
/// 0.143, which is a ratio 1/3 of signal to noise in power. White noise is added that makes it so in the
/// shell at 1/R, within the molecule's volume, 17 Å³ for each atom but hydrogen: the FSC is taken inside a
/// mask, and so the noise does not depend on the box.
///
/// The treatment of MapTreatment.h comes last.

struct SimulationSettings {
    double resolution = 0;  ///< Å
    double voxel = 0;       ///< spacing along x, y and z, Å
    double noise = 0;       ///< standard deviation of the noise, in those of the map's values without it
    std::uint64_t seed = 0; ///< of the noise

    std::optional<double> bFactor = {}; ///< of every atom, Å²; not set: 4·R²
    double solvent = 0;                 ///< K, 0 for a vacuum to 1 for no contrast
    double resolutionNoise = 0;         ///< noise in units of what the resolution implies
    MapTreatment treatment = {};
};

/// The atoms below the nodes, in model order. Atoms of an unknown element are left out, and counted.
std::vector<Scatterer> CollectScatterers(const std::vector<VARNO::Compound *> &nodes,
                                         std::size_t &unknownAtoms);

/// The box in which a map is simulated: it reaches beyond the atoms by the cut-off, or by the treatment's
/// margin where that is wider, and its first voxel lies on a multiple of the voxel size along each axis. A
/// margin that is narrower cuts the finished map.
struct SimulationBox {
    double first[3]; ///< of voxel (0, 0, 0), in voxels from the frame's origin: a whole number
    double count[3]; ///< voxels along x, y, z; whole numbers, possibly beyond what memory can hold

    double Voxels() const { return count[0] * count[1] * count[2]; }
};

/// The box around at least one scatterer.
SimulationBox LayOutBox(std::span<const Scatterer> scatterers, const SimulationSettings &settings);

/// What a map can be made with. A map file holds voxels of that size, at these distances from the frame's
/// origin, and so many of them along each axis.
constexpr double minResolution = 0.1, maxResolution = 1000; ///< Å
constexpr double minVoxel = 0.001, maxVoxel = 1000;         ///< Å
constexpr double maxNoise = 1000;
constexpr double minBFactor = 0.04, maxBFactor = 4e6; ///< Å²: those of the resolutions above
constexpr double maxCoordinate = 1e6;                 ///< Å
constexpr double maxVoxelsAlong = 65535;

/// Why no map can be made with these settings, naming the option; empty when one can.
QString RefuseSettings(const SimulationSettings &settings);

/// Why a map of that box cannot be made, with the figures; empty when it can. A map file must hold it, and it
/// must not need more than three quarters of the machine's memory, nor more than `additionLimit` additions.
QString RefuseBox(const SimulationBox &box, std::size_t scatterers, const SimulationSettings &settings);

/// The most additions of an atom's density to a voxel that a map may take: about a quarter of an hour.
constexpr double additionLimit = 1e12;

/// The map, noise and treatment included. Throws std::bad_alloc.
std::unique_ptr<VARNO::Grid> SimulateMap(std::span<const Scatterer> scatterers, const SimulationBox &box,
                                         const SimulationSettings &settings);

} // namespace hosts
