#include "DataMaker.h"
#include "ModelGuard.h"
#include "hosts/common/Simulation.h"
#include "placement/Spectrum.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>
#include <random>

using namespace hosts;
using namespace VARNO;
using testing::AllOf;
using testing::HasSubstr;

namespace {

const std::vector<Scatterer> threeAtoms = {{Vertex(1.25f, -3.5f, 100.75f, true), 6},
                                           {Vertex(4.0f, 2.0f, 97.5f, true), 8},
                                           {Vertex(-6.3f, 0, 101, true), 26}};

std::unique_ptr<Grid> Simulated(const std::vector<Scatterer> &atoms, const SimulationSettings &settings) {
    return SimulateMap(atoms, LayOutBox(atoms, settings), settings);
}

/// The formula as it stands, without a cut-off and without taking it apart.
double PlainDensity(const std::vector<Scatterer> &atoms, double resolution, const double (&x)[3]) {
    const double pi = std::acos(-1.0);
    const double s = resolution / (pi * std::sqrt(2.0));
    double density = 0;
    for (const Scatterer &atom : atoms) {
        double squared = 0;
        for (unsigned axis = 0; axis < 3; ++axis)
            squared += std::pow(x[axis] - double(atom.position[axis]), 2);
        density += atom.electrons * std::pow(2 * pi * s * s, -1.5) * std::exp(-squared / (2 * s * s));
    }
    return density;
}

double Mean(std::span<const float> values) {
    return std::accumulate(values.begin(), values.end(), 0.0) / double(values.size());
}

double Deviation(std::span<const float> values) {
    const double mean = Mean(values);
    double squares = 0;
    for (const float value : values)
        squares += std::pow(double(value) - mean, 2);
    return std::sqrt(squares / double(values.size()));
}

std::vector<float> Difference(const Grid &a, const Grid &b) {
    std::vector<float> difference(a.Values().begin(), a.Values().end());
    for (std::size_t i = 0; i < difference.size(); ++i)
        difference[i] -= b.Values()[i];
    return difference;
}

placement::Volume VolumeOf(const Grid &map) {
    placement::Volume volume;
    for (unsigned axis = 0; axis < 3; ++axis) {
        volume.count[axis] = map.Dimensions()[axis];
        volume.spacing[axis] = double(map.Spacing()[axis]);
    }
    volume.values.assign(map.Values().begin(), map.Values().end());
    return volume;
}

/// The transform at a wave along x, of a map through whose middle atom x = 0 runs.
double TransformAlongX(const Grid &map, double wavelength) {
    const auto &n = map.Dimensions();
    double transform = 0;
    for (unsigned i = 0; i < n[0]; ++i)
        for (unsigned j = 0; j < n[1]; ++j)
            for (unsigned k = 0; k < n[2]; ++k)
                transform += double(map.GetValue(i, j, k)) *
                             std::cos(2 * std::acos(-1.0) * double(map.GetPoint(i, j, k)[0]) / wavelength);
    return transform;
}

/// A ball of atoms, large enough for shells of many waves.
std::vector<Scatterer> Ball() {
    std::mt19937 random(5);
    std::uniform_real_distribution<float> number(-25, 25);
    std::vector<Scatterer> atoms;
    while (atoms.size() < 1500)
        if (const Vertex at(number(random), number(random), number(random), true); at.SquaredLength() < 625)
            atoms.push_back({at, 7});
    return atoms;
}

/// The correlation of two maps' waves between 0.95 and 1.05 / resolution.
double ShellCorrelation(const Grid &a, const Grid &b, double resolution) {
    const placement::Waves x = WavesOf(VolumeOf(a)), y = WavesOf(VolumeOf(b));
    double xx = 0, yy = 0, xy = 0;
    std::size_t i = 0;
    for (std::size_t section = 0; section < x.Rows(2); ++section)
        for (std::size_t row = 0; row < x.Rows(1); ++row)
            for (std::size_t h = 0; h <= x.band[0]; ++h, ++i) {
                const double k =
                    std::hypot(double(h) / x.length[0], double(x.Frequency(row, 1)) / x.length[1],
                               double(x.Frequency(section, 2)) / x.length[2]);
                if (std::abs(k * resolution - 1) > 0.05)
                    continue;
                xx += double(std::norm(x.values[i]));
                yy += double(std::norm(y.values[i]));
                xy += double(std::real(x.values[i] * std::conj(y.values[i])));
            }
    return xy / std::sqrt(xx * yy);
}

} // namespace

