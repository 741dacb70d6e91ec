#include "Vector.h"

#include <gtest/gtest.h>

#include <limits>

using VARNO::Vector;

using Floats = Vector<float, 3>;
using Ints = Vector<int, 3>;

TEST(Vector, StartsAtZero) {
    EXPECT_EQ(Floats(), Floats(0, 0, 0));
    EXPECT_EQ(Ints(), Ints(0, 0, 0));
}

TEST(Vector, AddsAndSubtractsComponentByComponent) {
    EXPECT_EQ(Floats(1.5f, -2, 3) + Floats(0.25f, 5, -7), Floats(1.75f, 3, -4));
    EXPECT_EQ(Floats(1.5f, -2, 3) - Floats(0.25f, 5, -7), Floats(1.25f, -7, 10));
    EXPECT_EQ(Ints(1, 2, 3) + Ints(10, 20, 30), Ints(11, 22, 33));
    EXPECT_EQ(Ints(1, 2, 3) - Ints(10, 20, 30), Ints(-9, -18, -27));
}

TEST(Vector, EqualsOnlyWhereAllComponentsAreExactlyEqual) {
    const Floats v(1, 2, 3);
    EXPECT_TRUE(v == Floats(1, 2, 3));
    EXPECT_FALSE(v == Floats(1.0000001f, 2, 3));
    EXPECT_FALSE(v == Floats(1, 2.0000002f, 3));
    EXPECT_FALSE(v == Floats(1, 2, 3.0000002f));
    EXPECT_TRUE(Floats(0, 0, 0) == Floats(-0.0f, 0, 0));
    const Floats nan(std::numeric_limits<float>::quiet_NaN(), 0, 0);
    EXPECT_FALSE(nan == nan);
}

TEST(Vector, SumsSquaresFromTheFirstComponentToTheLastInItsOwnType) {
    EXPECT_EQ(Floats(1, -2, 3).SquaredLength(), 14.0f);
    EXPECT_EQ(Ints(1, -2, 3).SquaredLength(), 14);
    // 2^24 + 1 rounds to 2^24 in float; summed from the last, or in double, this is 2^24 + 2.
    EXPECT_EQ(Floats(4096, 1, 1).SquaredLength(), 16777216.0f);
}
