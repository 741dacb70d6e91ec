#include "base/Memory.h"

#include <gtest/gtest.h>

using namespace base;

TEST(Memory, OnePieceOfWorkMayTakeThreeQuarters) {
    EXPECT_GT(MachineMemory(), 0x1p27);
    EXPECT_EQ(MemoryLimit(), 0.75 * MachineMemory());
}

TEST(Memory, SizesAreShortInMessages) {
    EXPECT_EQ(GiB(0), "0.0 GiB");
    EXPECT_EQ(GiB(17.46 * 0x1p30), "17.5 GiB");
    EXPECT_EQ(GiB(2e6 * 0x1p30), "2e+06 GiB");
}