TEST(Simulation, EveryVoxelIsTheSumOfTheAtomsGaussians) {
    const double resolution = 7.5, voxel = 1.75;
    const auto map = Simulated(threeAtoms, {resolution, voxel});
    const double peak = PlainDensity({threeAtoms[2]}, resolution, {-6.3, 0, 101});
    const auto &n = map->Dimensions();
    for (unsigned i = 0; i < n[0]; ++i)
        for (unsigned j = 0; j < n[1]; ++j)
            for (unsigned k = 0; k < n[2]; ++k) {
                const Vertex at = map->GetPoint(i, j, k);
                const double plain =
                    PlainDensity(threeAtoms, resolution, {double(at[0]), double(at[1]), double(at[2])});
                ASSERT_NEAR(double(map->GetValue(i, j, k)), plain, 5e-6 * peak) << i << ' ' << j << ' ' << k;
            }
}

TEST(Simulation, TheFourierTransformFallsToOneEthAtTheResolution) {
    // Along x, through one atom at the origin: the sum over the y-z plane is the Gaussian's projection.
    const double resolution = 8, voxel = 0.5;
    const auto map = Simulated({{Vertex(0, 0, 0, true), 1}}, {resolution, voxel});
    const auto &n = map->Dimensions();
    double mass = 0, transform = 0;
    for (unsigned i = 0; i < n[0]; ++i)
        for (unsigned j = 0; j < n[1]; ++j)
            for (unsigned k = 0; k < n[2]; ++k) {
                const double value = double(map->GetValue(i, j, k)), x = double(map->GetPoint(i, j, k)[0]);
                mass += value;
                transform += value * std::cos(2 * std::acos(-1.0) * x / resolution);
            }
    EXPECT_NEAR(transform / mass, std::exp(-1.0), 1e-4);
}

TEST(Simulation, TheIntegralIsTheNumberOfElectrons) {
    const double voxel = 1.5;
    const auto map = Simulated(threeAtoms, {6, voxel});
    const double electrons = Mean(map->Values()) * double(map->Values().size()) * std::pow(voxel, 3);
    EXPECT_NEAR(electrons, 6 + 8 + 26, 1e-3);
}

TEST(Simulation, AnAtomInTheMiddleOfItsBoxGivesASymmetricMap) {
    const auto map = Simulated({{Vertex(6, -12, 0, true), 7}}, {9, 3});
    const auto &n = map->Dimensions();
    ASSERT_EQ(n[0] % 2, 1u);
    for (unsigned i = 0; i < n[0]; ++i)
        for (unsigned j = 0; j < n[1]; ++j)
            for (unsigned k = 0; k < n[2]; ++k) {
                ASSERT_EQ(map->GetValue(i, j, k), map->GetValue(n[0] - 1 - i, j, k));
                ASSERT_EQ(map->GetValue(i, j, k), map->GetValue(j, k, i));
            }
}

TEST(Simulation, TheBoxReachesBeyondTheAtomsByTheCutOffAndStartsOnAMultipleOfTheVoxel) {
    const double voxel = 2.5, reach = 5 * 0.2250790790 * 10;
    const SimulationBox box = LayOutBox(threeAtoms, {10, voxel});
    const double low[] = {-6.3, -3.5, 97.5}, high[] = {4, 2, 101};
    const auto map = Simulated(threeAtoms, {10, voxel});
    for (unsigned axis = 0; axis < 3; ++axis) {
        const double first = box.first[axis] * voxel, last = first + (box.count[axis] - 1) * voxel;
        EXPECT_EQ(box.first[axis], std::floor(box.first[axis]));
        EXPECT_LE(first, low[axis] - reach);
        EXPECT_GT(first, low[axis] - reach - voxel);
        EXPECT_GE(last, high[axis] + reach);
        EXPECT_LT(last, high[axis] + reach + voxel);
        EXPECT_EQ(map->Origin()[axis], float(first));
        EXPECT_EQ(map->Spacing()[axis], 2.5f);
        EXPECT_EQ(map->Dimensions()[axis], unsigned(box.count[axis]));
    }
}

