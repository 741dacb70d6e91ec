#include "placement/FindPlaces.h"

#include "SyntheticModel.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <numbers>
#include <stdexcept>

using namespace placement;

namespace {

/// A complex of a model and another one beside it, and the motion that brings the model into its place.
struct Complex {
    std::vector<ModelAtom> model = RandomModel(150, 1), placed, neighbour, all;
    Matrix rotation = RotationBy({1.1, -0.7, 2});
    Point translation{40, -25, 60};

    explicit Complex(double distance = 38) {
        placed = Moved(model, rotation, translation);
        neighbour = Moved(RandomModel(150, 2), RotationBy({}), translation + Point{distance, 0, 0});
        all = placed;
        all.insert(all.end(), neighbour.begin(), neighbour.end());
    }

    /// RMSD of a place from the truth, Å.
    double Error(const Place &place) const {
        double squares = 0;
        for (const ModelAtom &atom : model) {
            const Point d = place.pose.rotation * atom.position + place.translation -
                            (rotation * atom.position + translation);
            squares += Dot(d, d);
        }
        return std::sqrt(squares / double(model.size()));
    }
};

/// Two copies of a model side by side, and their map.
struct TwoCopies {
    Complex first;
    Point secondCentre = first.translation + Point{0, 45, 0};
    std::vector<ModelAtom> second = Moved(first.model, RotationBy({0, 2, 0}), secondCentre);
    Volume map;

    TwoCopies() {
        std::vector<ModelAtom> both = first.placed;
        both.insert(both.end(), second.begin(), second.end());
        map = DensityOf(both, 8, {2, 2, 2}, 10);
    }
};

PlacementResult Find(const Volume &map, const std::vector<ModelAtom> &atoms, double resolution,
                     unsigned threads = 1) {
    Monitor silent;
    return FindPlaces(map, atoms, {.resolution = resolution, .threads = threads, .region = {}}, silent);
}

PlacementResult FindBeside(const std::vector<ModelAtom> &neighbours, const Volume &map,
                           const std::vector<ModelAtom> &atoms, double resolution) {
    Monitor silent;
    return FindPlaces(map, atoms, {.resolution = resolution, .region = {}, .neighbours = neighbours}, silent);
}

} // namespace

TEST(FindJudgedPlaces, JudgesTheFirstPlaceAsASearchDoes) {
    const TwoCopies copies;
    Monitor silent;
    const PlacementResult search = Find(copies.map, copies.first.model, 8);
    PreparedMap map(copies.map, 8, 1);
    const JudgedPlaces judged =
        FindJudgedPlaces(map, copies.first.model, {.resolution = 8, .region = {}}, silent);
    ASSERT_GT(judged.places.size(), search.places.size()) << "those that overlap a better one too";
    EXPECT_EQ(judged.verdict, search.verdict);
    EXPECT_EQ(judged.places.front().confidence.logExpected, search.confidence.logExpected);
    EXPECT_EQ(judged.places.front().confidence.probability, search.confidence.probability);
    EXPECT_EQ(judged.places.front().place.translation.x, search.places.front().translation.x);
    // The second copy is as sure, other places are not.
    EXPECT_GT(judged.places[1].confidence.probability, 0.95);
    for (const JudgedPlace &place : std::span(judged.places).subspan(2))
        EXPECT_LT(place.confidence.probability, 0.5);
}

TEST(FindJudgedPlaces, RefinesTheStartsThatItIsGiven) {
    class Cancelled : public Monitor {
        bool IsCancelled() override { return true; }
    };
    const Complex complex;
    const Volume density = DensityOf(complex.all, 8, {2, 2, 2}, 10);
    PreparedMap map(density, 8, 1);
    const Point centre = complex.rotation * MakePointModel(complex.model).centre + complex.translation;
    PlacementParameters parameters{.resolution = 8, .region = {}};
    Cancelled cancelled;
    EXPECT_TRUE(FindJudgedPlaces(map, complex.model, parameters, cancelled).places.empty());
    parameters.starts = {{complex.rotation, centre}};
    const JudgedPlaces found = FindJudgedPlaces(map, complex.model, parameters, cancelled);
    ASSERT_EQ(found.places.size(), 1u);
    EXPECT_LT(complex.Error(found.places.front().place), 0.01);
    EXPECT_TRUE(found.cancelled);
}

