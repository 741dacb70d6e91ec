#include "placement/SymmetricPlaces.h"

#include "SyntheticAssembly.h"

#include <gtest/gtest.h>

using namespace placement;

namespace {

Volume NoisyMap(const SyntheticAssembly &assembly, double noise) {
    Volume map = DensityOf(assembly.atoms, 8, {2.2, 2.2, 2.2}, 12);
    AddNoise(map, noise, 1);
    return map;
}

/// The subunit somewhere else, as a model to be placed.
std::vector<ModelAtom> Displaced(const std::vector<ModelAtom> &atoms) {
    return Moved(atoms, RotationBy({0.5, 1.1, -0.7}), {40, -30, 20});
}

SymmetricResult FindIn(const VolumeView &map, const std::vector<ModelAtom> &atoms,
                       const char *asked = nullptr, unsigned threads = 1) {
    Monitor silent;
    SymmetryRequest request;
    if (asked)
        request.symmetry = ReadSymmetry(asked);
    PlacementParameters parameters;
    parameters.resolution = 8;
    parameters.threads = threads;
    return FindSymmetricPlaces(map, atoms, parameters, request, silent);
}

/// The RMSD of a place from the nearest copy of the assembly.
double RmsdOf(const Place &place, const SyntheticAssembly &assembly, const std::vector<ModelAtom> &atoms) {
    double least = 1e9;
    for (const Motion &motion : MotionsOf(assembly.symmetry, assembly.frame, 3)) {
        double squares = 0;
        for (std::size_t i = 0; i < atoms.size(); ++i) {
            const Point off = place.pose.rotation * atoms[i].position + place.translation -
                              motion * assembly.subunit[i].position;
            squares += Dot(off, off);
        }
        least = std::min(least, std::sqrt(squares / double(atoms.size())));
    }
    return least;
}

} // namespace

TEST(SymmetricPlaces, OnePlaceBringsItsCopies) {
    for (const char *name : {"C5", "D3"}) {
        const SyntheticAssembly assembly(name, 100, 1);
        const std::vector<ModelAtom> atoms = Displaced(assembly.subunit);
        const SymmetricResult result = FindIn(NoisyMap(assembly, 0.5), atoms);
        ASSERT_TRUE(result.used) << name;
        EXPECT_EQ(NameOf(result.used->symmetry), name);
        EXPECT_EQ(result.used->places, 1u);
        ASSERT_EQ(result.used->copies, assembly.copies);
        EXPECT_EQ(FoundCopies(result.placement), assembly.copies);
        for (std::size_t i = 0; i < assembly.copies; ++i)
            EXPECT_LT(RmsdOf(result.placement.places[i], assembly, atoms), 1) << name << ' ' << i;
        EXPECT_LT(assembly.AngleFromMainAxis(result.used->frame), 0.5);
        EXPECT_LT(assembly.DistanceFromCentre(result.used->frame), 0.5);
    }
}

TEST(SymmetricPlaces, AHelixBringsThoseThatLieInTheMap) {
    const SyntheticAssembly assembly("H:25,-50", 100, 1);
    const std::vector<ModelAtom> atoms = Displaced(assembly.subunit);
    const SymmetricResult result = FindIn(NoisyMap(assembly, 0.5), atoms);
    ASSERT_TRUE(result.used);
    EXPECT_EQ(result.used->copies, assembly.copies);
    for (std::size_t i = 0; i < result.used->copies; ++i)
        EXPECT_LT(RmsdOf(result.placement.places[i], assembly, atoms), 1) << i;
    EXPECT_NEAR(result.used->symmetry.rise, 25, 0.2);
    EXPECT_NEAR(result.used->symmetry.twist, -50, 0.5);
}

// Noise in which each copy alone is lost.
TEST(SymmetricPlaces, TogetherCopiesAreFoundThatAloneAreNot) {
    const SyntheticAssembly assembly("D3", 60, 1);
    const std::vector<ModelAtom> atoms = Displaced(assembly.subunit);
    const Volume map = NoisyMap(assembly, 6);
    PlacementParameters parameters;
    parameters.resolution = 8;
    Monitor silent;
    EXPECT_EQ(FoundCopies(FindPlaces(map, atoms, parameters, silent)), 0u);
    const SymmetricResult result = FindIn(map, atoms, "D3");
    ASSERT_TRUE(result.used);
    EXPECT_EQ(result.used->copies, 6u);
    EXPECT_LT(RmsdOf(result.placement.places.front(), assembly, atoms), 3);
}