TEST(Simulation, NoiseIsInStandardDeviationsOfTheMapWithoutIt) {
    const auto plain = Simulated(threeAtoms, {8, 1});
    const auto noisy = Simulated(threeAtoms, {8, 1, 0.75, 1});
    const std::vector<float> noise = Difference(*noisy, *plain);
    const double deviation = 0.75 * Deviation(plain->Values()),
                 standardError = 1 / std::sqrt(double(noise.size()));
    EXPECT_NEAR(Deviation(noise), deviation, 3 * deviation * standardError);
    EXPECT_NEAR(Mean(noise), 0, 3 * deviation * standardError);
    // Of a normal distribution 68.3% lie within one standard deviation and 95.4% within two.
    const auto share = [&](double limit) {
        return double(
                   std::ranges::count_if(noise, [&](float n) { return std::abs(n) < limit * deviation; })) /
               double(noise.size());
    };
    EXPECT_NEAR(share(1), 0.683, 0.01);
    EXPECT_NEAR(share(2), 0.954, 0.01);
}

TEST(Simulation, TheSameSeedGivesTheSameNoiseAndAnotherSeedAnother) {
    const auto first = Simulated(threeAtoms, {8, 3, 0.5, 7}), again = Simulated(threeAtoms, {8, 3, 0.5, 7});
    const auto other = Simulated(threeAtoms, {8, 3, 0.5, 8});
    EXPECT_TRUE(std::ranges::equal(first->Values(), again->Values()));
    EXPECT_FALSE(std::ranges::equal(first->Values(), other->Values()));
}

TEST(Simulation, TheNoiseIsTheSameOnEveryMachine) {
    // Twelve numbers of the 64-bit Mersenne twister for each voxel, worked out by another implementation of
    // it.
    const auto plain = Simulated(threeAtoms, {8, 3}), noisy = Simulated(threeAtoms, {8, 3, 1, 5489});
    const double deviation = Deviation(plain->Values());
    const double expected[] = {-0.9066150525, -0.3898431013, 0.4442238271};
    for (unsigned i = 0; i < 3; ++i)
        EXPECT_NEAR(double(noisy->Values()[i] - plain->Values()[i]) / deviation, expected[i], 1e-6);
}

TEST(Simulation, TheBFactorSaysHowTheTransformFalls) {
    const std::vector<Scatterer> atom = {{Vertex(0, 0, 0, true), 1}};
    for (const double b : {60.0, 128.0, 400.0}) {
        const auto map = Simulated(atom, {.resolution = 8, .voxel = 1, .bFactor = b});
        EXPECT_NEAR(TransformAlongX(*map, 8) / TransformAlongX(*map, 1e9), std::exp(-b / 64 / 4), 1e-4);
    }
}

TEST(Simulation, TheResolutionStandsForABFactorOfFourTimesItsSquare) {
    const auto plain = Simulated(threeAtoms, {8, 2});
    const auto map = Simulated(threeAtoms, {.resolution = 8, .voxel = 2, .bFactor = 4 * 64});
    EXPECT_LT(Deviation(Difference(*plain, *map)), 1e-6 * Deviation(plain->Values()));
}

TEST(Simulation, SolventTakesContrastFromSlowWaves) {
    const std::vector<Scatterer> atom = {{Vertex(0, 0, 0, true), 6}};
    const double share = 0.6;
    const auto vacuum = Simulated(atom, {8, 1});
    const auto map = Simulated(atom, {.resolution = 8, .voxel = 1, .solvent = share});
    for (const double wavelength : {1e9, 30.0, 12.0, 8.0})
        EXPECT_NEAR(TransformAlongX(*map, wavelength) / TransformAlongX(*vacuum, wavelength),
                    1 - share * std::exp(-50 / (wavelength * wavelength)), 2e-4)
            << wavelength;
}

TEST(Simulation, NoiseOfTheResolutionIsThreeTimesTheSignalThere) {
    // FSC of the map with the one without noise: sqrt(SSNR / (1 + SSNR)), where the noise of the whole box is
    // that of the molecule's volume times the ratio of the two.
    const std::vector<Scatterer> ball = Ball();
    for (const double strength : {0.25, 0.5, 1.0}) {
        const SimulationSettings clean{.resolution = 8, .voxel = 2, .bFactor = 300, .solvent = 0.5};
        SimulationSettings noisy = clean;
        noisy.resolutionNoise = strength;
        noisy.seed = 4;
        const auto map = Simulated(ball, clean);
        const double box = 8.0 * double(map->Values().size()), molecule = 17 * 1500;
        const double ratio = molecule / box / (3 * strength * strength);
        EXPECT_NEAR(ShellCorrelation(*map, *Simulated(ball, noisy), 8), std::sqrt(ratio / (1 + ratio)), 0.05)
            << strength;
    }
}

