#include "RandomSearch.h"
#include "fast/LevelGrids.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

using namespace VARNO;

namespace {

using fast::LevelMap;

/// A voxel's place in the arrays of a fast map, or that of one of the border.
std::ptrdiff_t Place(const LevelMap &map, int x, int y, int z) {
    const auto &layout = map.Layout();
    return std::ptrdiff_t(x) * layout.Axis(0).stride + std::ptrdiff_t(y) * layout.Axis(1).stride +
           std::ptrdiff_t(z) * layout.Axis(2).stride;
}

/// Places as the points of a pose may lie: anywhere in the map and about it, or all at its extremes.
class PosesIn {
public:
    PosesIn(const LevelMap &map, unsigned seed)
        : m_map(map)
        , m_random(seed)
        , m_lowest(Anywhere())
        , m_highest(m_lowest) {
        const auto &layout = map.Layout();
        for (int x = 0; x < layout.Axis(0).count; ++x)
            for (int y = 0; y < layout.Axis(1).count; ++y)
                for (int z = 0; z < layout.Axis(2).count; ++z) {
                    const std::ptrdiff_t place = Place(map, x, y, z);
                    if (map.Voxels().First()[place] < map.Voxels().First()[m_lowest])
                        m_lowest = place;
                    if (map.Voxels().First()[place] > map.Voxels().First()[m_highest])
                        m_highest = place;
                }
    }

    std::vector<std::ptrdiff_t> Make(unsigned kind, std::size_t points) {
        std::vector<std::ptrdiff_t> places(points, Anywhere());
        for (std::ptrdiff_t &place : places)
            if (kind == 0)
                place = Anywhere();
            else if (kind == 1)
                place = m_random() % 2 == 0 ? m_lowest : m_highest;
            else if (kind < 4)
                place = kind == 2 ? m_lowest : m_highest;
        return places;
    }
    static constexpr unsigned kinds = 5; ///< the last one has all points at one place

private:
    std::ptrdiff_t Anywhere() {
        int index[3];
        for (std::size_t axis = 0; axis < 3; ++axis)
            index[axis] = int(m_random() % unsigned(m_map.Layout().Axis(axis).count + 2)) - 1;
        return Place(m_map, index[0], index[1], index[2]);
    }

    const LevelMap &m_map;
    std::mt19937 m_random;
    std::ptrdiff_t m_lowest, m_highest;
};

void ExpectBoundsOf(const LevelMap &map, const std::vector<std::ptrdiff_t> &pose) {
    double score = 0;
    std::int64_t levels = 0, fineLevels = 0;
    for (const std::ptrdiff_t place : pose) {
        score += double(map.Voxels().First()[place]);
        levels += map.Levels().First()[place];
        fineLevels += map.FineLevels().First()[place];
    }
    const fast::SumRange range = map.SumsBetween(score, score);
    ASSERT_LE(levels, 65535);
    ASSERT_LE(range.first, levels) << "score " << score;
    ASSERT_GE(range.last, levels) << "score " << score;
    const std::int64_t fine = map.FineSteps() * levels - fineLevels;
    const fast::FineRange fineRange = map.FineSumsBetween(score, score);
    ASSERT_LE(fineRange.first, fine) << "score " << score;
    ASSERT_GE(fineRange.last, fine) << "score " << score;
    // Bounds that are too wide would hold as well, and be of no use.
    const auto widest = std::int64_t(pose.size()) + 4;
    ASSERT_LE(range.last - range.first, widest);
    ASSERT_LE(std::int64_t(fineRange.last) - fineRange.first, widest);
}

bool IsFinite(const Grid &grid) {
    return std::ranges::all_of(grid.Values(), [](float value) { return std::isfinite(value); });
}

} // namespace

TEST(LevelMap, LevelsBoundTheScoreOfEveryPose) {
    constexpr std::size_t counts[] = {1, 2, 63, 375, 1040, 1041, 5000, LevelMap::maxPoints};
    unsigned maps = 0;
    for (unsigned seed = 0; seed < 300; ++seed) {
        const RandomSearch random(seed);
        if (!IsFinite(*random.map))
            continue;
        ++maps;
        const std::size_t points = counts[seed % std::size(counts)];
        SCOPED_TRACE("seed " + std::to_string(seed) + ", " + std::to_string(points) + " points");
        const LevelMap map(*random.map, points);
        PosesIn poses(map, seed);
        for (unsigned kind = 0; kind < PosesIn::kinds; ++kind)
            for (int repeat = 0; repeat < 3; ++repeat)
                ASSERT_NO_FATAL_FAILURE(ExpectBoundsOf(map, poses.Make(kind, points)));
    }
    EXPECT_GT(maps, 200u);
}

TEST(LevelMap, FourLevelsFitIntoAByte) {
    for (unsigned seed = 0; seed < 100; ++seed) {
        const RandomSearch random(seed);
        if (!IsFinite(*random.map))
            continue;
        const LevelMap map(*random.map, 1);
        EXPECT_LE(std::ranges::max(map.Levels().all), 63) << "seed " << seed;
        EXPECT_LE(std::ranges::max(map.FineLevels().all), 63) << "seed " << seed;
    }
}

TEST(LevelMap, HoldsTheVoxelsWithABorderOfNothing) {
    const RandomSearch random(1);
    const Grid &grid = *random.map;
    const auto &n = grid.Dimensions();
    const LevelMap map(grid, 100);
    for (int x = -1; x <= int(n[0]); ++x)
        for (int y = -1; y <= int(n[1]); ++y)
            for (int z = -1; z <= int(n[2]); ++z) {
                const bool inside =
                    x >= 0 && x < int(n[0]) && y >= 0 && y < int(n[1]) && z >= 0 && z < int(n[2]);
                const float expected =
                    inside ? grid.Values()[std::size_t(x) +
                                           n[0] * (std::size_t(y) + std::size_t(n[1]) * std::size_t(z))]
                           : 0.0f;
                ASSERT_EQ(map.Voxels().First()[Place(map, x, y, z)], expected) << x << ' ' << y << ' ' << z;
            }
}

TEST(LevelMap, KnowsWhetherAVoxelIsNegative) {
    for (unsigned seed = 0; seed < 100; ++seed) {
        const RandomSearch random(seed);
        if (!IsFinite(*random.map))
            continue;
        const auto values = random.map->Values();
        const bool negative = std::ranges::any_of(values, [](float value) { return value < 0; });
        EXPECT_EQ(LevelMap(*random.map, 100).HasNegativeVoxels(), negative) << "seed " << seed;
    }
    // Far less than a level below 0, but a thousand of them score -1.0.
    Grid grid("map", {2, 1, 1}, {0, 0, 0}, {1, 1, 1}, {90, 90, 90});
    grid.Values()[0] = 1000;
    grid.Values()[1] = -0.001f;
    EXPECT_TRUE(LevelMap(grid, 1000).HasNegativeVoxels());
}
