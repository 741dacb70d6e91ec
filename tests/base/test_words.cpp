#include "base/Words.h"

#include <gtest/gtest.h>

using namespace base;

TEST(Counted, HasOneNounForOneThing) {
    EXPECT_EQ(Counted(1, "residue"), "1 residue");
    EXPECT_EQ(Counted(0, "residue"), "0 residues");
    EXPECT_EQ(Counted(12, "residue"), "12 residues");
}

TEST(Grouped, HasCommasBetweenThousands) {
    EXPECT_EQ(Grouped(0), "0");
    EXPECT_EQ(Grouped(999), "999");
    EXPECT_EQ(Grouped(1000), "1,000");
    EXPECT_EQ(Grouped(3964051), "3,964,051");
    EXPECT_EQ(Grouped(123456), "123,456");
}

TEST(DurationText, HasTheUnitsThatAPersonWouldUse) {
    EXPECT_EQ(DurationText(0), "0.0 s");
    EXPECT_EQ(DurationText(2.34), "2.3 s");
    EXPECT_EQ(DurationText(40.4), "40 s");
    EXPECT_EQ(DurationText(59.6), "1 min 0 s");
    EXPECT_EQ(DurationText(130), "2 min 10 s");
    EXPECT_EQ(DurationText(3600 * 3 + 60 * 20), "3 h 20 min");
    EXPECT_EQ(DurationText(86400 * 12.5), "12 days");
    EXPECT_EQ(DurationText(86400 * 365.25 * 3.2), "3.2 years");
    EXPECT_EQ(DurationText(1e30), "3.16881e+22 years");
}

TEST(Quoted, ShowsWhatCannotBePrinted) {
    EXPECT_EQ(Quoted("a b"), "'a b'");
    EXPECT_EQ(Quoted(std::string_view("\0\n\xff", 3)), "'\\x00\\x0a\\xff'");
    EXPECT_EQ(Quoted(std::string(40, 'x')), "'" + std::string(40, 'x') + "'");
    EXPECT_EQ(Quoted(std::string(41, 'x')), "'" + std::string(40, 'x') + "...'");
}