TEST(FindJudgedPlaces, APlaceFromWhichTheOtherFilterClimbsToAnotherIsNotSure) {
    // A rod, which the matched filter finds a little along its axis too.
    std::vector<ModelAtom> rod = RandomModel(300, 2);
    for (ModelAtom &atom : rod)
        atom.position = {atom.position.x / std::sqrt(6), atom.position.y / std::sqrt(6), atom.position.z * 6};
    std::vector<ModelAtom> all = rod;
    const std::vector<ModelAtom> neighbour = Moved(RandomModel(600, 52), RotationBy({}), {45, 0, 0});
    all.insert(all.end(), neighbour.begin(), neighbour.end());
    const Volume density = DensityOf(all, 8, {2, 2, 2}, 10);
    const WrongTail tail = Find(density, rod, 8).tail;
    PreparedMap map(density, 8, 1);
    Monitor silent;
    const std::vector<JudgedPlace> places =
        FindJudgedPlaces(map, rod, {.resolution = 8, .region = {}}, silent).places;
    ASSERT_FALSE(places.empty());
    EXPECT_GT(places.front().confidence.place, 0.99);
    int sureByOne = 0;
    for (const JudgedPlace &place : std::span(places).subspan(1)) {
        sureByOne += tail.Probability(place.place.score) > 0.99;
        EXPECT_LT(place.confidence.place, 0.9);
        EXPECT_GT(place.confidence.logExpected, -4);
    }
    EXPECT_GT(sureByOne, 0);
}

TEST(FindPlaces, AModelIsFoundWithoutAStart) {
    const Complex complex;
    const PlacementResult result = Find(DensityOf(complex.all, 8, {2, 2, 2}, 10), complex.model, 8);
    ASSERT_FALSE(result.places.empty());
    EXPECT_LT(complex.Error(result.places.front()), 0.5);
    EXPECT_EQ(result.verdict, Verdict::Placed);
    EXPECT_GT(result.confidence.probability, 0.95);
    EXPECT_FALSE(result.cancelled);
}

TEST(FindPlaces, NoiseAndUnequalVoxelsDoNoHarm) {
    const Complex complex;
    Volume map = DensityOf(complex.all, 8, {1.7, 2.2, 2}, 10);
    AddNoise(map, 1, 3);
    const PlacementResult result = Find(map, complex.model, 8);
    EXPECT_LT(complex.Error(result.places.front()), 1);
}

TEST(FindPlaces, ThreadsGiveTheSameBytes) {
    const Complex complex;
    const Volume map = DensityOf(complex.all, 8, {2, 2, 2}, 10);
    const PlacementResult one = Find(map, complex.model, 8, 1), three = Find(map, complex.model, 8, 3);
    ASSERT_EQ(one.places.size(), three.places.size());
    for (std::size_t i = 0; i < one.places.size(); ++i) {
        EXPECT_EQ(one.places[i].score, three.places[i].score);
        EXPECT_EQ(one.places[i].pose.rotation, three.places[i].pose.rotation);
        EXPECT_EQ(one.places[i].translation.x, three.places[i].translation.x);
    }
    EXPECT_EQ(one.confidence.logExpected, three.confidence.logExpected);
}

TEST(FindPlaces, AnotherModelIsNotDeclared) {
    const Complex complex;
    Volume map = DensityOf(complex.all, 8, {2, 2, 2}, 10);
    AddNoise(map, 0.5, 1);
    for (const unsigned seed : {11, 12, 13})
        EXPECT_NE(Find(map, RandomModel(150, seed), 8).verdict, Verdict::Placed) << seed;
}