// Noise in which the map by itself does not show it.
TEST(SymmetricPlaces, ASymmetryThatIsGivenIsUsedWhereItHelps) {
    const SyntheticAssembly assembly("D3", 100, 1);
    const std::vector<ModelAtom> atoms = Displaced(assembly.subunit);
    SymmetryRequest request;
    request.symmetry = assembly.symmetry;
    request.frame = assembly.frame;
    PlacementParameters parameters;
    parameters.resolution = 8;
    Monitor silent;
    const SymmetricResult result =
        FindSymmetricPlaces(NoisyMap(assembly, 20), atoms, parameters, request, silent);
    EXPECT_FALSE(result.ofMap.found);
    ASSERT_TRUE(result.used);
    EXPECT_EQ(result.used->source, SymmetrySource::Given);
    EXPECT_EQ(result.used->copies, 6u);
    EXPECT_LT(RmsdOf(result.placement.places.front(), assembly, atoms), 3);
}

TEST(SymmetricPlaces, ASymmetryThatIsGivenWronglyIsNotUsed) {
    const SyntheticAssembly assembly("C1", 100, 1);
    const std::vector<ModelAtom> atoms = Displaced(assembly.subunit);
    SymmetryRequest request;
    request.symmetry = ReadSymmetry("C3");
    request.frame = {RotationBy({0.3, 0.2, 0.1}), assembly.frame.centre + Point{10, 5, 0}};
    PlacementParameters parameters;
    parameters.resolution = 8;
    Monitor silent;
    const SymmetricResult result =
        FindSymmetricPlaces(NoisyMap(assembly, 0.5), atoms, parameters, request, silent);
    EXPECT_FALSE(result.used);
    EXPECT_EQ(result.reason, NotUsed::NotFound);
    EXPECT_EQ(FoundCopies(result.placement), 1u);
}

TEST(SymmetricPlaces, WhatTheMapDoesNotHaveIsNotUsed) {
    const SyntheticAssembly assembly("C5", 100, 1);
    const std::vector<ModelAtom> atoms = Displaced(assembly.subunit);
    const Volume map = NoisyMap(assembly, 0.5);
    const SymmetricResult result = FindIn(map, atoms, "C7");
    EXPECT_FALSE(result.used);
    EXPECT_EQ(result.reason, NotUsed::NotFound);
    PlacementParameters parameters;
    parameters.resolution = 8;
    Monitor silent;
    const PlacementResult alone = FindPlaces(map, atoms, parameters, silent);
    EXPECT_EQ(result.placement.places.size(), alone.places.size());
    EXPECT_EQ(result.placement.places.front().score, alone.places.front().score);
}

TEST(SymmetricPlaces, AModelOfAllCopiesIsPlacedAlone) {
    const SyntheticAssembly assembly("C5", 60, 1);
    const std::vector<ModelAtom> atoms = Displaced(assembly.atoms);
    const SymmetricResult result = FindIn(NoisyMap(assembly, 0.5), atoms);
    // Five turns of the whole lie upon one another, none of which is a copy of another.
    EXPECT_LE(FoundCopies(result.placement), 1u);
}

TEST(SymmetricPlaces, AreTheSameOnAnyNumberOfThreads) {
    const SyntheticAssembly assembly("C3", 80, 1);
    const Volume map = NoisyMap(assembly, 1);
    const std::vector<ModelAtom> atoms = Displaced(assembly.subunit);
    const SymmetricResult one = FindIn(map, atoms, nullptr, 1), three = FindIn(map, atoms, nullptr, 3);
    ASSERT_EQ(one.placement.places.size(), three.placement.places.size());
    for (std::size_t i = 0; i < one.placement.places.size(); ++i) {
        EXPECT_EQ(one.placement.places[i].score, three.placement.places[i].score);
        EXPECT_EQ(Length(one.placement.places[i].pose.centre - three.placement.places[i].pose.centre), 0);
    }
}

TEST(SymmetricPlaces, ACancelledSearchKeepsWhatWasFound) {
    class AfterTheFirstSearch : public Monitor {
    public:
        void Advance(double share) override { m_share = share; }
        bool IsCancelled() override { return m_share >= 0.3; }

    private:
        double m_share = 0;
    } monitor;
    const SyntheticAssembly assembly("C5", 100, 1);
    const std::vector<ModelAtom> atoms = Displaced(assembly.subunit);
    PlacementParameters parameters;
    parameters.resolution = 8;
    const SymmetricResult result =
        FindSymmetricPlaces(NoisyMap(assembly, 0.5), atoms, parameters, {}, monitor);
    EXPECT_TRUE(result.placement.cancelled);
    EXPECT_FALSE(result.used);
    EXPECT_EQ(result.reason, NotUsed::NotFinished);
    ASSERT_FALSE(result.placement.places.empty());
    EXPECT_LT(RmsdOf(result.placement.places.front(), assembly, atoms), 1);
}
