#include "DataMaker.h"
#include "ModelGuard.h"
#include "hosts/common/Simulation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>

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