TEST(FindPlaces, AModelThatOneFilterRulesOutIsSparedTheOther) {
    const Complex complex;
    Volume map = DensityOf(complex.all, 8, {2, 2, 2}, 10);
    AddNoise(map, 0.5, 1);
    PreparedMap prepared(map, 8, 1);
    Monitor silent;
    const auto find = [&](const std::vector<ModelAtom> &model) {
        return FindPlaces(prepared, model, {.resolution = 8, .region = {}, .ruleOut = true}, silent);
    };
    int ruledOut = 0;
    for (unsigned seed = 11; seed < 21; ++seed) {
        const PlacementResult other = find(RandomModel(150, seed));
        if (other.verdict != Verdict::RuledOut) {
            EXPECT_EQ(other.verdict, Verdict::NothingFound) << seed;
            continue;
        }
        ++ruledOut;
        EXPECT_EQ(Find(map, RandomModel(150, seed), 8).verdict, Verdict::NothingFound) << seed;
        EXPECT_GT(other.confidence.logExpected, 0) << "more than one wrong place";
        EXPECT_LT(other.confidence.probability, 0.12);
        EXPECT_EQ(FoundCopies(other), 0u);
        ASSERT_FALSE(other.places.empty());
        EXPECT_EQ(other.profile.size(), 150u);
        EXPECT_GT(other.places.front().inDensity, 0);
    }
    EXPECT_GT(ruledOut, 5);
    // Who belongs there has the places of both filters.
    const PlacementResult right = find(complex.model), full = Find(map, complex.model, 8);
    EXPECT_EQ(right.verdict, Verdict::Placed);
    EXPECT_EQ(right.confidence.logExpected, full.confidence.logExpected);
    EXPECT_EQ(right.profile, full.profile);
    ASSERT_EQ(right.places.size(), full.places.size());
    for (std::size_t i = 0; i < full.places.size(); ++i)
        EXPECT_EQ(right.places[i].score, full.places[i].score) << i;
}

TEST(FindPlaces, NoModelIsRuledOutUnasked) {
    const Complex complex;
    Volume map = DensityOf(complex.all, 8, {2, 2, 2}, 10);
    AddNoise(map, 0.5, 1);
    for (unsigned seed = 11; seed < 14; ++seed)
        EXPECT_EQ(Find(map, RandomModel(150, seed), 8).verdict, Verdict::NothingFound) << seed;
}

TEST(FindPlaces, ATouchingPlaceIsFoundBesideItsNeighbour) {
    const Complex complex(30);
    const PlacementResult result =
        FindBeside(complex.neighbour, DensityOf(complex.all, 8, {2, 2, 2}, 10), complex.model, 8);
    ASSERT_FALSE(result.places.empty());
    EXPECT_LT(complex.Error(result.places.front()), 0.5);
    EXPECT_EQ(result.verdict, Verdict::Placed);
    // The two balls run into one another.
    EXPECT_GT(result.places.front().overlap, 0.02);
    EXPECT_LT(result.places.front().overlap, 0.2);
}

TEST(FindPlaces, ASmallModelBesideALargeNeighbourNeedsItTakenOut) {
    Complex complex;
    complex.model = RandomModel(40, 5);
    complex.placed = Moved(complex.model, complex.rotation, complex.translation);
    complex.neighbour = Moved(RandomModel(500, 2), RotationBy({}), complex.translation + Point{36, 0, 0});
    complex.all = complex.placed;
    complex.all.insert(complex.all.end(), complex.neighbour.begin(), complex.neighbour.end());
    Volume map = DensityOf(complex.all, 10, {2.5, 2.5, 2.5}, 10);
    AddNoise(map, 0.5, 4);
    EXPECT_GT(complex.Error(Find(map, complex.model, 10).places.front()), 5);
    EXPECT_LT(complex.Error(FindBeside(complex.neighbour, map, complex.model, 10).places.front()), 2);
}

TEST(FindPlaces, WhatStandsIsNotFoundAgain) {
    const TwoCopies copies;
    EXPECT_EQ(FoundCopies(Find(copies.map, copies.first.model, 8)), 2u);
    const PlacementResult result = FindBeside(copies.second, copies.map, copies.first.model, 8);
    EXPECT_LT(copies.first.Error(result.places.front()), 0.5);
    EXPECT_EQ(FoundCopies(result), 1u);
}

