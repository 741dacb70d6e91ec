#include "base/Statistics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

using namespace base;

TEST(Statistics, KnowsPopulationAndSample) {
    const Statistics four = StatisticsOf(std::vector<double>{1, 2, 3, 6});
    EXPECT_EQ(four.count, 4u);
    EXPECT_EQ(four.mean, 3);
    EXPECT_EQ(four.Deviation(), std::sqrt(14.0 / 4));
    EXPECT_EQ(four.SampleDeviation(), std::sqrt(14.0 / 3));
}

TEST(Statistics, LeavesOutWhatIsNotFinite) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const Statistics two = StatisticsOf(std::vector<float>{infinity, 1, std::nanf(""), -infinity, 3});
    EXPECT_EQ(two.count, 2u);
    EXPECT_EQ(two.mean, 2);
    EXPECT_EQ(two.Deviation(), 1);
}

TEST(Statistics, OfOneValueOrNoneHaveNoSpread) {
    EXPECT_EQ(StatisticsOf(std::vector<double>{7}).mean, 7);
    EXPECT_EQ(StatisticsOf(std::vector<double>{7}).SampleDeviation(), 0);
    const Statistics none = StatisticsOf(std::vector<double>{});
    EXPECT_EQ(none.count, 0u);
    EXPECT_EQ(none.mean, 0);
    EXPECT_EQ(none.Deviation(), 0);
}

TEST(Statistics, SumsLargeOffsetsInTwoPasses) {
    EXPECT_EQ(StatisticsOf(std::vector<double>{1e9 + 1, 1e9 + 3}).Deviation(), 1);
}
