#include "cli/Process.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

using namespace cli;
using testing::ExitedWithCode;

// Streams and signals are the whole process's: each of these runs in one of its own.

TEST(PrepareProcess, OpensTheNullDeviceOnClosedStreams) {
    EXPECT_EXIT(
        {
            for (const int stream : {0, 1, 2})
                close(stream);
            PrepareProcess();
            const int file = open("/dev/zero", O_RDONLY);
            std::exit(file > 2 && write(1, "x", 1) == 1 && write(2, "x", 1) == 1 ? 0 : 1);
        },
        ExitedWithCode(0), "");
}

TEST(PrepareProcess, LeavesOpenStreamsAlone) {
    EXPECT_EXIT((PrepareProcess(), write(2, "here", 4), std::exit(0)), ExitedWithCode(0), "here");
}

TEST(PrepareProcess, LetsAWriteBeyondALimitFail) {
    EXPECT_EXIT((PrepareProcess(), std::raise(SIGXFSZ), std::exit(0)), ExitedWithCode(0), "");
}
