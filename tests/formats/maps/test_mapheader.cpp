#include "formats/maps/MapHeader.h"

#include <gtest/gtest.h>

using namespace formats;
using namespace VARNO;

TEST(MapHeader, IsDecodedAsItWasEncoded) {
    MapHeader header;
    header.counts = {2, 3, 4};
    header.mode = 12;
    header.starts = {-5, 6, -7};
    header.samples = {20, 30, 40};
    header.cell = {1.5f, 2.5f, 3.5f};
    header.angles = {80, 90, 100};
    header.axes = {3, 1, 2};
    header.minimum = -1;
    header.maximum = 8;
    header.mean = 0.25f;
    header.spaceGroup = 4;
    header.extendedBytes = 160;
    header.origin = {-1.25f, 0, 9};
    header.deviation = 0.125f;
    header.title = "a title";
    const MapHeader back = DecodeMapHeader(EncodeMapHeader(header));
    EXPECT_EQ(back.counts, header.counts);
    EXPECT_EQ(back.mode, header.mode);
    EXPECT_EQ(back.starts, header.starts);
    EXPECT_EQ(back.samples, header.samples);
    EXPECT_EQ(back.cell, header.cell);
    EXPECT_EQ(back.angles, header.angles);
    EXPECT_EQ(back.axes, header.axes);
    EXPECT_EQ(back.minimum, header.minimum);
    EXPECT_EQ(back.maximum, header.maximum);
    EXPECT_EQ(back.mean, header.mean);
    EXPECT_EQ(back.spaceGroup, header.spaceGroup);
    EXPECT_EQ(back.extendedBytes, header.extendedBytes);
    EXPECT_EQ(back.origin, header.origin);
    EXPECT_EQ(back.deviation, header.deviation);
    EXPECT_EQ(back.title, header.title);
    EXPECT_EQ(back.stamp, header.stamp);
    EXPECT_TRUE(back.named);
    EXPECT_FALSE(back.bigEndian);
}
