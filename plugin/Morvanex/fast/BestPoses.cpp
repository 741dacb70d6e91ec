#include "fast/BestPoses.h"

#include <algorithm>
#include <functional>

namespace fast {

namespace {

/// Moves the `count` greatest of the entries to the front; their order is unspecified.
void SelectGreatest(std::vector<ScoredEntry>::iterator begin, std::vector<ScoredEntry>::iterator end,
                    std::size_t count) {
    if (std::size_t(end - begin) > count)
        std::nth_element(begin, begin + std::ptrdiff_t(count), end, [](auto &a, auto &b) { return b < a; });
}

constexpr double infinity = std::numeric_limits<double>::infinity();

} // namespace

BestPoses::BestPoses(std::size_t keep, double threshold)
    : m_keep(keep)
    , m_threshold(keep > 0 ? threshold : infinity) {}

void BestPoses::Advance(EntryNumber next, std::uint64_t appended) {
    m_appendedSinceMark += appended;
    // Selecting costs a few operations per entry: once for every so many new ones it is as good as free.
    if (m_fresh > m_keep / 4 + 64 || (m_threshold == -infinity && m_fresh > 0))
        RaiseThreshold();
    if (m_entries.size() > 2 * m_keep + 1024 && m_appendedSinceMark > 2 * m_keep)
        Forget(next);
}

void BestPoses::RaiseThreshold() {
    m_fresh = 0;
    if (m_keep == 0 || m_entries.size() < m_keep)
        return;
    std::vector<double> scores;
    scores.reserve(m_entries.size());
    for (const ScoredEntry &entry : m_entries)
        scores.push_back(entry.score);
    const auto worst = scores.begin() + std::ptrdiff_t(m_keep - 1);
    std::nth_element(scores.begin(), worst, scores.end(), std::greater());
    m_threshold = std::max(m_threshold, *worst);
}

/// More than 2·keep entries appended since the mark mean that the list was trimmed after it, or that it has
/// not been trimmed at all, as in the identity pass: then nobody asks for what a trim has left.
void BestPoses::Forget(EntryNumber next) {
    const auto newer = std::partition(m_entries.begin(), m_entries.end(),
                                      [this](const ScoredEntry &entry) { return entry.number < m_mark; });
    if (std::size_t(newer - m_entries.begin()) > m_keep) {
        SelectGreatest(m_entries.begin(), newer, m_keep);
        m_entries.erase(m_entries.begin() + std::ptrdiff_t(m_keep), newer);
    }
    m_mark = next;
    m_appendedSinceMark = 0;
}

std::vector<ScoredEntry> BestPoses::Greatest(EntryNumber end) const {
    std::vector<ScoredEntry> chosen;
    std::ranges::copy_if(m_entries, std::back_inserter(chosen),
                         [end](const ScoredEntry &entry) { return entry.number < end; });
    SelectGreatest(chosen.begin(), chosen.end(), m_keep);
    chosen.resize(std::min(chosen.size(), m_keep));
    std::ranges::sort(chosen, std::less());
    return chosen;
}

} // namespace fast