TEST(FindPlaces, WhatStandsIsTakenOutOfTheMap) {
    // All atoms in one residue: nearly nothing is kept free.
    TwoCopies copies;
    for (ModelAtom &atom : copies.second)
        atom.residue = 0;
    EXPECT_EQ(FoundCopies(FindBeside(copies.second, copies.map, copies.first.model, 8)), 1u);
}

TEST(FindPlaces, WhatStandsIsKeptFree) {
    // A heavy atom in an empty corner, so that next to nothing of the copy's density is taken out.
    TwoCopies copies;
    for (ModelAtom &atom : copies.second)
        atom.electrons *= 1e-6;
    copies.second.push_back({copies.map.origin + Point{2, 2, 2}, 100, 1000, 0, true});
    EXPECT_EQ(FoundCopies(FindBeside(copies.second, copies.map, copies.first.model, 8)), 1u);
}

TEST(FindPlaces, WhereAllIsKnownNothingIsPlaced) {
    const Complex complex;
    const Volume map = DensityOf(complex.all, 8, {2, 2, 2}, 10);
    EXPECT_NE(FindBeside(complex.all, map, complex.model, 8).verdict, Verdict::Placed);
}

TEST(FindPlaces, AConstantMapHasNoPlace) {
    const Volume map{{30, 30, 30}, {2, 2, 2}, {}, LargeVector<float>(27000, 1.5f)};
    const PlacementResult result = Find(map, RandomModel(50, 1), 8);
    EXPECT_EQ(result.verdict, Verdict::NoDensity);
    EXPECT_TRUE(result.places.empty());
}

TEST(FindPlaces, NoiseAloneIsNoPlace) {
    Volume map{{36, 36, 36}, {2, 2, 2}, {}, LargeVector<float>(46656, 0)};
    std::mt19937 random(1);
    std::normal_distribution<float> normal;
    for (float &value : map.values)
        value = normal(random);
    const Verdict verdict = Find(map, RandomModel(80, 1), 8).verdict;
    EXPECT_TRUE(verdict == Verdict::NothingFound || verdict == Verdict::NotJudged);
}

TEST(FindPlaces, AModelLargerThanTheMapIsNoError) {
    const std::vector<ModelAtom> atoms = RandomModel(400, 1);
    Volume map = DensityOf(atoms, 8, {2, 2, 2}, -10);
    const PlacementResult result = Find(map, atoms, 8);
    EXPECT_FALSE(result.places.empty());
}

TEST(FindPlaces, OneResidueAndAMapOfFewVoxelsAreNoError) {
    const Complex complex;
    const Volume map = DensityOf(complex.all, 8, {2, 2, 2}, 10);
    EXPECT_NE(Find(map, RandomModel(1, 1), 8).verdict, Verdict::Placed);
    EXPECT_NE(Find(map, {{{0, 0, 0}, 6, 0, 0, true}}, 8).verdict, Verdict::Placed);
    const Volume tiny{{2, 1, 3}, {2, 2, 2}, {}, {0, 1, 2, 3, 4, 5}};
    EXPECT_NE(Find(tiny, complex.model, 8).verdict, Verdict::Placed);
}

TEST(FindPlaces, AResolutionFinerThanTheVoxelsIsNoError) {
    const Complex complex;
    const PlacementResult result = Find(DensityOf(complex.all, 10, {4, 4, 4}, 10), complex.model, 5);
    EXPECT_LT(complex.Error(result.places.front()), 1);
}

TEST(FindPlaces, ItIsCancelledAtOnce) {
    struct Cancelled : Monitor {
        bool IsCancelled() override { return true; }
    } cancelled;
    const Complex complex;
    const PlacementResult result = FindPlaces(DensityOf(complex.all, 8, {2, 2, 2}, 10), complex.model,
                                              {.resolution = 8, .threads = 1, .region = {}}, cancelled);
    EXPECT_TRUE(result.cancelled);
    EXPECT_NE(result.verdict, Verdict::Placed);
}

