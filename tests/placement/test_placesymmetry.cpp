#include "placement/PlaceSymmetry.h"

#include "SyntheticAssembly.h"

#include <gtest/gtest.h>

using namespace placement;

namespace {

/// The places of an assembly's subunits, each a little off.
std::vector<Pose> PlacesIn(const SyntheticAssembly &assembly, const PointModel &model) {
    std::mt19937 random(5);
    std::normal_distribution<double> normal;
    std::vector<Pose> places;
    for (const Motion &motion : MotionsOf(assembly.symmetry, assembly.frame, 3)) {
        Pose place = Moved(motion, {RotationBy({}), model.centre});
        place.rotation =
            RotationBy(0.02 * Point{normal(random), normal(random), normal(random)}) * place.rotation;
        place.centre = place.centre + 0.4 * Point{normal(random), normal(random), normal(random)};
        places.push_back(place);
    }
    return places;
}

} // namespace

TEST(PlaceSymmetry, IsThatOfTheAssembly) {
    for (const char *name : {"C2", "C3", "C5", "C7", "D2", "D3", "D7", "T", "O", "H:25.00,-166.60"}) {
        const SyntheticAssembly assembly(name, 60, 1);
        const PointModel model = MakePointModel(assembly.subunit);
        const PlaceSymmetry found = FindPlaceSymmetry(model, PlacesIn(assembly, model), 8);
        EXPECT_EQ(found.symmetry.kind, assembly.symmetry.kind) << name;
        EXPECT_EQ(found.symmetry.fold, assembly.symmetry.fold) << name;
        EXPECT_NEAR(found.symmetry.rise, assembly.symmetry.rise, 1) << name;
        EXPECT_NEAR(found.symmetry.twist, assembly.symmetry.twist, 3) << name;
        EXPECT_GT(found.share, 0.9) << name;
        EXPECT_GT(found.rmsd, 0.2) << name;
        EXPECT_LT(found.rmsd, 4) << name;
        EXPECT_LT(assembly.AngleFromMainAxis(found.frame), 6) << name;
        EXPECT_LT(assembly.DistanceFromCentre(found.frame), 3) << name;
    }
}

TEST(PlaceSymmetry, ACopyMayBeMissing) {
    const SyntheticAssembly assembly("C7", 60, 1);
    const PointModel model = MakePointModel(assembly.subunit);
    std::vector<Pose> places = PlacesIn(assembly, model);
    places.erase(places.begin() + 2);
    EXPECT_EQ(NameOf(FindPlaceSymmetry(model, places, 8).symmetry), "C7");
    places.resize(3);
    EXPECT_NE(NameOf(FindPlaceSymmetry(model, places, 8).symmetry), "C7");
}

TEST(PlaceSymmetry, PlacesAnywhereHaveNone) {
    const PointModel model = MakePointModel(RandomModel(60, 1));
    std::mt19937 random(3);
    std::normal_distribution<double> normal(0, 40);
    for (int i = 0; i < 20; ++i) {
        std::vector<Pose> places;
        for (int j = 0; j < 2 + i % 4; ++j)
            places.push_back({RandomRotation(random), {normal(random), normal(random), normal(random)}});
        EXPECT_TRUE(FindPlaceSymmetry(model, places, 8).symmetry.IsNone()) << i;
    }
}

TEST(PlaceSymmetry, OneOrTwoPlacesOfAHelixHaveNone) {
    const SyntheticAssembly assembly("H:25,-166.6", 60, 1);
    const PointModel model = MakePointModel(assembly.subunit);
    std::vector<Pose> places = PlacesIn(assembly, model);
    places.resize(2);
    EXPECT_TRUE(FindPlaceSymmetry(model, places, 8).symmetry.IsNone());
    places.resize(1);
    EXPECT_TRUE(FindPlaceSymmetry(model, places, 8).symmetry.IsNone());
    EXPECT_TRUE(FindPlaceSymmetry(model, {}, 8).symmetry.IsNone());
}
