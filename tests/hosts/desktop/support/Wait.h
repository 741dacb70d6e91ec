#pragma once

#include <QElapsedTimer>
#include <QTest>

#include <gtest/gtest.h>

/// Lets the event loop run until it is so; fails the test where that takes longer than a minute.
template <class Condition>
void WaitUntil(Condition isSo) {
    constexpr int minute = 60'000;
    EXPECT_TRUE(QTest::qWaitFor(isSo, minute));
}
