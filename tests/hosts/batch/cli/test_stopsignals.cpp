#include "cli/StopSignals.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <initializer_list>

using namespace cli;
using testing::ExitedWithCode;
using testing::KilledBySignal;

// Signals are the whole process's: each of these runs in one of its own.

namespace {

constexpr std::initializer_list<int> caught = {SIGINT, SIGTERM, SIGHUP};

void SetAll(void (*handler)(int)) {
    for (const int signal : caught)
        std::signal(signal, handler);
}

/// Raises the signals while they are caught, and exits with the number that was noted.
[[noreturn]] void Raise(std::initializer_list<int> raised, double seconds = -1) {
    SetAll(SIG_DFL);
    const StopSignals stopSignals("the current axis");
    ExpectEndOfStep(seconds);
    for (const int signal : raised)
        std::raise(signal);
    std::exit(StopSignal());
}

} // namespace

TEST(StopSignals, TheFirstIsNoted) {
    EXPECT_EXIT(Raise({}), ExitedWithCode(0), "");
    EXPECT_EXIT(Raise({SIGINT}), ExitedWithCode(SIGINT),
                "^\nStopping at the end of the current axis; Ctrl-C again ends at once\\.\n$");
    EXPECT_EXIT(Raise({SIGTERM}), ExitedWithCode(SIGTERM), "current axis; a second signal ends at once\\.");
    EXPECT_EXIT(Raise({SIGHUP}), ExitedWithCode(SIGHUP), "current axis; a second signal ends at once\\.");
}

TEST(StopSignals, TheSecondEndsTheProcess) {
    for (const int first : caught)
        for (const int second : caught)
            EXPECT_EXIT(Raise({first, second}), KilledBySignal(second), "");
}

TEST(StopSignals, SayHowLongTheStepWillTake) {
    EXPECT_EXIT(Raise({SIGINT}, 1.5), ExitedWithCode(SIGINT), "current axis; Ctrl-C");
    EXPECT_EXIT(Raise({SIGINT}, 45.9), ExitedWithCode(SIGINT), "current axis, within about 45 s; Ctrl-C");
    EXPECT_EXIT(Raise({SIGINT}, 190), ExitedWithCode(SIGINT), "current axis, within about 3 min; Ctrl-C");
    EXPECT_EXIT(Raise({SIGINT}, 20000), ExitedWithCode(SIGINT), "current axis, within about 6 h; Ctrl-C");
    EXPECT_EXIT(Raise({SIGINT}, 1e300), ExitedWithCode(SIGINT),
                "current axis, within about [0-9]+ h; Ctrl-C");
}

TEST(StopSignals, NameTheStepThatHasBegun) {
    EXPECT_EXIT(
        {
            SetAll(SIG_DFL);
            StopSignals stopSignals("the current axis");
            ExpectEndOfStep(100);
            stopSignals.EnterStep("the writing");
            std::raise(SIGINT);
            std::exit(0);
        },
        ExitedWithCode(0), "Stopping at the end of the writing; Ctrl-C");
}

TEST(StopSignals, StayIgnoredWhereTheyAre) {
    EXPECT_EXIT(
        {
            SetAll(SIG_IGN);
            const StopSignals stopSignals("the current axis");
            for (const int signal : caught)
                std::raise(signal);
            std::exit(StopSignal());
        },
        ExitedWithCode(0), "");
}

TEST(StopSignals, EndTheProcessAfterwards) {
    EXPECT_EXIT(
        {
            SetAll(SIG_DFL);
            { const StopSignals stopSignals("the current axis"); }
            std::raise(SIGTERM);
            std::exit(0);
        },
        KilledBySignal(SIGTERM), "");
}

TEST(SignalName, IsWhatAUserKnows) {
    EXPECT_EQ(SignalName(SIGINT), "Ctrl-C");
    EXPECT_EQ(SignalName(SIGTERM), "SIGTERM");
    EXPECT_EQ(SignalName(SIGHUP), "SIGHUP");
}
