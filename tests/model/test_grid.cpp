#include "DataMaker.h"
#include "ModelGuard.h"
#include "Space.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>

using namespace VARNO;
using testing::Each;

namespace {

Grid MakeGrid(const Vector<unsigned, 3> &n, const Vector<float, 3> &origin, const Vector<float, 3> &spacing) {
    return Grid("map", n, origin, spacing, {90, 90, 90});
}

} // namespace

TEST(Grid, StartsAtZeroEverywhere) {
    const Grid grid = MakeGrid({2, 3, 4}, {}, {1, 1, 1});
    EXPECT_EQ(grid.Values().size(), 24u);
    EXPECT_THAT(grid.Values(), Each(0.0f));
}

TEST(Grid, KeepsItsAttributes) {
    const Grid grid("map", {2, 3, 4}, {-1, 0, 7.5f}, {1, 2, 3}, {90, 91, 92});
    EXPECT_EQ(grid.Dimensions(), (Vector<unsigned, 3>(2, 3, 4)));
    EXPECT_EQ(grid.Origin(), (Vector<float, 3>(-1, 0, 7.5f)));
    EXPECT_EQ(grid.Spacing(), (Vector<float, 3>(1, 2, 3)));
    EXPECT_EQ(grid.Angles(), (Vector<float, 3>(90, 91, 92)));
    EXPECT_EQ(grid.GetLabel(), "map");
    EXPECT_EQ(grid.GetName(), "map");
    EXPECT_EQ(grid.GetCode(), ' ');
    EXPECT_FALSE(grid.GetPosition().IsValid());
}

TEST(Grid, KeepsEachVoxelInItsOwnPlaceWithXFastest) {
    Grid grid = MakeGrid({2, 3, 4}, {}, {1, 1, 1});
    for (unsigned k = 0; k < 4; ++k)
        for (unsigned j = 0; j < 3; ++j)
            for (unsigned i = 0; i < 2; ++i)
                grid.SetValue(i, j, k, float(i + 10 * j + 100 * k));
    EXPECT_EQ(grid.GetValue(1, 2, 3), 321);
    EXPECT_EQ(grid.GetValue(0, 2, 1), 120);
    EXPECT_EQ(grid.Values()[1], 1);
    EXPECT_EQ(grid.Values()[2], 10);
    EXPECT_EQ(grid.Values()[6], 100);
    EXPECT_EQ(grid.Values()[23], 321);
}

TEST(Grid, KnowsWhereEachVoxelLies) {
    const Grid grid = MakeGrid({9, 9, 9}, {-1, 10, 100}, {0.5f, 1, 2});
    EXPECT_EQ(grid.GetPoint(0, 0, 0), Vertex(-1, 10, 100, false));
    EXPECT_EQ(grid.GetPoint(1, 2, 3), Vertex(-0.5f, 12, 106, false));
    EXPECT_FALSE(grid.GetPoint(0, 0, 0).IsValid());
}

TEST(Grid, RoundsProductAndSumOfAVoxelsPlaceToFloat) {
    const Grid grid = MakeGrid({20, 20, 20}, {-22.8f, 10.1f, 0.3f}, {11.4f, 1.742f, 1.2156f});
    // Computed elsewhere; rounded only once, each differs in the last bit.
    EXPECT_EQ(grid.GetPoint(3, 5, 17), Vertex(0x1.6cccc8p+3f, 0x1.2cf5c4p+4f, 0x1.4f7174p+4f, false));
}

TEST(Grid, WithoutAnyVoxelIsEmpty) {
    EXPECT_TRUE(MakeGrid({0, 5, 5}, {}, {1, 1, 1}).Values().empty());
}

TEST(Grid, ThrowsBadAllocWhereItsSizeOverflows) {
    // 2^31 · 2^31 · 4 is 0 in 64 bits; the other is 2^62, more than a container may hold.
    EXPECT_THROW(MakeGrid({1u << 31, 1u << 31, 4}, {}, {1, 1, 1}), std::bad_alloc);
    EXPECT_THROW(MakeGrid({1u << 31, 1u << 31, 1}, {}, {1, 1, 1}), std::bad_alloc);
    EXPECT_THROW(MakeGrid({~0u, ~0u, ~0u}, {}, {1, 1, 1}), std::bad_alloc);
}

TEST(Grid, SharesItsValuesWithOneThatOutlivesThem) {
    const ModelGuard guard;
    auto *grid =
        dynamic_cast<Grid *>(DataMaker::makeGrid(nullptr, "map", 2, 2, 2, 1, 2, 3, 4, 5, 6, 90, 91, 92));
    grid->SetValue(1, 1, 1, 7);
    const std::unique_ptr<Grid> shared = grid->Share();
    EXPECT_EQ(shared->Values().data(), grid->Values().data());
    EXPECT_FALSE(shared->IsAttached());
    Space::instance()->Remove(grid);
    EXPECT_TRUE(grid->Values().empty());
    EXPECT_EQ(shared->GetValue(1, 1, 1), 7);
    EXPECT_EQ(shared->Dimensions(), (Vector<unsigned, 3>(2, 2, 2)));
    EXPECT_EQ(shared->Origin(), (Vector<float, 3>(1, 2, 3)));
    EXPECT_EQ(shared->Spacing(), (Vector<float, 3>(4, 5, 6)));
    EXPECT_EQ(shared->Angles(), (Vector<float, 3>(90, 91, 92)));
    EXPECT_EQ(shared->GetName(), "map");
}
