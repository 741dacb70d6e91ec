#pragma once

#include "Grid.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

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

struct SimulationSettings {
    double resolution = 0;  ///< Å
    double voxel = 0;       ///< spacing along x, y and z, Å
    double noise = 0;       ///< standard deviation of the noise, in those of the map's values without it
    std::uint64_t seed = 0; ///< of the noise
};

/// What scatters: a position in Å, and the number of electrons there.
struct Scatterer {
    VARNO::Vertex position;
    int electrons;
};

/// The atoms below the nodes, in model order. Atoms of an unknown element are left out, and counted.
std::vector<Scatterer> CollectScatterers(const std::vector<VARNO::Compound *> &nodes,
                                         std::size_t &unknownAtoms);

/// The box of a simulated map: it reaches beyond the atoms by the cut-off, and its first voxel lies on a
/// multiple of the voxel size along each axis.
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
constexpr double maxCoordinate = 1e6; ///< Å
constexpr double maxVoxelsAlong = 65535;

/// Why no map can be made with these settings, naming the option; empty when one can.
QString RefuseSettings(const SimulationSettings &settings);

/// Why a map of that box cannot be made, with the figures; empty when it can. A map file must hold it, and it
/// must not need more than three quarters of the machine's memory, nor more than `additionLimit` additions.
QString RefuseBox(const SimulationBox &box, std::size_t scatterers, const SimulationSettings &settings);

/// The most additions of an atom's density to a voxel that a map may take: about a quarter of an hour.
constexpr double additionLimit = 1e12;

/// The map, noise included. Throws std::bad_alloc.
std::unique_ptr<VARNO::Grid> SimulateMap(std::span<const Scatterer> scatterers, const SimulationBox &box,
                                         const SimulationSettings &settings);

} // namespace hosts
