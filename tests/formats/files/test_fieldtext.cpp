#include "formats/files/FieldText.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>

namespace {

using namespace formats;

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

} // namespace
