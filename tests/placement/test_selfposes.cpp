#include "placement/SelfPoses.h"

#include "SyntheticAssembly.h"

#include "placement/DistinctPlaces.h"

#include <gtest/gtest.h>

using namespace placement;

namespace {

SelfMap SelfMapOf(const SyntheticAssembly &assembly) {
    return MakeSelfMap(DensityOf(assembly.atoms, 8, {2, 2, 2}, 15), 8, 1);
}

Pose AtRest(const SelfMap &map) {
    return {RotationBy({}), map.body.centre};
}

} // namespace

TEST(SelfPoses, AMapCorrelatesWithItselfByOne) {
    const SyntheticAssembly assembly("D2", 80, 1);
    const SelfMap map = SelfMapOf(assembly);
    EXPECT_NEAR(map.Correlation(AtRest(map)), 1, 0.01);
    for (const Motion &motion : MotionsOf(assembly.symmetry, assembly.frame))
        EXPECT_GT(map.Correlation(Moved(motion, AtRest(map))), 0.95);
    EXPECT_LT(map.Correlation(Moved({RotationBy({0.5, 0.3, 0.2}), {}}, AtRest(map))), 0.5);
}

TEST(SelfPoses, OperatorsComeFirst) {
    const SyntheticAssembly assembly("C5", 80, 1);
    const SelfMap map = SelfMapOf(assembly);
    Monitor silent;
    const std::vector<ScoredPose> poses = FindSelfPoses(map, 1, silent);
    ASSERT_GT(poses.size(), 20u);
    std::vector<Pose> right;
    for (const Motion &motion : MotionsOf(assembly.symmetry, assembly.frame))
        right.push_back(Moved(motion, AtRest(map)));
    for (std::size_t i = 0; i < poses.size(); ++i) {
        const auto near = [&](const Pose &pose) {
            return std::sqrt(SquaredRmsd(map.body, pose, poses[i].pose)) < (i < 4 ? 1 : 4);
        };
        EXPECT_EQ(std::ranges::count_if(right, near), i < 4 ? 1 : 0) << i;
        // Where the map is hardly moved it always correlates with itself.
        EXPECT_GT(SquaredRmsd(map.body, AtRest(map), poses[i].pose), 8 * 8);
    }
}

TEST(SelfPoses, PointsDoNotGrowWithTheMap) {
    const SelfMap small = SelfMapOf(SyntheticAssembly("C1", 100, 1)),
                  large = SelfMapOf(SyntheticAssembly("O", 300, 1));
    EXPECT_EQ(small.resolution, 8);
    EXPECT_GT(large.resolution, 10);
    EXPECT_LT(large.body.points.size(), 3500u);
}

TEST(SelfPoses, AConstantMapHasNone) {
    Volume map{{20, 20, 20}, {2, 2, 2}, {}, {}};
    map.values.assign(8000, 3);
    EXPECT_TRUE(MakeSelfMap(map, 8, 1).IsEmpty());
}
