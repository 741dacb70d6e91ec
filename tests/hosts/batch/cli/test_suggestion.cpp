#include "cli/Suggestion.h"

#include <gtest/gtest.h>

using namespace cli;

TEST(EditDistance, CountsSlipsOfTheFinger) {
    EXPECT_EQ(EditDistance("", ""), 0u);
    EXPECT_EQ(EditDistance("", "abc"), 3u);
    EXPECT_EQ(EditDistance("abc", "abc"), 0u);
    EXPECT_EQ(EditDistance("abc", "abcd"), 1u);
    EXPECT_EQ(EditDistance("abc", "ac"), 1u);
    EXPECT_EQ(EditDistance("abc", "axc"), 1u);
    EXPECT_EQ(EditDistance("abc", "acb"), 1u) << "neighbours exchanged";
    EXPECT_EQ(EditDistance("kitten", "sitting"), 3u);
}

TEST(Suggestion, IsTheNameThatIsMostLikeTheWord) {
    EXPECT_EQ(Suggestion("--resolutoin", {"--voxel", "--resolution", "--seed"}),
              "; did you mean --resolution?");
    EXPECT_EQ(Suggestion("--solid-chain", {"--solid", "--chain", "--solid-chains"}),
              "; did you mean --solid-chains?");
    EXPECT_EQ(Suggestion("fti", {"fit", "info"}), "; did you mean fit?");
}

TEST(Suggestion, IsNoneWhereNoNameIsLikeTheWord) {
    EXPECT_EQ(Suggestion("--colour", {"--voxel", "--resolution"}), "");
    EXPECT_EQ(Suggestion("foo", {"fit", "info"}), "");
    EXPECT_EQ(Suggestion(std::string(1'000'000, 'x'), {"--voxel"}), "");
    EXPECT_EQ(Suggestion("fit", {}), "");
}
