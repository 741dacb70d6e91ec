#include "placement/Interpolation.h"

#include <gtest/gtest.h>

using namespace placement;

TEST(Interpolation, IsExactForWhatIsLinear) {
    Volume volume{{3, 4, 2}, {1, 2, 0.5}, {10, 20, 30}, {}};
    const auto linear = [](const Point &p) { return 1 + 2 * p.x - 3 * p.y + 5 * p.z; };
    for (std::size_t k = 0; k < 2; ++k)
        for (std::size_t j = 0; j < 4; ++j)
            for (std::size_t i = 0; i < 3; ++i)
                volume.values.push_back(float(linear(volume.At(i, j, k) - volume.origin)));
    for (const Point &p : {Point{0, 0, 0}, {0.25, 1, 0.1}, {1.9, 5.5, 0.4}, {2, 6, 0.5}})
        EXPECT_NEAR(ValueAt(volume, p), linear(p), 1e-5);
    // Rounding may put a position a little before the first voxel.
    EXPECT_NEAR(ValueAt(volume, {-1e-12, 0, 0}), 1, 1e-5);
}
