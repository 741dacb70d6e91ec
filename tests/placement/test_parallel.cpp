#include "placement/Parallel.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <set>
#include <stdexcept>
#include <vector>

TEST(Parallel, EachItemIsDoneOnceAndInAscendingOrderByEachWorker) {
    constexpr unsigned threads = 4;
    std::vector<std::atomic<int>> done(1000);
    std::vector<std::size_t> last(threads);
    std::atomic<bool> ascending = true;
    placement::ForEach(done.size(), threads, [&](std::size_t item, unsigned worker) {
        ++done.at(item);
        if (item < last.at(worker))
            ascending = false;
        last[worker] = item;
    });
    for (const auto &count : done)
        ASSERT_EQ(count, 1);
    EXPECT_TRUE(ascending);
}

TEST(Parallel, AnExceptionComesBackToTheCaller) {
    EXPECT_THROW(placement::ForEach(100, 3,
                                    [](std::size_t item, unsigned) {
                                        if (item == 42)
                                            throw std::runtime_error("stop");
                                    }),
                 std::runtime_error);
}