TEST(FindPlaces, TellsHowFarItIs) {
    struct Recorder : Monitor {
        void Advance(double share) override { shares.push_back(share); }
        std::vector<double> shares;
    } recorder;
    const Complex complex;
    FindPlaces(DensityOf(complex.all, 8, {2, 2, 2}, 10), complex.model,
               {.resolution = 8, .threads = 1, .region = {}}, recorder);
    ASSERT_GT(recorder.shares.size(), 100u);
    EXPECT_LT(recorder.shares.front(), 0.1);
    EXPECT_TRUE(std::ranges::is_sorted(recorder.shares));
    EXPECT_NEAR(recorder.shares.back(), 1, 1e-9);
}

TEST(FindPlaces, CancelledWhileItRefinesItKeepsWhatTheScanFound) {
    struct Impatient : Monitor {
        void Advance(double share) override { last = share; }
        bool IsCancelled() override { return last > 0.6; }
        double last = 0;
    } impatient;
    const Complex complex;
    const PlacementResult result = FindPlaces(DensityOf(complex.all, 8, {2, 2, 2}, 10), complex.model,
                                              {.resolution = 8, .threads = 1, .region = {}}, impatient);
    EXPECT_TRUE(result.cancelled);
    ASSERT_FALSE(result.places.empty());
    EXPECT_LT(complex.Error(result.places.front()), 5);
}

TEST(FindPlaces, ARegionHoldsEveryPlaceOfIt) {
    const Complex complex;
    const Volume map = DensityOf(complex.all, 8, {2, 2, 2}, 10);
    Monitor silent;
    const Point there = MakePointModel(complex.placed).centre;
    PlacementResult result =
        FindPlaces(map, complex.model, {.resolution = 8, .threads = 1, .region = Sphere{there, 6}}, silent);
    ASSERT_FALSE(result.places.empty());
    EXPECT_LT(complex.Error(result.places.front()), 0.5);
    const Sphere elsewhere{there + Point{38, 0, 0}, 10};
    result = FindPlaces(map, complex.model, {.resolution = 8, .threads = 1, .region = elsewhere}, silent);
    EXPECT_NE(result.verdict, Verdict::Placed);
    EXPECT_FALSE(result.places.empty());
    for (const Place &place : result.places)
        EXPECT_TRUE(elsewhere.Holds(place.pose.centre));
    result = FindPlaces(map, complex.model,
                        {.resolution = 8, .threads = 1, .region = Sphere{{1000, 0, 0}, 10}}, silent);
    EXPECT_EQ(result.verdict, Verdict::NoDensity);
}

