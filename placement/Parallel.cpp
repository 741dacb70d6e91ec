#include "placement/Parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace placement {

void ForEach(std::size_t items, unsigned threads, const std::function<void(std::size_t, unsigned)> &work) {
    std::atomic<std::size_t> next = 0;
    std::mutex mutex;
    std::exception_ptr failure;
    const auto run = [&](unsigned worker) {
        try {
            for (std::size_t item = next++; item < items; item = next++)
                work(item, worker);
        } catch (...) {
            const std::lock_guard lock(mutex);
            failure = std::current_exception();
            next = items;
        }
    };
    {
        std::vector<std::jthread> others;
        for (unsigned worker = 1; worker < std::min<std::size_t>(threads, items); ++worker)
            try {
                others.emplace_back(run, worker);
            } catch (const std::system_error &) {
                break;
            }
        run(0);
    }
    if (failure)
        std::rethrow_exception(failure);
}

} // namespace placement
