#include "hosts/common/Simulation.h"

#include "base/Memory.h"

#include "base/Numbers.h"

#include "Atom.h"
#include "Collect.h"
#include "fit/Cost.h"
#include "formats/structures/AtomicNumber.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <random>

using namespace VARNO;

namespace hosts {

namespace {

constexpr double cutOff = 5.0; ///< standard deviations of an atom's Gaussian

/// Of a voxel: its density in double, and its value in the grid and in the file that is written.
constexpr double bytesPerVoxel = sizeof(double) + 2 * sizeof(float);

double GaussianWidth(double resolution) {
    return resolution / (std::numbers::pi * std::numbers::sqrt2);
}

double Reach(const SimulationSettings &settings) {
    return cutOff * GaussianWidth(settings.resolution);
}

/// An atom's Gaussian along one axis, of height 1, at the voxels within the cut-off.
struct Profile {
    std::size_t first = 0;
    std::vector<double> values;
};

void SetProfile(Profile &profile, double centre, double first, double count,
                const SimulationSettings &settings) {
    const double width = GaussianWidth(settings.resolution);
    const double reach = Reach(settings);
    const double low = std::max(0.0, std::ceil((centre - reach) / settings.voxel - first));
    const double high = std::min(count - 1, std::floor((centre + reach) / settings.voxel - first));
    profile.first = std::size_t(low);
    profile.values.clear();
    for (double i = low; i <= high; ++i) {
        const double distance = (first + i) * settings.voxel - centre;
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

std::vector<double> Density(std::span<const Scatterer> scatterers, const SimulationBox &box,
                            const SimulationSettings &settings) {
    const double height =
        std::pow(2 * std::numbers::pi * std::pow(GaussianWidth(settings.resolution), 2), -1.5);
    std::vector<double> density(std::size_t(box.Voxels()));
    std::array<Profile, 3> profiles;
    for (const Scatterer &atom : scatterers) {
        for (unsigned axis = 0; axis < 3; ++axis)
            SetProfile(profiles[axis], double(atom.position[axis]), box.first[axis], box.count[axis],
                       settings);
        AddProduct(density, box, profiles, height * atom.electrons);
    }
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

/// A number of mean 0 and variance 1, close to a normal distribution: the sum of twelve uniform ones, less
/// six. The library's normal distribution differs between machines, as logarithm and cosine do; additions do
/// not.
double NormalNumber(std::mt19937_64 &random) {
    double sum = -6;
    for (int i = 0; i < 12; ++i)
        sum += double(random() >> 11) * 0x1p-53;
    return sum;
}

void AddNoise(std::vector<double> &density, const SimulationSettings &settings) {
    const double amplitude = settings.noise * StandardDeviation(density);
    std::mt19937_64 random(settings.seed);
    for (double &value : density)
        value += amplitude * NormalNumber(random);
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
    const double reach = Reach(settings);
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
    const auto refuse = [](const QString &option, double value, double least, double most,
                           const QString &unit) {
        if (value >= least && value <= most)
            return QString();
        return QString("%1 %2: must be a number from %3 to %4 %5")
            .arg(option, base::GeneralNumber(value), base::GeneralNumber(least), base::GeneralNumber(most),
                 unit);
    };
    for (const QString &problem :
         {refuse("--resolution", settings.resolution, minResolution, maxResolution, "Å"),
          refuse("--voxel", settings.voxel, minVoxel, maxVoxel, "Å"),
          refuse("--noise", settings.noise, 0, maxNoise, "standard deviations")})
        if (!problem.isEmpty())
            return problem;
    return {};
}

QString RefuseBox(const SimulationBox &box, std::size_t scatterers, const SimulationSettings &settings) {
    const QString size = QString("%1 x %2 x %3 voxels")
                             .arg(base::GeneralNumber(box.count[0]), base::GeneralNumber(box.count[1]),
                                  base::GeneralNumber(box.count[2]));
    const auto gib = [](double bytes) { return base::FixedNumber(bytes / 0x1p30, 0, 1) + " GiB"; };
    const double bytes = box.Voxels() * bytesPerVoxel;
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
    const double edge = 2 * Reach(settings) / settings.voxel + 1;
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
        AddNoise(density, settings);
    Vector<unsigned, 3> dimensions;
    Vector<float, 3> origin;
    for (unsigned axis = 0; axis < 3; ++axis) {
        dimensions[axis] = unsigned(box.count[axis]);
        origin[axis] = float(box.first[axis] * settings.voxel);
    }
    const auto voxel = float(settings.voxel);
    auto map = std::make_unique<Grid>("simulated", dimensions, origin, Vector<float, 3>(voxel, voxel, voxel),
                                      Vector<float, 3>(90, 90, 90));
    std::ranges::transform(density, map->Values().begin(), [](double value) { return float(value); });
    return map;
}

} // namespace hosts