TEST(Simulation, NoiseOfTheResolutionDoesNotDependOnTheBox) {
    const std::vector<Scatterer> ball = Ball();
    const auto noiseOf = [&](double margin) {
        const SimulationSettings clean{.resolution = 8, .voxel = 2, .treatment = {.margin = margin}};
        SimulationSettings noisy = clean;
        noisy.resolutionNoise = 1;
        return Deviation(Difference(*Simulated(ball, noisy), *Simulated(ball, clean)));
    };
    EXPECT_NEAR(noiseOf(60) / noiseOf(10), 1, 0.05);
}

TEST(Simulation, NoiseOfTheResolutionIsWhiteAndFollowsTheSeed) {
    const auto plain = Simulated(threeAtoms, {8, 2});
    const auto noiseOf = [&](std::uint64_t seed) {
        return Difference(
            *Simulated(threeAtoms, {.resolution = 8, .voxel = 2, .seed = seed, .resolutionNoise = 1}),
            *plain);
    };
    const std::vector<float> noise = noiseOf(1);
    double neighbours = 0;
    for (std::size_t i = 1; i < noise.size(); ++i)
        neighbours += double(noise[i] * noise[i - 1]) / double(noise.size());
    EXPECT_LT(std::abs(neighbours), 4 * std::pow(Deviation(noise), 2) / std::sqrt(double(noise.size())));
    EXPECT_EQ(noise, noiseOf(1));
    EXPECT_NE(noise, noiseOf(2));
}

TEST(Simulation, TheMarginSaysWhereTheBoxEnds) {
    for (const double margin : {2.0, 40.0}) {
        const auto map =
            Simulated(threeAtoms, {.resolution = 8, .voxel = 1.5, .treatment = {.margin = margin}});
        const double low[] = {-6.3, -3.5, 97.5}, high[] = {4, 2, 101};
        for (unsigned axis = 0; axis < 3; ++axis) {
            const double first = double(map->Origin()[axis]);
            const double last = first + 1.5 * (map->Dimensions()[axis] - 1);
            EXPECT_LE(first, low[axis] - margin + 1e-3);
            EXPECT_GT(first, low[axis] - margin - 1.5 - 1e-3);
            EXPECT_GE(last, high[axis] + margin - 1e-3);
            EXPECT_LT(last, high[axis] + margin + 1.5 + 1e-3);
        }
    }
}

TEST(Simulation, TheTreatmentComesAfterTheNoise) {
    const auto map = Simulated(
        threeAtoms,
        {.resolution = 8, .voxel = 2, .resolutionNoise = 1, .treatment = {.mask = 4, .invert = true}});
    const auto plain = Simulated(threeAtoms, {.resolution = 8, .voxel = 2, .resolutionNoise = 1});
    std::size_t outside = 0;
    for (std::size_t i = 0; i < map->Values().size(); ++i) {
        outside += map->Values()[i] == 0;
        EXPECT_TRUE(map->Values()[i] == 0 || map->Values()[i] == -plain->Values()[i]);
    }
    EXPECT_GT(outside, map->Values().size() / 2);
    EXPECT_LT(outside, map->Values().size());
}

TEST(Simulation, AtomsWeighAsMuchAsTheirElement) {
    ModelGuard guard;
    Compound *molecule = DataMaker::makeMolecule(DataMaker::makeClump("m"), "m");
    Compound *chain = DataMaker::makeChain(molecule, "A", true);
    Compound *residue = DataMaker::makeGroup(chain, "ALA", "1");
    for (const char *element : {"C", "CA", "Se", "D", "", "Q"})
        DataMaker::makeAtom(residue, element, "X", "1", Vertex(1, 2, 3, true), 0, "", 0, 0);
    std::size_t unknown = 0;
    const std::vector<Scatterer> atoms = CollectScatterers({chain}, unknown);
    std::vector<int> electrons;
    for (const Scatterer &atom : atoms)
        electrons.push_back(atom.electrons);
    EXPECT_THAT(electrons, testing::ElementsAre(6, 20, 34, 1));
    EXPECT_EQ(unknown, 2u);
    EXPECT_EQ(atoms[0].position, Vertex(1, 2, 3, true));
}

