#include "InstructionSets.h"
#include "fast/Kernels.h"
#include "search/Scoring.h"

#include <cmath>

namespace {

/// Coordinates about the places where one voxel's share ends and the next one's begins, the grid's own ends
/// among them, each with the next floats below and above.
std::vector<float> CriticalCoordinates(const fast::GridAxis &axis) {
    std::vector<float> coordinates;
    for (int i = -3; i <= axis.count + 2; i += i > 100 && i < axis.count - 100 ? 997 : 1)
        for (const double part : {0.0, 0.5}) {
            float p = float(axis.origin + (i + part) * axis.spacing);
            for (int step = 0; step < 3; ++step)
                p = std::nextafter(p, -INFINITY);
            for (int step = 0; step < 7; ++step, p = std::nextafter(p, INFINITY))
                coordinates.push_back(p);
        }
    coordinates.resize(fast::Padded(coordinates.size()));
    return coordinates;
}

class FastKernelsOn : public testing::TestWithParam<std::int64_t> {};

} // namespace

TEST_P(FastKernelsOn, FindTheVoxelsThatScoringFinds) {
    const OnlyTarget target(GetParam());
    for (const fast::GridAxis axis : {fast::GridAxis{0, 1, 7, 1}, fast::GridAxis{0, 1, 1 << 22, 3},
                                      fast::GridAxis{-3.25f, 1.742f, 100, 10},
                                      fast::GridAxis{1e4f, 0.3f, 300, 1}, fast::GridAxis{5, 1e-6f, 20, 1}}) {
        const std::vector<float> coordinates = CriticalCoordinates(axis);
        std::vector<std::int32_t> found(coordinates.size());
        fast::MapCoordinates(coordinates.data(), coordinates.size(), 0, axis, found.data());
        for (std::size_t i = 0; i < coordinates.size(); ++i) {
            const float p = coordinates[i];
            const unsigned voxel = search::NearestVoxel(p, axis.origin, axis.spacing, unsigned(axis.count));
            const int index = voxel < unsigned(axis.count) ? int(voxel) : p < axis.origin ? -1 : axis.count;
            ASSERT_EQ(found[i], index * axis.stride) << p << " on an axis of spacing " << axis.spacing;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Targets, FastKernelsOn, testing::ValuesIn(Targets()), NameOf);
