#include "placement/Hand.h"

#include "SyntheticModel.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace placement;

namespace {

/// Two balls of residues; the first one is to be placed.
struct Complex {
    std::vector<ModelAtom> model = RandomModel(100, 1);
    std::vector<ModelAtom> neighbour = Moved(RandomModel(100, 2), RotationBy({}), {36, 4, 0});

    Volume Map() const {
        Volume map = DensityOf(Both(), 8, {2, 2.2, 2.1}, 10);
        AddNoise(map, 0.5, 3);
        return map;
    }
    std::vector<ModelAtom> Both() const {
        std::vector<ModelAtom> both = model;
        both.insert(both.end(), neighbour.begin(), neighbour.end());
        return both;
    }
    /// RMSD of a place from where the model stands, Å.
    double Error(const Place &place) const {
        double squares = 0;
        for (const ModelAtom &atom : model) {
            const Point d = place.pose.rotation * atom.position + place.translation - atom.position;
            squares += Dot(d, d);
        }
        return std::sqrt(squares / double(model.size()));
    }
};

Volume Mirrored(Volume map) {
    for (auto row = map.values.begin(); row != map.values.end(); row += std::ptrdiff_t(map.count[0]))
        std::reverse(row, row + std::ptrdiff_t(map.count[0]));
    return map;
}

HandResult Find(const Volume &map, const std::vector<ModelAtom> &atoms,
                const std::vector<ModelAtom> &neighbours = {}) {
    Monitor silent;
    return FindHand(map, atoms, {.resolution = 8, .region = {}, .neighbours = neighbours}, silent);
}

/// As sure as that of a place with that ln E.
Confidence Sure(double logExpected) {
    return {.logExpected = logExpected,
            .place = 1 / (1 + 3 * std::exp(logExpected)),
            .otherTurns = 0,
            .probability = 0};
}

} // namespace

TEST(Hand, TheMapsOwnIsTold) {
    const Complex complex;
    const HandResult result = Find(complex.Map(), complex.model);
    EXPECT_EQ(result.hand, Hand::AsGiven);
    EXPECT_GT(result.asGiven, 0.95);
    EXPECT_LT(complex.Error(result.given.places.front()), 1);
    EXPECT_NE(result.mirrored.verdict, Verdict::Placed);
}

TEST(Hand, InAMirroredMapThePlacesAreThoseOfTheMapMirroredBack) {
    const Complex complex;
    const HandResult result = Find(Mirrored(complex.Map()), complex.model);
    EXPECT_EQ(result.hand, Hand::Mirrored);
    EXPECT_LT(result.asGiven, 0.05);
    EXPECT_EQ(result.mirrored.start.x, result.given.start.x);
    const Place &place = result.mirrored.places.front();
    EXPECT_LT(complex.Error(place), 1);
    const Point centre = MakePointModel(complex.model).centre;
    EXPECT_LT(Length(place.pose.rotation * centre + place.translation - place.pose.centre), 1e-9);
}

TEST(Hand, NeighboursStandInTheMapAsItIs) {
    const Complex complex;
    std::vector<ModelAtom> standing = complex.neighbour;
    const Volume map = complex.Map();
    // Where the neighbour's mirror image lies in the mirrored map: its density is then taken out.
    for (ModelAtom &atom : standing)
        atom.position.x = 2 * map.origin.x + double(map.count[0] - 1) * map.spacing[0] - atom.position.x;
    const HandResult result = Find(Mirrored(map), complex.model, standing);
    EXPECT_EQ(result.hand, Hand::Mirrored);
    EXPECT_LT(complex.Error(result.mirrored.places.front()), 1);
    EXPECT_LT(result.mirrored.places.front().overlap, 0.1);
}

TEST(Hand, NoiseHasNone) {
    const Complex complex;
    Volume map = complex.Map();
    std::ranges::fill(map.values, 0);
    map.values[0] = 1;
    AddNoise(map, 100, 5);
    EXPECT_EQ(Find(map, complex.model).hand, Hand::Unknown);
    std::ranges::fill(map.values, 0);
    EXPECT_EQ(Find(map, complex.model).hand, Hand::Unknown);
    EXPECT_EQ(Find(map, complex.model).asGiven, 0.5);
}

TEST(Hand, ACancelledSearchTellsNone) {
    struct Impatient : Monitor {
        void Advance(double share) override { last = share; }
        bool IsCancelled() override { return last > 0.9; }
        double last = 0;
    } impatient;
    const Complex complex;
    const HandResult result =
        FindHand(complex.Map(), complex.model, {.resolution = 8, .region = {}}, impatient);
    EXPECT_FALSE(result.given.cancelled);
    EXPECT_TRUE(result.mirrored.cancelled);
    EXPECT_EQ(result.hand, Hand::Unknown);
}

TEST(Hand, BothSearchesShareOneProgress) {
    struct Recorder : Monitor {
        void Advance(double share) override { shares.push_back(share); }
        std::vector<double> shares;
    } recorder;
    const Complex complex;
    FindHand(complex.Map(), complex.model, {.resolution = 8, .region = {}}, recorder);
    EXPECT_TRUE(std::ranges::is_sorted(recorder.shares));
    EXPECT_NEAR(recorder.shares.back(), 1, 1e-9);
}

TEST(Hand, TheProbabilityWeighsBothChances) {
    EXPECT_DOUBLE_EQ(FirstHand({}, {}), 0.5);
    EXPECT_DOUBLE_EQ(FirstHand(Sure(-3), Sure(-3)), 0.5);
    // One search is right with 0.9, the other one with 0.2: the odds are 0.8 to 0.1.
    const auto logExpected = [](double p) { return std::log((1 - p) / p / 3); };
    EXPECT_NEAR(FirstHand(Sure(logExpected(0.9)), Sure(logExpected(0.2))), 8.0 / 9, 1e-12);
    EXPECT_NEAR(FirstHand(Sure(logExpected(0.2)), Sure(logExpected(0.9))), 1.0 / 9, 1e-12);
    // No digits are lost where both are beyond doubt.
    EXPECT_NEAR(FirstHand(Sure(-1001), Sure(-1000)), 1 / (1 + std::exp(-1)), 1e-9);
    EXPECT_DOUBLE_EQ(FirstHand(Sure(-1000), {}), 1);
}