TEST(Simulation, RefusesSettingsOutOfRange) {
    const double nan = std::numeric_limits<double>::quiet_NaN(),
                 inf = std::numeric_limits<double>::infinity();
    for (const double bad : {0.0, -8.0, 1e-4, 1001.0, nan, inf}) {
        EXPECT_THAT(RefuseSettings({bad, 2}).toStdString(), HasSubstr("resolution"));
        EXPECT_THAT(RefuseSettings({8, bad}).toStdString(), HasSubstr("voxel"));
    }
    for (const double bad : {-0.5, 1001.0, nan, inf})
        EXPECT_THAT(RefuseSettings({8, 2, bad}).toStdString(), HasSubstr("noise"));
    EXPECT_TRUE(RefuseSettings({8, 2}).isEmpty());
    EXPECT_TRUE(RefuseSettings({0.1, 0.001, 1000}).isEmpty());
    EXPECT_TRUE(RefuseSettings({1000, 1000}).isEmpty());
}

TEST(Simulation, RefusesTreatmentsOutOfRange) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const auto refusal = [](SimulationSettings settings) {
        settings.resolution = 8;
        settings.voxel = settings.voxel > 0 ? settings.voxel : 2;
        return RefuseSettings(settings).toStdString();
    };
    EXPECT_THAT(refusal({.bFactor = 0}), HasSubstr("--b-factor 0: must be a number from 0.04 to 4e+06 Å²"));
    EXPECT_THAT(refusal({.solvent = 1.5}), HasSubstr("--solvent 1.5: must be a number from 0 to 1"));
    EXPECT_THAT(refusal({.resolutionNoise = nan}), HasSubstr("--resolution-noise nan"));
    EXPECT_THAT(refusal({.voxel = 4.5, .resolutionNoise = 1}),
                HasSubstr("voxels of 4.5 Å hold no waves of 8 Å"));
    EXPECT_THAT(refusal({.treatment = {.sharpen = -1e9}}), HasSubstr("--sharpen -1e+09"));
    EXPECT_THAT(refusal({.treatment = {.sharpen = 2000}}),
                HasSubstr("would multiply the finest waves of voxels of 2 Å by exp(93.75)"));
    EXPECT_THAT(refusal({.treatment = {.lowPass = 0}}), HasSubstr("--low-pass 0"));
    EXPECT_THAT(refusal({.treatment = {.mask = -1}}), HasSubstr("--mask -1"));
    EXPECT_THAT(refusal({.treatment = {.maskEdge = nan}}), HasSubstr("--mask-edge nan"));
    EXPECT_THAT(refusal({.treatment = {.margin = -1}}), HasSubstr("--margin -1"));
}

TEST(Simulation, AMaskMayNotTakeForEver) {
    const SimulationSettings settings{
        .resolution = 8, .voxel = 1, .treatment = {.mask = 1000, .margin = 500}};
    EXPECT_THAT(RefuseBox(LayOutBox(threeAtoms, settings), 1'000'000, settings).toStdString(),
                HasSubstr("additions"));
}

TEST(Simulation, RefusesABoxBeyondTheMachine) {
    const SimulationSettings fine{8, 0.0001}, far{8, 1e-300};
    EXPECT_THAT(RefuseBox(LayOutBox(threeAtoms, fine), 3, fine).toStdString(),
                AllOf(HasSubstr("283065 x 235065 x 215065 voxels"), HasSubstr("GiB")));
    EXPECT_THAT(RefuseBox(LayOutBox(threeAtoms, far), 3, far).toStdString(), HasSubstr("GiB"));
    const SimulationSettings broad{800, 4};
    EXPECT_THAT(RefuseBox(LayOutBox(threeAtoms, broad), 1'000'000, broad).toStdString(),
                HasSubstr("additions"));
    EXPECT_TRUE(RefuseBox(LayOutBox(threeAtoms, {8, 2}), 3, {8, 2}).isEmpty());
}

TEST(Simulation, RefusesABoxThatAMapFileCannotHold) {
    const SimulationSettings settings{1, 1};
    const std::vector<Scatterer> apart = {{Vertex(0, 0, 0, true), 6}, {Vertex(1e5f, 0, 0, true), 6}};
    EXPECT_THAT(RefuseBox(LayOutBox(apart, settings), 2, settings).toStdString(),
                HasSubstr("is beyond what a file holds, 65535 voxels along each axis"));
    const std::vector<Scatterer> far = {{Vertex(0, 2e6f, 0, true), 6}};
    EXPECT_EQ(RefuseBox(LayOutBox(far, settings), 1, settings).toStdString(),
              "the map would begin 2e+06 Å from the frame's origin; the limit is 1e+06 Å");
}
