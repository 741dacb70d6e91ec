#include "Parameters.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

/// Looks at the parameters before any test has changed them.
class AtTheStart : public testing::Environment {
public:
    void SetUp() override {
        zero = Axis == 0 && gammaStep == 0 && Step == 0 && TCount == 0 && top_size == 0 && !logging &&
               !restraints;
        null = em_fname.isNull() && re_fname.isNull() && !m_Target && !m_Map && m_Solid.empty();
    }

    bool zero = false, null = false;
};

const auto *const start =
    static_cast<AtTheStart *>(testing::AddGlobalTestEnvironment(new AtTheStart)); // the framework owns it

constexpr int largestInt = std::numeric_limits<int>::max();
constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();

} // namespace

TEST(Parameters, StartZeroed) {
    EXPECT_TRUE(start->zero);
    EXPECT_TRUE(start->null);
}

TEST(Parameters, TenDegreesInRadians) {
    EXPECT_EQ(Radians(10.0), 0.17453292519943295);
    EXPECT_EQ(Radians(double(10.0f)), 0.17453292519943295);
}

TEST(Parameters, AxisCountsByDepth) {
    const int counts[] = {6, 21, 81, 321, 1281, 5121};
    for (int depth = 0; depth < 6; ++depth)
        EXPECT_EQ(AxisCount(depth), counts[depth]);
}

TEST(Parameters, AnAxisCountBeyondAnIntIsTheLargestInt) {
    EXPECT_EQ(AxisCount(14), 1342177281);
    EXPECT_EQ(AxisCount(15), largestInt);
    EXPECT_EQ(AxisCount(99), largestInt);
    EXPECT_EQ(AxisCount(100000), largestInt);
}

TEST(Parameters, TransformationCountsAsShown) {
    EXPECT_EQ(TransformationCount(6, 10.0, 5), 27000);
    EXPECT_EQ(TransformationCount(21, 15.0, 3), 13608);
    EXPECT_EQ(TransformationCount(81, 5.0, 10), 5832000);
}

TEST(Parameters, AnEvenTranslationCountIsShownAsEntered) {
    EXPECT_EQ(TransformationCount(1, 360.0, 4), 64);
}

TEST(Parameters, TheQuotientOfTheAnglesIsNotRounded) {
    EXPECT_EQ(TransformationCount(6, 7.0, 1), 308); // 6 * 51.43, not 6 * 51
}

TEST(Parameters, TransformationCountsSaturate) {
    EXPECT_EQ(TransformationCount(6, 0.0, 5), largest);
    EXPECT_EQ(TransformationCount(6, -0.0, 5), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(TransformationCount(largestInt, 1e-9, 100000), largest);
    EXPECT_EQ(TransformationCount(6, 0.0, 0), 0); // infinity times nothing
    EXPECT_EQ(TransformationCount(6, -10.0, 5), -27000);
    EXPECT_EQ(TransformationCount(6, 10.0, -5), -27000);
}
