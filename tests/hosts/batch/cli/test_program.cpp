#include "cli/Program.h"

#include "cli/CommandLine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>
#include <new>

using namespace cli;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

/// One command that does what the test asks for by its operand.
std::vector<Command> Commands() {
    Command command{.name = "do", .summary = "do it", .description = "Does it.", .options = {}};
    command.operand = "WHAT";
    command.run = [](const Arguments &arguments) -> int {
        if (arguments.operand == "fail")
            throw std::runtime_error("it failed");
        if (arguments.operand == "exhaust")
            throw std::bad_alloc();
        if (arguments.operand == "interrupt")
            return 143;
        std::cout << "done " << arguments.operand << '\n';
        return Succeeded;
    };
    Command pair{.name = "do again", .summary = "do it again", .description = "Does it.", .options = {}};
    pair.run = [](const Arguments &) -> int {
        std::cout << "done again\n";
        return Succeeded;
    };
    return {command, pair};
}

struct Outcome {
    int status;
    std::string output, errors;
};

Outcome OutcomeOf(const std::vector<std::string> &words) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = RunProgram(Commands(), words);
    return {status, testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
}

} // namespace

TEST(RunProgram, RunsTheCommand) {
    const Outcome outcome = OutcomeOf({"do", "it"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "done it\n");
    EXPECT_EQ(outcome.errors, "");
}

TEST(RunProgram, RunsACommandOfTwoWords) {
    EXPECT_EQ(OutcomeOf({"do", "again"}).output, "done again\n");
    EXPECT_EQ(OutcomeOf({"do", "--", "again"}).output, "done again\n") << "here it is the operand";
    EXPECT_EQ(OutcomeOf({"do", "again", "--no"}).errors.substr(0, 17), "morvanex do again");
}

TEST(RunProgram, ReportsAFailure) {
    const Outcome outcome = OutcomeOf({"do", "fail"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "morvanex do: error: it failed\n");
    EXPECT_EQ(OutcomeOf({"do", "exhaust"}).errors, "morvanex do: error: not enough memory\n");
}

TEST(RunProgram, PassesTheExitStatusOn) {
    EXPECT_EQ(OutcomeOf({"do", "interrupt"}).status, 143);
}

TEST(RunProgram, TellsWrongUsage) {
    const Outcome noCommand = OutcomeOf({});
    EXPECT_EQ(noCommand.status, 2);
    EXPECT_EQ(noCommand.errors, "morvanex: error: a command is missing (--help explains the options)\n");
    const Outcome unknown = OutcomeOf({"undo"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_THAT(unknown.errors, StartsWith("morvanex: error: unknown command 'undo'"));
    EXPECT_THAT(OutcomeOf({"od", "it"}).errors, HasSubstr("unknown command 'od'; did you mean do? (--help"));
    const Outcome wrongOption = OutcomeOf({"do", "--quickly", "it"});
    EXPECT_EQ(wrongOption.status, 2);
    EXPECT_THAT(wrongOption.errors, StartsWith("morvanex do: error: unknown option '--quickly'"));
}

TEST(RunProgram, ExplainsTheExitStatus) {
    const std::string help = OutcomeOf({"--help"}).output, manual = OutcomeOf({"--man"}).output;
    for (const std::string status : {"0 when", "1 when", "2 when", "130", "143", "129"}) {
        EXPECT_THAT(help, HasSubstr(status));
        EXPECT_THAT(manual, HasSubstr(status));
    }
}

TEST(RunProgram, ShowsHelpOnStandardOutput) {
    for (const std::vector<std::string> &words :
         {std::vector<std::string>{"--help"}, {"do", "--help"}, {"do", "-h"}}) {
        const Outcome outcome = OutcomeOf(words);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_THAT(outcome.output, HasSubstr("do it"));
        EXPECT_EQ(outcome.errors, "");
    }
    EXPECT_THAT(OutcomeOf({"--version"}).output, StartsWith("morvanex "));
    EXPECT_THAT(OutcomeOf({"--man"}).output, StartsWith(".TH MORVANEX 1"));
}

TEST(RunProgram, NoticesThatStandardOutputCannotBeWritten) {
    std::cout.setstate(std::ios::badbit);
    const Outcome outcome = OutcomeOf({"do", "it"});
    std::cout.clear();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "morvanex do: error: standard output cannot be written\n");
}
