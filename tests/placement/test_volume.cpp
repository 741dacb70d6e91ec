#include "placement/Volume.h"

#include <gtest/gtest.h>

#include <numeric>

using namespace placement;

TEST(VolumeView, APartHasItsVoxelsAtTheirPositions) {
    Volume volume{{4, 3, 5}, {1, 2, 3}, {10, 20, 30}, LargeVector<float>(60, 0)};
    std::iota(volume.values.begin(), volume.values.end(), 0.0f);
    const VolumeView whole = volume, part = whole.Part({1, 1, 2}, {2, 2, 3});
    EXPECT_EQ(part.origin.x, 11);
    EXPECT_EQ(part.origin.y, 22);
    EXPECT_EQ(part.origin.z, 36);
    for (std::size_t k = 0; k < 3; ++k)
        for (std::size_t j = 0; j < 2; ++j) {
            ASSERT_EQ(part.Row(j, k).size(), 2u);
            for (std::size_t i = 0; i < 2; ++i) {
                EXPECT_EQ(part.Row(j, k)[i], volume.values[volume.Index(i + 1, j + 1, k + 2)]);
                EXPECT_EQ(part.values[part.Index(i, j, k)], part.Row(j, k)[i]);
            }
        }
    const VolumeView again = part.Part({1, 0, 1}, {1, 1, 1});
    EXPECT_EQ(again.Row(0, 0)[0], volume.values[volume.Index(2, 1, 3)]);
}
