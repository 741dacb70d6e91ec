#include "cli/ProgressBar.h"

#include "cli/Diagnostics.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

using namespace cli;

namespace {

/// What a bar that is shown all the steps of a search writes where there is no terminal.
std::string Shown(std::size_t total, bool visible,
                  std::chrono::steady_clock::duration silence = std::chrono::seconds(0)) {
    SetProgramName("morvanex");
    testing::internal::CaptureStderr();
    ProgressBar bar(visible, silence);
    bar.Show(0, total, -1);
    for (std::size_t done = 1; done <= total; ++done)
        bar.Show(done, total, double(total - done) * 15);
    return testing::internal::GetCapturedStderr();
}

} // namespace

TEST(BarText, FillsUpWithTheWorkDone) {
    EXPECT_EQ(BarText(0, 81, 4), "░░░░");
    EXPECT_EQ(BarText(80, 81, 4), "███░");
    EXPECT_EQ(BarText(81, 81, 4), "████");
    EXPECT_EQ(BarText(0, 0, 2), "██");
}

TEST(ProgressBar, WritesALineForEveryTenthWhereThereIsNoTerminal) {
    EXPECT_EQ(Shown(6, true), "morvanex: 16 % done, about 1 min 15 s left\n"
                              "morvanex: 33 % done, about 1 min 0 s left\n"
                              "morvanex: 50 % done, about 45 s left\n"
                              "morvanex: 66 % done, about 30 s left\n"
                              "morvanex: 83 % done, about 15 s left\n"
                              "morvanex: 100 % done, about 0.0 s left\n");
    const std::string lines = Shown(1281, true);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 10);
}

TEST(ProgressBar, WritesNoLineForASearchOfLessThanTwoSeconds) {
    EXPECT_EQ(Shown(6, true, std::chrono::seconds(2)), "");
    testing::internal::CaptureStderr();
    ProgressBar(true).Show(6, 6, 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(ProgressBar, WritesTheTenthsThatEndLater) {
    SetProgramName("morvanex");
    testing::internal::CaptureStderr();
    ProgressBar bar(true, std::chrono::milliseconds(50));
    bar.Show(3, 10, -1);
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    bar.Show(3, 10, -1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "morvanex: 30 % done\n");
}

TEST(ProgressBar, WritesNothingWhereItIsNotWanted) {
    EXPECT_EQ(Shown(6, false), "");
}