TEST(FindPlaces, NoPlaceOverlapsABetterOne) {
    const Complex complex;
    const PlacementResult result = Find(DensityOf(complex.all, 8, {2, 2, 2}, 10), complex.model, 8);
    const PointModel model = MakePointModel(complex.model);
    for (std::size_t i = 0; i < result.places.size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            EXPECT_GT(Length(result.places[i].pose.centre - result.places[j].pose.centre),
                      0.5 * model.gyration);
    EXPECT_EQ(FoundCopies(result), 1u);
}

namespace {

/// Two copies of a chain about an axis, `apart` Å from one another, as two chains or as one.
std::vector<ModelAtom> Dimer(bool oneChain) {
    std::vector<ModelAtom> dimer = Moved(RandomModel(100, 3), RotationBy({}), {17, 0, 0});
    for (ModelAtom atom : Moved(dimer, RotationBy({0, 0, std::numbers::pi}), {})) {
        atom.chain = oneChain ? 0 : 1;
        atom.residue += 100;
        dimer.push_back(atom);
    }
    return dimer;
}

} // namespace

TEST(FindPlaces, TheEqualTurnsOfADimerAreOnePlace) {
    const PlacementResult result = Find(DensityOf(Dimer(false), 8, {2, 2, 2}, 10), Dimer(false), 8);
    EXPECT_EQ(result.verdict, Verdict::Placed);
    EXPECT_LT(result.confidence.otherTurns, 0.01);
}

TEST(FindPlaces, TurnsThatScoreAsWellAreListedWhereTheTurnIsUnsure) {
    const PlacementResult result = Find(DensityOf(Dimer(true), 8, {2, 2, 2}, 10), Dimer(true), 8);
    ASSERT_EQ(result.verdict, Verdict::TurnUnsure);
    EXPECT_NEAR(result.confidence.probability, 0.5, 0.05);
    ASSERT_GE(result.places.size(), 2u);
    EXPECT_FALSE(result.places[0].otherTurn);
    EXPECT_TRUE(result.places[1].otherTurn);
    EXPECT_EQ(FoundCopies(result), 1u);
}

TEST(FindPlaces, DarkDensityIsSaid) {
    const Complex complex;
    Volume map = DensityOf(complex.all, 8, {2, 2, 2}, 10);
    EXPECT_FALSE(Find(map, complex.model, 8).seemsInverted);
    for (float &value : map.values)
        value = -value;
    const PlacementResult result = Find(map, complex.model, 8);
    EXPECT_TRUE(result.seemsInverted);
    EXPECT_NE(result.verdict, Verdict::Placed);
}

TEST(RefinePlace, BringsAModelBackFromTenAngstromAndThirtyDegrees) {
    const Complex complex;
    const Volume map = DensityOf(complex.all, 8, {2, 2, 2}, 10);
    const Point centre = MakePointModel(complex.placed).centre;
    std::mt19937 random(5);
    Monitor silent;
    unsigned back = 0;
    for (int i = 0; i < 10; ++i) {
        // A turn by 30° about the centre, about any axis, and a shift by 10 Å in any direction.
        const Point axis = RandomRotation(random) * Point{0, 0, std::numbers::pi / 6};
        const Point shift = RandomRotation(random) * Point{0, 0, 10};
        const Matrix turn = RotationBy(axis);
        const std::vector<ModelAtom> start = Moved(complex.placed, turn, centre + shift - turn * centre);
        const PlacementResult result =
            RefinePlace(map, start, {.resolution = 8, .threads = 1, .region = {}}, silent);
        EXPECT_EQ(result.verdict, Verdict::Refined);
        ASSERT_EQ(result.places.size(), 1u);
        const Place &place = result.places.front();
        EXPECT_NEAR(Length(result.start - centre), 10, 1e-9);
        double squares = 0;
        for (std::size_t atom = 0; atom < start.size(); ++atom) {
            const Point d = place.pose.rotation * start[atom].position + place.translation -
                            complex.placed[atom].position;
            squares += Dot(d, d) / double(start.size());
        }
        back += std::sqrt(squares) < 0.5 ? 1 : 0;
    }
    EXPECT_GE(back, 9u);
}

TEST(RefinePlace, OneAtomAModelOutsideOfTheMapAndAConstantMapAreNoError) {
    const Complex complex;
    Monitor silent;
    const PlacementParameters parameters{.resolution = 8, .threads = 2, .region = {}};
    const Volume map = DensityOf(complex.all, 8, {2, 2, 2}, 10);
    const std::vector<ModelAtom> outside = Moved(complex.placed, RotationBy({}), {5000, 0, 0});
    EXPECT_EQ(RefinePlace(map, outside, parameters, silent).verdict, Verdict::NoDensity);
    EXPECT_TRUE(RefinePlace(map, outside, parameters, silent).places.empty());
    const Point inside = complex.placed.front().position;
    EXPECT_EQ(RefinePlace(map, {{inside, 6, 0, 0, true}}, parameters, silent).places.size(), 1u);
    const Volume constant{{8, 8, 8}, {2, 2, 2}, {}, LargeVector<float>(512, 1)};
    EXPECT_EQ(RefinePlace(constant, complex.model, parameters, silent).verdict, Verdict::NoDensity);
}

TEST(FindPlaces, RefusesWhatHasNoMeaning) {
    const Volume map{{4, 4, 4}, {2, 2, 2}, {}, LargeVector<float>(64, 0)};
    EXPECT_THROW(Find(map, {}, 8), std::invalid_argument);
    EXPECT_THROW(Find(map, RandomModel(5, 1), 0), std::invalid_argument);
    EXPECT_THROW(Find(map, RandomModel(5, 1), NAN), std::invalid_argument);
}
