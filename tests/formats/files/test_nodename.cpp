#include "formats/files/NodeName.h"

#include <gtest/gtest.h>

using formats::NodeName;

TEST(NodeName, IsTheFilesNameWithoutFolderAndExtensions) {
    EXPECT_EQ(NodeName("emd_5168.map"), "emd_5168");
    EXPECT_EQ(NodeName("/data.d/maps/emd_3197.map.gz"), "emd_3197");
    EXPECT_EQ(NodeName("EMD-3197.map.bz2"), "EMD-3197");
    EXPECT_EQ(NodeName("../1abc.cif.gz"), "1abc");
    EXPECT_EQ(NodeName("plain"), "plain");
}

TEST(NodeName, KeepsDotsThatBelongToTheName) {
    EXPECT_EQ(NodeName("Ubi-12.5.mrc"), "Ubi-12.5");
    EXPECT_EQ(NodeName(".map"), ".map");
}
