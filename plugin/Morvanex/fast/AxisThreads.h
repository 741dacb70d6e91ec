#pragma once

#include "fast/CubeScorer.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <future>
#include <mutex>
#include <thread>

namespace fast {

/// Scores every angle about one axis, each at every offset, and adds to `best` what reaches its threshold.
/// The first pose is entry number `first`. Ends before the next angle, with a tally of no use, once `stop` is
/// requested.
PoseTally ScoreAxis(const fit::Preparation &fit, std::size_t axis, EntryNumber first, CubeScorer &scorer,
                    BestPoses &best, const std::stop_token &stop = {});

/// The result of scoring one axis on its own.
struct AxisResult {
    PoseTally tally;
    std::vector<ScoredEntry> entries; ///< all that the list may hold, and some that it does not
};

/// Threads that score the axes ahead of the search, which takes the results in order.
///
/// What an axis adds depends on the threshold that it starts from, which depends on how far the search has
/// come by then. But it never leaves out an entry that outlives the next trim, so that the list itself does
/// not depend on the threads.
class AxisThreads {
public:
    /// The first pose of the first axis is entry number `first`. The references must outlive the object.
    /// Uses fewer threads where the machine starts no more; throws std::system_error where it starts none.
    AxisThreads(const fit::Preparation &fit, const LevelGrids &grids, std::size_t keep, EntryNumber first,
                std::uint64_t posesPerAxis, unsigned threads);
    ~AxisThreads();
    AxisThreads(const AxisThreads &) = delete;
    AxisThreads &operator=(const AxisThreads &) = delete;

    /// Waits for the result of the next axis. `threshold` is the list's present one.
    AxisResult Take(double threshold);

private:
    using Task = std::packaged_task<AxisResult(CubeScorer &, const std::stop_token &)>;

    void HandOut();
    void Work(CubeScorer &scorer, const std::stop_token &stop);

    const fit::Preparation &m_fit;
    std::size_t m_keep, m_ahead, m_handedOut = 0;
    EntryNumber m_next;
    std::uint64_t m_posesPerAxis;
    std::atomic<double> m_threshold;
    std::deque<std::future<AxisResult>> m_results; ///< of the axes handed out and not yet taken
    std::vector<std::unique_ptr<CubeScorer>> m_scorers;

    std::mutex m_mutex; ///< guards m_tasks
    std::condition_variable_any m_wake;
    std::deque<Task> m_tasks;
    std::vector<std::jthread> m_threads;
};

} // namespace fast
