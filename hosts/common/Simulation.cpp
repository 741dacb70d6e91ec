#include "hosts/common/Simulation.h"

#include "base/Memory.h"

#include "base/Numbers.h"

#include "Atom.h"
#include "Collect.h"
#include "fit/Cost.h"
#include "formats/structures/AtomicNumber.h"
#include "hosts/common/NormalNumber.h"
#include "placement/Spectrum.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

using namespace VARNO;

namespace hosts {

namespace {

constexpr double cutOff = 5.0; ///< standard deviations of an atom's Gaussian

/// Of a voxel: its density in double, and its value in the grid and in the file that is written.
constexpr double bytesPerVoxel = sizeof(double) + 2 * sizeof(float);
/// What a Fourier transform takes beside these: its waves twice, and their box, which has a few voxels more.
constexpr double transformBytesPerVoxel = 5 * sizeof(float);

constexpr double solventBFactor = 200; ///< Å²
constexpr double noisePerSignal = 3;   ///< in power, where the FSC of half maps is 0.143
constexpr double volumePerAtom = 17;   ///< Å³, hydrogens along with the atom that they are bound to

double WidthOf(double bFactor) {
    return std::sqrt(bFactor / 8) / std::numbers::pi;
}

/// Standard deviation of an atom's Gaussian, Å.
double AtomWidth(const SimulationSettings &settings) {
    if (settings.bFactor)
        return WidthOf(*settings.bFactor);
    return settings.resolution / (std::numbers::pi * std::numbers::sqrt2);
}

/// Likewise of the solvent that it displaces.
double SolventWidth(const SimulationSettings &settings) {
    return std::hypot(AtomWidth(settings), WidthOf(solventBFactor));
}

double Reach(const SimulationSettings &settings) {
    return cutOff * (settings.solvent > 0 ? SolventWidth(settings) : AtomWidth(settings));
}

/// An atom's Gaussian along one axis, of height 1, at the voxels within the cut-off.
struct Profile {
    std::size_t first = 0;
    std::vector<double> values;
};

void SetProfile(Profile &profile, double centre, double first, double count, double voxel, double width) {
    const double reach = cutOff * width;
    const double low = std::max(0.0, std::ceil((centre - reach) / voxel - first));
    const double high = std::min(count - 1, std::floor((centre + reach) / voxel - first));
    profile.first = std::size_t(low);
    profile.values.clear();
    for (double i = low; i <= high; ++i) {
        const double distance = (first + i) * voxel - centre;
        profile.values.push_back(std::exp(-distance * distance / (2 * width * width)));
    }
}

/// Adds height · x(i) · y(j) · z(k): a Gaussian in space is the product of those along the axes, so that an
/// atom takes as many exponentials as its box has edges, not volume.
void AddProduct(std::vector<double> &density, const SimulationBox &box,
                const std::array<Profile, 3> &profiles, double height) {
    const auto &[x, y, z] = profiles;
    const auto nx = std::size_t(box.count[0]), ny = std::size_t(box.count[1]);
    for (std::size_t k = 0; k < z.values.size(); ++k)
        for (std::size_t j = 0; j < y.values.size(); ++j) {
            double *row = &density[x.first + nx * (y.first + j + ny * (z.first + k))];
            const double factor = height * y.values[j] * z.values[k];
            for (std::size_t i = 0; i < x.values.size(); ++i)
                row[i] += factor * x.values[i];
        }
}

/// Adds the atoms' Gaussians of that width (Å), each of the weight `scale` times its electrons.
void AddGaussians(std::vector<double> &density, std::span<const Scatterer> scatterers,
                  const SimulationBox &box, double voxel, double width, double scale) {
    const double height = std::pow(2 * std::numbers::pi * std::pow(width, 2), -1.5);
    std::array<Profile, 3> profiles;
    for (const Scatterer &atom : scatterers) {
        for (unsigned axis = 0; axis < 3; ++axis)
            SetProfile(profiles[axis], double(atom.position[axis]), box.first[axis], box.count[axis], voxel,
                       width);
        AddProduct(density, box, profiles, scale * height * atom.electrons);
    }
}

std::vector<double> Density(std::span<const Scatterer> scatterers, const SimulationBox &box,
                            const SimulationSettings &settings) {
    std::vector<double> density(std::size_t(box.Voxels()));
    AddGaussians(density, scatterers, box, settings.voxel, AtomWidth(settings), 1);
    if (settings.solvent > 0)
        AddGaussians(density, scatterers, box, settings.voxel, SolventWidth(settings), -settings.solvent);
    return density;
}

double StandardDeviation(const std::vector<double> &values) {
    double sum = 0, squares = 0;
    for (const double value : values)
        sum += value;
    const double mean = sum / double(values.size());
    for (const double value : values)
        squares += (value - mean) * (value - mean);
    return std::sqrt(squares / double(values.size()));
}

template <class Values>
void AddWhiteNoise(Values &values, double deviation, std::uint64_t seed) {
    std::mt19937_64 random(seed);
    for (auto &value : values)
        value += std::remove_reference_t<decltype(value)>(deviation * NormalNumber(random));
}

/// Voxels that the molecule fills.
double MoleculeVoxels(std::span<const Scatterer> scatterers, double voxel) {
    const auto atoms = std::ranges::count_if(scatterers, [](const Scatterer &s) { return s.electrons > 1; });
    return double(std::max<std::ptrdiff_t>(atoms, 1)) * volumePerAtom / (voxel * voxel * voxel);
}

/// The standard deviation of white noise whose power, in the shell at 1/resolution and in so many voxels, is
/// three times the map's.
double ResolutionNoise(const placement::Volume &map, double resolution, double voxels) {
    const placement::Waves waves = WavesOf(map);
    const double power = placement::RadialPower(waves, 1.1 / resolution, 1).At(1 / resolution);
    double all = 1; // voxels, padding included
    for (unsigned axis = 0; axis < 3; ++axis)
        all *= std::round(waves.length[axis] / map.spacing[axis]);
    // n independent values of variance v have the mean power n·v/N² where waves are means of N values.
    return std::sqrt(noisePerSignal * power / voxels) * all;
}

placement::Volume VolumeOf(const std::vector<double> &density, const SimulationBox &box, double voxel) {
    placement::Volume map;
    map.origin = {box.first[0] * voxel, box.first[1] * voxel, box.first[2] * voxel};
    for (unsigned axis = 0; axis < 3; ++axis) {
        map.count[axis] = std::size_t(box.count[axis]);
        map.spacing[axis] = voxel;
    }
    map.values.assign(density.begin(), density.end());
    return map;
}

std::unique_ptr<Grid> GridOf(const placement::Volume &map) {
    const auto voxel = float(map.spacing[0]);
    auto grid = std::make_unique<Grid>(
        "simulated",
        Vector<unsigned, 3>(unsigned(map.count[0]), unsigned(map.count[1]), unsigned(map.count[2])),
        Vector<float, 3>(float(map.origin.x), float(map.origin.y), float(map.origin.z)),
        Vector<float, 3>(voxel, voxel, voxel), Vector<float, 3>(90, 90, 90));
    std::ranges::copy(map.values, grid->Values().begin());
    return grid;
}

QString RefuseRange(const QString &option, double value, double least, double most, const QString &unit) {
    if (value >= least && value <= most)
        return {};
    return QString("%1 %2: must be a number from %3 to %4%5")
        .arg(option, base::GeneralNumber(value), base::GeneralNumber(least), base::GeneralNumber(most),
             unit.isEmpty() ? unit : ' ' + unit);
}

/// Waves that voxels of that size cannot hold can be given no noise and no other weight.
QString RefuseWaves(const SimulationSettings &settings) {
    if (settings.resolutionNoise > 0 && settings.voxel > settings.resolution / 2)
        return QString("--resolution-noise %1: voxels of %2 Å hold no waves of %3 Å, at most half of it")
            .arg(base::GeneralNumber(settings.resolutionNoise), base::GeneralNumber(settings.voxel),
                 base::GeneralNumber(settings.resolution));
    const double exponent = SharpeningExponent(settings.treatment.sharpen, settings.voxel);
    if (exponent > maxSharpeningExponent)
        return QString(
                   "--sharpen %1: would multiply the finest waves of voxels of %2 Å by exp(%3); the limit "
                   "is exp(%4)")
            .arg(base::GeneralNumber(settings.treatment.sharpen), base::GeneralNumber(settings.voxel),
                 base::GeneralNumber(exponent), base::GeneralNumber(maxSharpeningExponent));
    return {};
}

} // namespace

std::vector<Scatterer> CollectScatterers(const std::vector<Compound *> &nodes, std::size_t &unknownAtoms) {
    std::vector<Compound *> atoms;
    for (Compound *node : nodes)
        GetAtoms(node, atoms, true);
    std::vector<Scatterer> scatterers;
    for (const Compound *atom : atoms)
        if (const int electrons = formats::AtomicNumber(atom->GetLabel()))
            scatterers.push_back({atom->GetPosition(), electrons});
    unknownAtoms = atoms.size() - scatterers.size();
    return scatterers;
}

SimulationBox LayOutBox(std::span<const Scatterer> scatterers, const SimulationSettings &settings) {
    const double reach = std::max(Reach(settings), settings.treatment.margin.value_or(0));
    SimulationBox box;
    for (unsigned axis = 0; axis < 3; ++axis) {
        const auto [low, high] = std::ranges::minmax_element(
            scatterers, {}, [axis](const Scatterer &atom) { return atom.position[axis]; });
        box.first[axis] = std::floor((double(low->position[axis]) - reach) / settings.voxel);
        box.count[axis] =
            std::ceil((double(high->position[axis]) + reach) / settings.voxel) - box.first[axis] + 1;
    }
    return box;
}

QString RefuseSettings(const SimulationSettings &settings) {
    const MapTreatment &treatment = settings.treatment;
    for (const QString &problem :
         {RefuseRange("--resolution", settings.resolution, minResolution, maxResolution, "Å"),
          RefuseRange("--voxel", settings.voxel, minVoxel, maxVoxel, "Å"),
          RefuseRange("--noise", settings.noise, 0, maxNoise, "standard deviations"),
          RefuseRange("--b-factor", settings.bFactor.value_or(minBFactor), minBFactor, maxBFactor, "Å²"),
          RefuseRange("--solvent", settings.solvent, 0, 1, ""),
          RefuseRange("--resolution-noise", settings.resolutionNoise, 0, maxNoise, ""),
          RefuseRange("--sharpen", treatment.sharpen, -maxBFactor, maxBFactor, "Å²"),
          RefuseRange("--low-pass", treatment.lowPass.value_or(minResolution), minResolution, maxResolution,
                      "Å"),
          RefuseRange("--mask", treatment.mask.value_or(minMask), minMask, maxMask, "Å"),
          RefuseRange("--mask-edge", treatment.maskEdge, 0, maxMask, "Å"),
          RefuseRange("--margin", treatment.margin.value_or(0), 0, maxMargin, "Å"), RefuseWaves(settings)})
        if (!problem.isEmpty())
            return problem;
    return {};
}

QString RefuseBox(const SimulationBox &box, std::size_t scatterers, const SimulationSettings &settings) {
    const QString size = QString("%1 x %2 x %3 voxels")
                             .arg(base::GeneralNumber(box.count[0]), base::GeneralNumber(box.count[1]),
                                  base::GeneralNumber(box.count[2]));
    const auto gib = [](double bytes) { return base::FixedNumber(bytes / 0x1p30, 0, 1) + " GiB"; };
    const bool isTransformed = settings.resolutionNoise > 0 || settings.treatment.Filters();
    const double bytes = box.Voxels() * (bytesPerVoxel + (isTransformed ? transformBytesPerVoxel : 0));
    if (const double limit = base::MemoryLimit(); !(bytes <= limit))
        return QString(
                   "a map of %1 would need %2 of memory; the limit is %3, three quarters of this machine's")
            .arg(size, gib(bytes), gib(limit));
    for (unsigned axis = 0; axis < 3; ++axis) {
        const double origin = box.first[axis] * settings.voxel;
        if (!(box.count[axis] <= maxVoxelsAlong))
            return QString("a map of %1 is beyond what a file holds, %2 voxels along each axis")
                .arg(size, base::GeneralNumber(maxVoxelsAlong));
        if (!(std::abs(origin) <= maxCoordinate))
            return QString("the map would begin %1 Å from the frame's origin; the limit is %2 Å")
                .arg(base::GeneralNumber(std::abs(origin)), base::GeneralNumber(maxCoordinate));
    }
    const double reach = std::max(Reach(settings), settings.treatment.MaskReach());
    const double edge = 2 * reach / settings.voxel + 1;
    const double additions = double(scatterers) * std::min(box.Voxels(), edge * edge * edge);
    if (!(additions <= additionLimit))
        return QString("a map of %1 would take %2 additions of an atom's density to a voxel; the limit is %3")
            .arg(size, base::GeneralNumber(additions), base::GeneralNumber(additionLimit));
    return {};
}

std::unique_ptr<Grid> SimulateMap(std::span<const Scatterer> scatterers, const SimulationBox &box,
                                  const SimulationSettings &settings) {
    std::vector<double> density = Density(scatterers, box, settings);
    if (settings.noise > 0)
        AddWhiteNoise(density, settings.noise * StandardDeviation(density), settings.seed);
    placement::Volume map = VolumeOf(density, box, settings.voxel);
    density = {};
    if (settings.resolutionNoise > 0)
        AddWhiteNoise(map.values,
                      settings.resolutionNoise * ResolutionNoise(map, settings.resolution,
                                                                 MoleculeVoxels(scatterers, settings.voxel)),
                      settings.seed);
    Treat(map, scatterers, settings.treatment);
    return GridOf(map);
}

} // namespace hosts
