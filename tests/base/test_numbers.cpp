#include "base/Numbers.h"

#include <gtest/gtest.h>

using namespace base;

#include <bit>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

template <class... Numbers>
std::string Printed(const char *format, Numbers... numbers) {
    char text[600];
    std::snprintf(text, sizeof(text), format, numbers...);
    return text;
}

} // namespace

TEST(Numbers, FixedNumbersStandRightInTheirField) {
    EXPECT_EQ(FixedNumber(1, 6, 2), "  1.00");
    EXPECT_EQ(FixedNumber(-3.25, 6, 2), " -3.25");
    EXPECT_EQ(FixedNumber(41.208, 9, 3), "   41.208");
    EXPECT_EQ(FixedNumber(12.5, 0, 2), "12.50");
}

TEST(Numbers, ANumberWiderThanItsFieldIsWrittenWhole) {
    EXPECT_EQ(FixedNumber(-123.456, 6, 2), "-123.46");
    EXPECT_EQ(FixedNumber(1e20, 6, 2), "100000000000000000000.00");
}

TEST(Numbers, HalvesAreRoundedByTheirExactValue) {
    EXPECT_EQ(FixedNumber(0.125, 6, 2), "  0.12");
    EXPECT_EQ(FixedNumber(0.375, 6, 2), "  0.38");
    EXPECT_EQ(FixedNumber(2.675, 6, 2), "  2.67"); // below the half by its binary value
    EXPECT_EQ(FixedNumber(1.005, 6, 2), "  1.00");
}

TEST(Numbers, ANegativeZeroKeepsItsSign) {
    EXPECT_EQ(FixedNumber(-0.0, 6, 2), " -0.00");
    EXPECT_EQ(FixedNumber(-0.004, 6, 2), " -0.00");
}

TEST(Numbers, WhatIsNoNumberIsWrittenWithoutASign) {
    EXPECT_EQ(FixedNumber(notANumber, 6, 2), "   nan");
    EXPECT_EQ(FixedNumber(-notANumber, 6, 2), "   nan");
    EXPECT_EQ(FixedNumber(infinity, 6, 2), "   inf");
    EXPECT_EQ(FixedNumber(-infinity, 6, 2), "  -inf");
}

TEST(Numbers, GeneralNumbersHaveSixDigits) {
    EXPECT_EQ(GeneralNumber(0.1), "0.1");
    EXPECT_EQ(GeneralNumber(41.208), "41.208");
    EXPECT_EQ(GeneralNumber(4219.5203), "4219.52");
    EXPECT_EQ(GeneralNumber(123456789), "1.23457e+08");
    EXPECT_EQ(GeneralNumber(0.00001), "1e-05");
    EXPECT_EQ(GeneralNumber(-0.0), "-0");
    EXPECT_EQ(GeneralNumber(100), "100");
}

TEST(Numbers, AnyNumberIsWrittenAsPrintfWritesIt) {
    std::mt19937_64 bits(1);
    for (int i = 0; i < 50000; ++i) {
        double number = std::bit_cast<double>(bits());
        if (i % 2 == 0)
            number = double(std::int64_t(bits() % 2000000) - 1000000) / 2000.0; // many halves
        if (std::isnan(number))
            continue;
        ASSERT_EQ(FixedNumber(number, 6, 2).toStdString(), Printed("%6.2f", number));
        ASSERT_EQ(FixedNumber(number, 9, 3).toStdString(), Printed("%9.3f", number));
        ASSERT_EQ(GeneralNumber(number).toStdString(), Printed("%g", number));
    }
}

TEST(PlainFixed, HasNoNegativeZero) {
    EXPECT_EQ(PlainFixed(1.0625, 3), "1.062"); // a tie goes to the even digit
    EXPECT_EQ(PlainFixed(-12.3456, 3), "-12.346");
    EXPECT_EQ(PlainFixed(-0.0004, 3), "0.000");
    EXPECT_EQ(PlainFixed(-0.0005001, 3), "-0.001");
    EXPECT_EQ(PlainFixed(-DBL_MAX, 3).size(), 1u + 309 + 1 + 3);
}

TEST(Numbers, TheShortestTextReadsTheSameNumberBack) {
    EXPECT_EQ(ShortestNumber(0.1f), "0.1");
    EXPECT_EQ(ShortestNumber(0.30000001192f), "0.3");
    EXPECT_EQ(ShortestNumber(1e-30f), "1e-30");
    EXPECT_EQ(ShortestNumber(std::nanf("")), "nan");
}

TEST(Numbers, AreReadWhereTheyFillTheText) {
    EXPECT_EQ(ReadNumber("  -6.504 "), -6.504);
    EXPECT_EQ(ReadNumber("+1e3"), 1000);
    EXPECT_EQ(ReadNumber(".5"), 0.5);
    EXPECT_TRUE(std::isnan(ReadNumber(" NaN").value()));
    EXPECT_TRUE(std::isinf(ReadNumber("-inf").value()));
    for (const char *text : {"", "  ", "1 2", "1,5", "1.5x", "*", "-", "+", "+-1", "0x10"})
        EXPECT_FALSE(ReadNumber(text)) << text;
    EXPECT_EQ(ReadInteger(" -12"), -12);
    for (const char *text : {"", "1.5", "12A", "99999999999"})
        EXPECT_FALSE(ReadInteger(text)) << text;
}
