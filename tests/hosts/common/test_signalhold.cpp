#include "hosts/common/SignalHold.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace hosts;
using testing::KilledBySignal;

TEST(SignalHold, LetsTheProcessEndOnlyAfterwards) {
    EXPECT_EXIT(
        {
            std::signal(SIGINT, SIG_DFL);
            {
                const SignalHold hold;
                std::raise(SIGINT);
                std::fputs("still here", stderr);
            }
            std::exit(0);
        },
        KilledBySignal(SIGINT), "still here");
}
