#include "cli/Help.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace cli;
using testing::HasSubstr;
using testing::Not;

namespace {

Command Sample() {
    Command command{
        .name = "try",
        .summary = "try something",
        .description =
            "The first paragraph.\n\nThe second one, which is so long that it has to be broken into two "
            "lines at least.",
        .options = {{"--map", Value::Text, "FILE", "The map to look at", "", true, false, "Input"},
                    {"--solid", Value::Text, "FILE", "What stays", "", false, true},
                    {"--step", Value::Number, "A", "Step in Å", "5.0"}},
    };
    command.example = "morvanex try --map a.mrc";
    return command;
}

} // namespace

TEST(CommandHelp, ShowsUsageEveryOptionAndItsDefault) {
    EXPECT_EQ(CommandHelp(Sample()), R"(morvanex try - try something

Usage:
  morvanex try --map FILE [--solid FILE]... [--step A]

The first paragraph.

The second one, which is so long that it has to be broken into two lines at
least.

Input:
    --map FILE
        The map to look at. Required.
    --solid FILE
        What stays. May be given several times.
    --step A
        Step in Å. Default: 5.0.

Example:
  morvanex try --map a.mrc
)");
}

TEST(ProgramHelp, ListsTheCommands) {
    EXPECT_THAT(ProgramHelp({Sample()}), HasSubstr("  try         try something\n"));
}

TEST(ManualPage, HoldsEveryOption) {
    const std::string page = ManualPage({Sample()});
    EXPECT_THAT(page, HasSubstr(".SH MORVANEX TRY\n"));
    EXPECT_THAT(page, HasSubstr("\\fB\\-\\-map\\fR \\fIFILE\\fR\nThe map to look at. Required.\n"));
    EXPECT_THAT(page, HasSubstr("Default: 5.0."));
    EXPECT_THAT(page, Not(HasSubstr("\n\n")));
}

TEST(ManualPage, EscapesWhatWouldBeACommand) {
    Command command = Sample();
    command.description = ".hidden and 'quoted\n'quoted \\ back";
    EXPECT_THAT(ManualPage({command}), HasSubstr("\\&.hidden and 'quoted\n\\&'quoted \\e back\n"));
}
