#include "fast/FastSearch.h"

#include "fit/Rotations.h"
#include "solutions/TopList.h"

#include <algorithm>
#include <cmath>
#include <numeric>

using namespace VARNO;

namespace fast {

namespace {

/// Coordinates up to this keep every sum and difference of the mapping finite.
constexpr float maxCoordinate = 1e15f;

bool AreFinite(std::span<const float> values) {
    return std::ranges::all_of(values, [](float value) { return std::isfinite(value); });
}

bool IsInRange(const Vertex &v) {
    return std::abs(v[0]) <= maxCoordinate && std::abs(v[1]) <= maxCoordinate &&
           std::abs(v[2]) <= maxCoordinate;
}

bool AreInRange(const fit::Preparation &fit) {
    return IsInRange(fit.target.centre) && std::ranges::all_of(fit.offsets, IsInRange) &&
           std::ranges::all_of(fit.target.points,
                               [](const TaggedPoint &point) { return IsInRange(point.first); });
}

/// Bytes beside the host's own grids.
double GridBytes(const fit::Preparation &fit) {
    const double map = double(GridLayout(*fit.map).Size()) * (sizeof(float) + 2);
    return fit.keepOut ? map + double(GridLayout(*fit.keepOut).Size()) : map;
}

double MemoryAllowance(const fit::Preparation &fit) {
    return 2.0 * double(fit.map->Values().size_bytes()) + 64.0 * 1024 * 1024;
}

double PosesPerAxis(const fit::Preparation &fit) {
    return double(fit::Rotations(fit).PerAxis()) * double(fit.offsets.size());
}

/// Bytes that a thread takes at most: its tables and windows, and the entries of the axis in work and of the
/// one that waits, in vectors that may have grown to twice what they hold.
double ThreadBytes(const fit::Preparation &fit, std::size_t keep) {
    constexpr double tableEntry = 3 * sizeof(std::int32_t), window = 32 + 2 * sizeof(std::int32_t);
    const double side = std::cbrt(double(fit.offsets.size()));
    const double tables =
        double(PaddedPoints(fit.target.points.size()).Entries()) * side * (tableEntry + window);
    const double entries = std::min(2 * double(keep) + 4096, PosesPerAxis(fit));
    return (fit.keepOut ? 2 : 1) * tables + 4 * entries * sizeof(ScoredEntry);
}

std::vector<EntryNumber> Numbers(const std::vector<ScoredEntry> &entries) {
    std::vector<EntryNumber> numbers;
    std::ranges::transform(entries, std::back_inserter(numbers), &ScoredEntry::number);
    return numbers;
}

/// Keeps the last `count` of them.
void KeepLast(std::vector<EntryNumber> &numbers, std::uint64_t count) {
    if (numbers.size() > count)
        numbers.erase(numbers.begin(), numbers.end() - std::ptrdiff_t(count));
}

} // namespace

bool FastSearch::Serves(const fit::Preparation &fit, const std::list<SolutionScore> &solutions) {
    const std::size_t points = fit.target.points.size();
    if (!fit.map || points == 0 || points > LevelMap::maxPoints || fit.offsets.empty() || !AreInRange(fit))
        return false;
    // Laying the grids out costs about as much as looking up as many points.
    const double lookUps = double(fit::Rotations(fit).Count()) * double(fit.offsets.size()) * double(points);
    if (lookUps < 2 * double(fit.map->Values().size()) || lookUps > 0x1p62)
        return false;
    for (const Grid *grid : {fit.map, fit.keepOut})
        if (grid && !(GridLayout::Holds(*grid) && AreFinite(grid->Values())))
            return false;
    return GridBytes(fit) <= MemoryAllowance(fit) &&
           std::ranges::all_of(solutions, [](const SolutionScore &s) { return std::isfinite(s.score); });
}

unsigned FastSearch::ThreadsWithin(const fit::Preparation &fit, int keep, unsigned threads) {
    const double available = MemoryAllowance(fit) - GridBytes(fit);
    const double fitting = available / ThreadBytes(fit, std::size_t(std::max(keep, 0)));
    return unsigned(std::clamp(fitting, 1.0, double(threads)));
}

FastSearch::FastSearch(const fit::Preparation &fit, int keep, unsigned threads,
                       std::list<SolutionScore> &solutions, search::PoseCounts &counts)
    : m_fit(fit)
    , m_keep(std::size_t(std::max(keep, 0)))
    , m_solutions(solutions)
    , m_counts(counts)
    , m_grids(fit)
    , m_scorer(fit, m_grids)
    , m_best(m_keep)
    , m_poseScorer(fit)
    , m_rotations(fit)
    , m_earlier(solutions.size())
    , m_next(m_earlier)
    , m_appended(m_earlier) {
    EntryNumber number = 0;
    for (const SolutionScore &solution : solutions)
        m_best.Add(solution.score, number++);
    m_best.Advance(m_earlier, m_earlier);
    if (const unsigned many = ThreadsWithin(fit, keep, threads); many > 1)
        m_threads.emplace(fit, m_grids, m_keep, m_next + fit.offsets.size(),
                          m_rotations.PerAxis() * fit.offsets.size(), many);
}

void FastSearch::Identity() {
    Count(m_fit.offsets.size(), m_scorer.Score(fit::Rotations::Identity(), m_next, m_best));
    m_appendedByIdentity = m_appended;
}

void FastSearch::Axis(std::size_t number) {
    const std::uint64_t poses = m_rotations.PerAxis() * m_fit.offsets.size();
    if (m_threads) {
        const auto [tally, entries] = m_threads->Take(m_best.Threshold());
        for (const auto &[score, entry] : entries)
            if (score >= m_best.Threshold())
                m_best.Add(score, entry);
        m_best.Advance(m_next + poses, tally.accepted);
        Count(poses, tally);
    } else {
        Count(poses, ScoreAxis(m_fit, number, m_next, m_scorer, m_best));
    }
    m_axesDone = number + 1;
}

void FastSearch::Count(std::uint64_t tried, const PoseTally &tally) {
    m_next += tried;
    m_appended += tally.accepted;
    m_counts.tried += tried;
    m_counts.accepted += tally.accepted;
    m_counts.scoredExactly += tally.scoredExactly;
}

void FastSearch::Complete() {
    m_threads.reset();
    std::vector<EntryNumber> numbers = Numbers(m_best.Greatest());
    if (m_appended < m_keep)
        std::ranges::sort(numbers);
    List(numbers);
    weed(m_solutions, int(m_keep));
}

void FastSearch::Abandon() {
    m_threads.reset();
    const std::uint64_t untrimmed = AppendedSinceLastTrim();
    const bool wasTrimmed = untrimmed < m_appended;
    const std::vector<EntryNumber> tail = LastAccepted(std::min(untrimmed, m_appended - m_earlier));
    std::vector<EntryNumber> numbers;
    if (wasTrimmed) {
        numbers = Numbers(m_best.Greatest(tail.empty() ? m_next : tail.front()));
    } else {
        numbers.resize(m_earlier);
        std::iota(numbers.begin(), numbers.end(), EntryNumber(0));
    }
    numbers.insert(numbers.end(), tail.begin(), tail.end());
    List(numbers);
}

/// The list is trimmed after the first rotated pose if the identity pass has left more than twice the number
/// to keep, and whenever it has grown beyond that: after each keep + 1 more.
std::uint64_t FastSearch::AppendedSinceLastTrim() {
    const bool rotated = m_next > m_earlier + m_fit.offsets.size();
    std::uint64_t first = 2 * m_keep + 1;
    if (rotated && m_appendedByIdentity >= first)
        first = m_appendedByIdentity + IsFirstRotatedPoseAccepted();
    return rotated && m_appended >= first ? (m_appended - first) % (m_keep + 1) : m_appended;
}

bool FastSearch::IsFirstRotatedPoseAccepted() {
    m_poseScorer.Rotate(m_rotations.At(1));
    return m_poseScorer.Score(m_fit.offsets.front()).IsAccepted();
}

/// The numbers of the poses accepted last, found by scoring pass after pass again from the last one on.
std::vector<EntryNumber> FastSearch::LastAccepted(std::uint64_t count) {
    std::vector<EntryNumber> accepted;
    for (std::size_t pass = m_axesDone + 1; pass-- > 0 && accepted.size() < count;) {
        std::vector<EntryNumber> ofPass;
        const std::uint64_t begin = pass == 0 ? 0 : 1 + (pass - 1) * m_rotations.PerAxis();
        const std::uint64_t end = pass == 0 ? 1 : begin + m_rotations.PerAxis();
        for (std::uint64_t rotation = begin; rotation < end; ++rotation)
            KeepLastAccepted(rotation, count, ofPass);
        accepted.insert(accepted.begin(), ofPass.begin(), ofPass.end());
    }
    KeepLast(accepted, count);
    return accepted;
}

/// Adds the rotation's accepted poses to those found and keeps the last `count`.
void FastSearch::KeepLastAccepted(std::uint64_t rotation, std::uint64_t count,
                                  std::vector<EntryNumber> &accepted) {
    BestPoses all(std::numeric_limits<std::uint32_t>::max());
    m_scorer.Score(m_rotations.At(rotation), m_earlier + rotation * m_fit.offsets.size(), all);
    std::vector<EntryNumber> numbers = Numbers(all.Entries());
    std::ranges::sort(numbers);
    accepted.insert(accepted.end(), numbers.begin(), numbers.end());
    KeepLast(accepted, count);
}

/// Makes the list consist of these entries, in this order.
void FastSearch::List(const std::vector<EntryNumber> &numbers) {
    std::vector<std::size_t> order(numbers.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::ranges::sort(order, {}, [&numbers](std::size_t i) { return numbers[i]; });
    std::vector<SolutionScore> solutions(numbers.size());
    auto earlier = m_solutions.begin();
    EntryNumber reached = 0;
    for (const std::size_t i : order) {
        if (numbers[i] < m_earlier) {
            std::advance(earlier, numbers[i] - reached);
            reached = numbers[i];
            solutions[i] = std::move(*earlier);
        } else {
            const EntryNumber pose = numbers[i] - m_earlier;
            m_poseScorer.Rotate(m_rotations.At(pose / m_fit.offsets.size()));
            solutions[i] = m_poseScorer.Score(m_fit.offsets[pose % m_fit.offsets.size()]);
        }
    }
    m_solutions.assign(std::move_iterator(solutions.begin()), std::move_iterator(solutions.end()));
}

} // namespace fast
