#include "cli/Printable.h"

#include "cli/Diagnostics.h"

#include <gtest/gtest.h>

using namespace cli;

TEST(Printable, LeavesTextAsItIs) {
    EXPECT_EQ(Printable("a file, 2.5 Å °\xE9"), "a file, 2.5 Å °\xE9");
    EXPECT_EQ(Printable(""), "");
}

TEST(Printable, EscapesControlCharacters) {
    EXPECT_EQ(Printable("a\x1b[31m\n\t\r\x7f"), "a\\x1b[31m\\n\\t\\x0d\\x7f");
    EXPECT_EQ(Printable("a\xc2\x9b"
                        "31m\xc2\xa0"),
              "a\\x9b31m\xc2\xa0")
        << "CSI, which some terminals obey; a blank";
    EXPECT_EQ(Printable("\xc2"), "\xc2");
}

TEST(Diagnostics, EscapeControlCharacters) {
    testing::internal::CaptureStderr();
    Warn("a\x1b[2Jb\nc.mrc: is empty");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "morvanex: warning: a\\x1b[2Jb\\nc.mrc: is empty\n");
}
