#include "cli/Interrupt.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

using namespace cli;
using testing::ExitedWithCode;
using testing::KilledBySignal;

// Signals are the whole process's: each of these runs in one of its own.

namespace {

void Raise(int times) {
    std::signal(SIGINT, SIG_DFL);
    CatchInterrupt();
    for (int i = 0; i < times; ++i)
        std::raise(SIGINT);
}

} // namespace

TEST(Interrupt, IsNotedTheFirstTime) {
    EXPECT_EXIT((Raise(0), std::exit(WasInterrupted())), ExitedWithCode(0), "");
    EXPECT_EXIT((Raise(1), std::exit(WasInterrupted())), ExitedWithCode(1), "Ctrl-C again ends at once");
}

TEST(Interrupt, EndsTheProcessTheSecondTime) {
    EXPECT_EXIT(Raise(2), KilledBySignal(SIGINT), "");
}

TEST(Interrupt, StaysIgnoredWhereItIs) {
    EXPECT_EXIT(
        {
            std::signal(SIGINT, SIG_IGN);
            CatchInterrupt();
            std::raise(SIGINT);
            std::exit(WasInterrupted());
        },
        ExitedWithCode(0), "");
}
