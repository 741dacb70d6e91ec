#include "placement/Trim.h"

#include "SyntheticModel.h"
#include "placement/FindPlaces.h"

#include <gtest/gtest.h>

using namespace placement;

namespace {

const std::vector<ModelAtom> &Atoms() {
    static const std::vector<ModelAtom> atoms = Moved(RandomModel(100, 1), RotationBy({}), {60, 80, 100});
    return atoms;
}

/// A small model in a large box, away from its middle.
Volume LargeMap() {
    const Volume small = DensityOf(Atoms(), 8, {2, 2, 2}, 12);
    Volume large{{90, 80, 85}, small.spacing, small.origin - Point{20, 60, 40}, {}};
    large.values.assign(large.count[0] * large.count[1] * large.count[2], 0);
    for (std::size_t k = 0; k < small.count[2]; ++k)
        for (std::size_t j = 0; j < small.count[1]; ++j)
            for (std::size_t i = 0; i < small.count[0]; ++i)
                large.values[large.Index(i + 10, j + 30, k + 20)] = small.values[small.Index(i, j, k)];
    AddNoise(large, 0.3, 1);
    return large;
}

} // namespace

TEST(Trimmed, HoldsTheModelAndLittleElse) {
    const Volume map = LargeMap();
    const VolumeView part = Trimmed(map, MakePointModel(Atoms()), 8, 1);
    EXPECT_LT(part.count[0] * part.count[1] * part.count[2], map.values.size() / 3);
    for (const ModelAtom &atom : Atoms()) {
        const Point p = atom.position - part.origin;
        EXPECT_TRUE(p.x > 0 && p.y > 0 && p.z > 0);
        EXPECT_TRUE(p.x < 2 * double(part.count[0]) && p.y < 2 * double(part.count[1]) &&
                    p.z < 2 * double(part.count[2]));
    }
}

TEST(Trimmed, ASearchFindsTheModelInThePart) {
    const Volume map = LargeMap();
    Monitor silent;
    const PlacementResult result =
        FindPlaces(map, Atoms(), {.resolution = 8, .threads = 1, .region = {}}, silent);
    EXPECT_EQ(result.verdict, Verdict::Placed);
    EXPECT_LT(Length(result.places.front().pose.centre - result.start), 0.5);
    EXPECT_LT(AngleOf(result.places.front().pose.rotation), 0.02);
    EXPECT_LT(result.searched[0], map.count[0]);
}

TEST(Trimmed, AFullBoxAndAConstantOneStayWhole) {
    const Volume full = DensityOf(Atoms(), 8, {2, 2, 2}, 6);
    EXPECT_EQ(Trimmed(full, MakePointModel(Atoms()), 8, 1).count, full.count);
    const Volume constant{{40, 40, 40}, {2, 2, 2}, {}, LargeVector<float>(64000, 1)};
    EXPECT_EQ(Trimmed(constant, MakePointModel(Atoms()), 8, 1).count, constant.count);
}
