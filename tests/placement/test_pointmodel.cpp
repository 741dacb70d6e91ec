#include "SyntheticModel.h"

#include "placement/Constants.h"

#include <gtest/gtest.h>

#include <numbers>
#include <stdexcept>

using namespace placement;

namespace {

/// Pm(k) as the mean of |Σ w·exp(2πi·k·r)|² over many directions.
double PowerOverDirections(const PointModel &model, double k) {
    std::mt19937 random(11);
    constexpr int directions = 4000;
    double sum = 0;
    for (int i = 0; i < directions; ++i) {
        const Point axis = RandomRotation(random) * Point{0, 0, k};
        double real = 0, imaginary = 0;
        for (std::size_t j = 0; j < model.points.size(); ++j) {
            const double phase = 2 * std::numbers::pi * Dot(axis, model.points[j]);
            real += model.weights[j] * std::cos(phase);
            imaginary += model.weights[j] * std::sin(phase);
        }
        sum += real * real + imaginary * imaginary;
    }
    return sum / directions;
}

} // namespace

TEST(PointModel, HasTwoPointsForEachResidueWithItsElectrons) {
    const std::vector<ModelAtom> atoms{{{0, 0, 0}, 6, 0, 0, true},
                                       {{2, 0, 0}, 6, 0, 0, true},
                                       {{1, 3, 0}, 8, 0, 0, false},
                                       {{10, 0, 0}, 7, 1, 0, true}};
    const PointModel model = MakePointModel(atoms);
    ASSERT_EQ(model.points.size(), 3u);
    EXPECT_EQ(model.weights, (std::vector<double>{12, 8, 7}));
    EXPECT_EQ(model.residue, (std::vector<unsigned>{0, 0, 1}));
    EXPECT_NEAR(model.centre.x, (12 * 1 + 8 * 1 + 7 * 10) / 27.0, 1e-12);
    EXPECT_NEAR((model.points[1] + model.centre).y, 3, 1e-12);
    EXPECT_EQ(model.residues, 2u);
    EXPECT_EQ(model.atoms, 4u);
}

TEST(PointModel, AModelOfOneAtomHasNoExtent) {
    const PointModel model = MakePointModel({{{5, 6, 7}, 6, 0, 0, true}});
    EXPECT_EQ(model.gyration, 0);
    EXPECT_EQ(model.radius, 0);
    EXPECT_THROW(MakePointModel({}), std::invalid_argument);
}

TEST(PointModel, TheScanHasMeansOfConsecutiveResiduesOfOneChain) {
    std::vector<ModelAtom> atoms = RandomModel(200, 1);
    for (ModelAtom &atom : atoms)
        atom.chain = atom.residue < 50 ? 0 : 1;
    const PointModel model = MakePointModel(atoms);
    // Three residues each; 50 leave two over, which make a mean of their own, and 150 leave none.
    EXPECT_EQ(model.scanPoints.size(), 17u + 50u);
    EXPECT_LE(model.scanPoints.size(), scanPoints);
}

TEST(PointModel, TheDebyeSumIsTheMeanOverAllDirections) {
    const PointModel model = MakePointModel(RandomModel(40, 4));
    const RadialCurve power = DebyePower(model, 0.3, 0.005);
    double all = 0;
    for (const double w : model.weights)
        all += w;
    EXPECT_NEAR(power.At(0) / (all * all), 1, 1e-9);
    for (const double k : {0.02, 0.05, 0.1, 0.2, 0.29})
        EXPECT_NEAR(power.At(k) / PowerOverDirections(model, k), 1, 0.08) << k;
}

TEST(PointModel, ASampleOfThePairsOfALargeModelStandsForAll) {
    // Twice as many points as all of whose pairs are summed.
    const std::vector<ModelAtom> atoms = RandomModel(2500, 5);
    const PointModel model = MakePointModel(atoms);
    const RadialCurve power = DebyePower(model, 0.2, 0.01);
    double self = 0;
    for (const double w : model.weights)
        self += w * w;
    std::mt19937 random(1);
    double direct = self;
    const double k = 0.05;
    for (std::size_t i = 0; i < model.points.size(); ++i)
        for (std::size_t j = 0; j < i; ++j) {
            const double x = 2 * std::numbers::pi * k * Length(model.points[i] - model.points[j]);
            direct += 2 * model.weights[i] * model.weights[j] * (x < 1e-9 ? 1 : std::sin(x) / x);
        }
    EXPECT_NEAR(power.At(k) / direct, 1, 0.1);
}
