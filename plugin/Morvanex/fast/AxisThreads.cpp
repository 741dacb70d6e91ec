#include "fast/AxisThreads.h"

#include "fit/Rotations.h"

#include <system_error>

using namespace VARNO;

namespace fast {

PoseTally ScoreAxis(const fit::Preparation &fit, std::size_t axis, EntryNumber first, CubeScorer &scorer,
                    BestPoses &best, const std::stop_token &stop) {
    PoseTally tally;
    for (const double angle : fit::Angles(fit.angleStep)) {
        if (stop.stop_requested())
            break;
        tally += scorer.Score(fit::RotationAbout(fit.axes[axis], angle), first, best);
        first += fit.offsets.size();
    }
    return tally;
}

AxisThreads::AxisThreads(const fit::Preparation &fit, const LevelGrids &grids, std::size_t keep,
                         EntryNumber first, std::uint64_t posesPerAxis, unsigned threads)
    : m_fit(fit)
    , m_keep(keep)
    , m_ahead(2 * std::size_t(threads)) // one axis in work for each thread, and one that waits for it
    , m_next(first)
    , m_posesPerAxis(posesPerAxis)
    , m_threshold(-std::numeric_limits<double>::infinity()) {
    for (unsigned i = 0; i < threads; ++i)
        m_scorers.push_back(std::make_unique<CubeScorer>(fit, grids));
    for (const auto &scorer : m_scorers)
        try {
            m_threads.emplace_back([this, &scorer](const std::stop_token &stop) { Work(*scorer, stop); });
        } catch (const std::system_error &) {
            if (m_threads.empty())
                throw;
            break;
        }
}

AxisThreads::~AxisThreads() {
    for (std::jthread &thread : m_threads)
        thread.request_stop();
}

AxisResult AxisThreads::Take(double threshold) {
    m_threshold = threshold;
    while (m_results.size() < m_ahead && m_handedOut < m_fit.axes.size())
        HandOut();
    AxisResult result = m_results.front().get();
    m_results.pop_front();
    return result;
}

void AxisThreads::HandOut() {
    Task task([this, axis = m_handedOut, first = m_next](CubeScorer &scorer, const std::stop_token &stop) {
        BestPoses best(m_keep, m_threshold);
        AxisResult result;
        result.tally = ScoreAxis(m_fit, axis, first, scorer, best, stop);
        result.entries = best.Entries();
        return result;
    });
    m_results.push_back(task.get_future());
    ++m_handedOut;
    m_next += m_posesPerAxis;
    const std::lock_guard lock(m_mutex);
    m_tasks.push_back(std::move(task));
    m_wake.notify_one();
}

void AxisThreads::Work(CubeScorer &scorer, const std::stop_token &stop) {
    std::unique_lock lock(m_mutex);
    while (m_wake.wait(lock, stop, [this] { return !m_tasks.empty(); }) && !stop.stop_requested()) {
        Task task = std::move(m_tasks.front());
        m_tasks.pop_front();
        lock.unlock();
        task(scorer, stop);
        lock.lock();
    }
}

} // namespace fast
