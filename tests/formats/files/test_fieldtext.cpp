#include "formats/files/FieldText.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>

namespace {

using namespace VARNO;

TEST(FieldText, ReadsNumbersThatFillTheText) {
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

TEST(FieldText, QuotesWhatCannotBePrinted) {
    EXPECT_EQ(Quoted("a b"), "'a b'");
    EXPECT_EQ(Quoted(std::string_view("\0\n\xff", 3)), "'\\x00\\x0a\\xff'");
    EXPECT_EQ(Quoted(std::string(40, 'x')), "'" + std::string(40, 'x') + "'");
    EXPECT_EQ(Quoted(std::string(41, 'x')), "'" + std::string(40, 'x') + "...'");
}

TEST(FieldText, CountsInWords) {
    EXPECT_EQ(Counted(0, "atom"), "0 atoms");
    EXPECT_EQ(Counted(1, "atom"), "1 atom");
    EXPECT_EQ(Counted(2, "atom"), "2 atoms");
}

TEST(FieldText, WritesFixedDecimals) {
    EXPECT_EQ(Fixed(1.0625, 3), "1.062"); // a tie goes to the even digit
    EXPECT_EQ(Fixed(-12.3456, 3), "-12.346");
    EXPECT_EQ(Fixed(-0.0004, 3), "0.000");
    EXPECT_EQ(Fixed(-0.0005001, 3), "-0.001");
    EXPECT_EQ(Fixed(-DBL_MAX, 3).size(), 1u + 309 + 1 + 3);
}

} // namespace
