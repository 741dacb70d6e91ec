#include "placement/CoarseSearch.h"

#include "placement/Constants.h"
#include "placement/Kernels.h"
#include "placement/Parallel.h"

#include <algorithm>
#include <atomic>
#include <mutex>

namespace placement {

static_assert(scanLevels == highestLevel);

namespace {

/// A pair of rotation and place with its sum of levels.
struct Candidate {
    std::uint16_t sum;
    std::uint32_t rotation;
    std::int32_t place; ///< index in the level grid

    friend bool operator<(const Candidate &a, const Candidate &b) {
        if (a.sum != b.sum)
            return a.sum > b.sum;
        return a.rotation != b.rotation ? a.rotation < b.rotation : a.place < b.place;
    }
};

/// The level in bytes, with a border as wide as the model so that every point may be read; rows share theirs
/// with the next one's.
class LevelGrid {
public:
    explicit LevelGrid(const CoarseJob &job)
        : m_spacing(job.level.spacing)
        , m_origin(job.level.origin) {
        double radius = 0;
        for (const Point &p : job.points)
            radius = std::max(radius, Length(p));
        std::array<std::size_t, 3> border;
        for (std::size_t axis = 0; axis < 3; ++axis)
            border[axis] = std::size_t(std::ceil(radius / m_spacing[axis])) + 1;
        m_row = job.inBox[0] + border[0];
        m_plane = m_row * (job.inBox[1] + border[1]);
        m_first = m_plane * border[2] + m_row * border[1] + border[0];
        const double deviation = DeviationAtPlaces(job);
        // Behind the last place a whole chunk may be read.
        m_levels.assign(2 * m_first + m_plane * job.inBox[2] + chunkPlaces, LevelOf(0, deviation));
        for (std::size_t k = 0; k < job.inBox[2]; ++k)
            for (std::size_t j = 0; j < job.inBox[1]; ++j)
                for (std::size_t i = 0; i < job.inBox[0]; ++i) {
                    const std::size_t voxel = job.level.Index(i, j, k), place = i + m_row * j + m_plane * k;
                    m_levels[m_first + place] = LevelOf(double(job.level.values[voxel]), deviation);
                    if (job.places[voxel])
                        m_places.push_back(std::int32_t(place));
                }
        m_background = LevelOf(0, deviation);
    }

    const std::vector<std::int32_t> &Places() const { return m_places; }
    const std::uint8_t *At(std::int32_t place) const { return m_levels.data() + m_first + place; }
    std::uint8_t Background() const { return m_background; }

    std::int32_t OffsetOf(const Point &p) const {
        return std::int32_t(std::lrint(p.x / m_spacing[0]) + std::lrint(p.y / m_spacing[1]) * long(m_row) +
                            std::lrint(p.z / m_spacing[2]) * long(m_plane));
    }
    Point PositionOf(std::int32_t place) const {
        const std::size_t k = std::size_t(place) / m_plane, inPlane = std::size_t(place) % m_plane;
        const std::size_t j = inPlane / m_row, i = inPlane % m_row;
        return m_origin + Point{double(i) * m_spacing[0], double(j) * m_spacing[1], double(k) * m_spacing[2]};
    }

private:
    /// Root mean square of the level where the model's centre may lie.
    static double DeviationAtPlaces(const CoarseJob &job) {
        double squares = 0;
        std::size_t number = 0;
        for (std::size_t i = 0; i < job.places.size(); ++i)
            if (job.places[i]) {
                squares += double(job.level.values[i]) * double(job.level.values[i]);
                ++number;
            }
        return number > 0 ? std::sqrt(squares / double(number)) : 0;
    }

    static std::uint8_t LevelOf(double value, double deviation) {
        const double part = deviation > 0 ? std::clamp(value / (scanClip * deviation), -1.0, 1.0) : 0;
        return std::uint8_t(std::lround((part + 1) / 2 * highestLevel));
    }

    std::array<double, 3> m_spacing;
    Point m_origin;
    std::size_t m_row, m_plane, m_first;
    std::vector<std::uint8_t> m_levels;
    std::vector<std::int32_t> m_places;
    std::uint8_t m_background;
};

/// What threads write often stands at least this far apart, bytes: a processor's unit of sharing.
constexpr std::size_t cacheLine = 64;

/// Neighbouring places: bit i of `live` tells whether place first + i is one.
struct Chunk {
    std::int32_t first;
    std::uint64_t live;
};

std::vector<Chunk> ChunksOf(const std::vector<std::int32_t> &places) {
    std::vector<Chunk> chunks;
    for (const std::int32_t place : places) {
        if (chunks.empty() || place >= chunks.back().first + std::int32_t(chunkPlaces))
            chunks.push_back({place, 0});
        chunks.back().live |= std::uint64_t(1) << (place - chunks.back().first);
    }
    while (chunks.size() % blockChunks != 0)
        chunks.push_back({chunks.front().first, 0});
    return chunks;
}

/// The sum that a candidate must exceed to be among the best of all threads. Each tells now and then what it
/// has found, so that all soon know what is not worth keeping.
class Floor {
public:
    /// Sums up to `lowest` are not wanted, none is above `highest`.
    Floor(std::uint16_t lowest, std::uint16_t highest)
        : m_floor(lowest)
        , m_counts(std::size_t(highest) + 1) {}

    std::uint16_t Value() const { return m_floor.load(std::memory_order_relaxed); }

    void Count(std::span<const Candidate> found) {
        const std::lock_guard lock(m_mutex);
        for (const Candidate &candidate : found)
            ++m_counts[candidate.sum];
        // Below a sum that enough candidates reach, none is among the best; of those that just reach it, some
        // may be.
        std::size_t better = 0;
        for (std::size_t sum = m_counts.size(); --sum > Value();)
            if ((better += m_counts[sum]) >= keptCandidates)
                m_floor = std::uint16_t(sum - 1);
    }

private:
    std::atomic<std::uint16_t> m_floor;
    alignas(cacheLine) std::mutex m_mutex;
    std::vector<std::size_t> m_counts; ///< of candidates, by their sum
};

/// The best candidates that one thread came across.
class alignas(cacheLine) BestCandidates {
public:
    explicit BestCandidates(Floor &floor)
        : m_floor(floor) {}

    /// Sums up to this one are not wanted.
    std::uint16_t Threshold() const { return m_floor.Value(); }

    void Add(const Candidate &candidate) {
        m_candidates.push_back(candidate);
        if (m_candidates.size() < m_counted + countedAtOnce)
            return;
        m_floor.Count(std::span(m_candidates).subspan(m_counted));
        if (m_candidates.size() > 4 * keptCandidates)
            Trim();
        m_counted = m_candidates.size();
    }

    /// Best first.
    std::vector<Candidate> &Sorted() {
        Trim();
        std::sort(m_candidates.begin(), m_candidates.end());
        return m_candidates;
    }

private:
    static constexpr std::size_t countedAtOnce = 512;

    void Trim() {
        std::erase_if(m_candidates, [this](const Candidate &c) { return c.sum <= Threshold(); });
        if (m_candidates.size() <= keptCandidates)
            return;
        std::nth_element(m_candidates.begin(), m_candidates.begin() + keptCandidates, m_candidates.end());
        m_candidates.resize(keptCandidates);
    }

    Floor &m_floor;
    std::vector<Candidate> m_candidates;
    std::size_t m_counted = 0;
};

std::vector<Candidate> BestOfAll(std::vector<BestCandidates> &lists, unsigned threads) {
    std::vector<std::vector<Candidate>> sorted(lists.size());
    ForEach(lists.size(), threads,
            [&](std::size_t i, unsigned) { sorted[i] = std::move(lists[i].Sorted()); });
    std::vector<Candidate> all = std::move(sorted.front());
    for (std::size_t i = 1; i < sorted.size(); ++i) {
        const auto middle = std::ptrdiff_t(all.size());
        all.insert(all.end(), sorted[i].begin(), sorted[i].end());
        std::inplace_merge(all.begin(), all.begin() + middle, all.end());
    }
    all.resize(std::min(all.size(), keptCandidates));
    return all;
}

/// Scores one rotation at all places.
class alignas(cacheLine) RotationScan {
public:
    RotationScan(const LevelGrid &grid, const std::vector<Chunk> &chunks, std::span<const Point> points)
        : m_grid(grid)
        , m_chunks(chunks)
        , m_points(points)
        , m_offsets(points.size()) {}

    void Run(const Matrix &rotation, std::uint32_t number, BestCandidates &best) {
        std::ranges::transform(m_points, m_offsets.begin(),
                               [&](const Point &p) { return m_grid.OffsetOf(rotation * p); });
        // Loads that follow one another in memory are faster.
        std::ranges::sort(m_offsets);
        for (std::size_t first = 0; first < m_chunks.size(); first += blockChunks) {
            const std::uint8_t *levels[blockChunks];
            for (std::size_t c = 0; c < blockChunks; ++c)
                levels[c] = m_grid.At(m_chunks[first + c].first);
            const unsigned marks = SumLevels(levels, m_offsets, best.Threshold(), m_sums);
            for (std::size_t c = 0; c < blockChunks; ++c)
                if (marks >> c & 1)
                    TakeBest(m_chunks[first + c], m_sums + chunkPlaces * c, number, best);
        }
    }

private:
    static void TakeBest(const Chunk &chunk, const std::uint16_t *sums, std::uint32_t rotation,
                         BestCandidates &best) {
        Candidate candidate{best.Threshold(), rotation, -1};
        for (std::size_t i = 0; i < chunkPlaces; ++i)
            if (sums[i] > candidate.sum && (chunk.live >> i & 1)) {
                candidate.sum = sums[i];
                candidate.place = chunk.first + std::int32_t(i);
            }
        if (candidate.place >= 0)
            best.Add(candidate);
    }

    const LevelGrid &m_grid;
    const std::vector<Chunk> &m_chunks;
    std::span<const Point> m_points;
    std::vector<std::int32_t> m_offsets;
    std::uint16_t m_sums[chunkPlaces * blockChunks] = {};
};

} // namespace

std::array<std::size_t, 3> VoxelsInBox(const Volume &volume, const std::array<double, 3> &lengths) {
    std::array<std::size_t, 3> inBox;
    for (std::size_t axis = 0; axis < 3; ++axis)
        inBox[axis] =
            std::min(volume.count[axis], std::size_t(std::ceil(lengths[axis] / volume.spacing[axis])));
    return inBox;
}

std::vector<float> ValuesInBox(const Volume &volume, const std::array<std::size_t, 3> &inBox) {
    // They tell a percentile to a tenth of a percent.
    constexpr std::size_t enough = 1 << 18;
    const std::size_t stride = inBox[0] * inBox[1] * inBox[2] / enough + 1;
    std::vector<float> values;
    values.reserve(inBox[0] * (inBox[1] * inBox[2] / stride + 1));
    std::size_t number = 0;
    for (std::size_t k = 0; k < inBox[2]; ++k)
        for (std::size_t j = 0; j < inBox[1]; ++j) {
            if (number++ % stride != 0)
                continue;
            const auto row = volume.values.begin() + std::ptrdiff_t(volume.Index(0, j, k));
            values.insert(values.end(), row, row + std::ptrdiff_t(inBox[0]));
        }
    return values;
}

std::pair<float, float> RangeInBox(const Volume &volume, const std::array<std::size_t, 3> &inBox) {
    float lowest = volume.values.front(), highest = lowest;
    for (std::size_t k = 0; k < inBox[2]; ++k)
        for (std::size_t j = 0; j < inBox[1]; ++j)
            for (const float value : std::span(volume.values).subspan(volume.Index(0, j, k), inBox[0])) {
                lowest = std::min(lowest, value);
                highest = std::max(highest, value);
            }
    return {lowest, highest};
}

double DensityThreshold(const Volume &smoothed, const std::array<std::size_t, 3> &inBox) {
    std::vector<float> values = ValuesInBox(smoothed, inBox);
    const auto lowest = values.begin() + std::ptrdiff_t(maskBase * double(values.size()));
    std::nth_element(values.begin(), lowest, values.end());
    const double base = double(*lowest), top = double(RangeInBox(smoothed, inBox).second);
    return base + maskHeight * (top - base);
}

std::vector<bool> DensePlaces(const Volume &smoothed, const std::array<std::size_t, 3> &inBox,
                              const std::optional<Sphere> &region) {
    const double height = DensityThreshold(smoothed, inBox);
    const auto &[sx, sy, sz] = smoothed.spacing;
    const double halfDiagonal = 0.5 * Length({sx, sy, sz});
    std::vector<bool> places(smoothed.values.size());
    for (std::size_t k = 0; k < inBox[2]; ++k)
        for (std::size_t j = 0; j < inBox[1]; ++j)
            for (std::size_t i = 0; i < inBox[0]; ++i) {
                const std::size_t voxel = smoothed.Index(i, j, k);
                places[voxel] = double(smoothed.values[voxel]) > height &&
                                (!region || Length(smoothed.At(i, j, k) - region->centre) <=
                                                region->radius + halfDiagonal);
            }
    return places;
}

std::vector<Pose> CoarseSearch(const CoarseJob &job, unsigned threads, Monitor &monitor) {
    const LevelGrid grid(job);
    if (grid.Places().empty())
        return {};
    const std::vector<Chunk> chunks = ChunksOf(grid.Places());
    // A model that lies in the background has this sum; less is not worth keeping.
    Floor floor(std::uint16_t(grid.Background() * job.points.size()),
                std::uint16_t(highestLevel * job.points.size()));
    std::vector<BestCandidates> best(std::max(1u, threads), BestCandidates(floor));
    std::vector<RotationScan> scans(std::max(1u, threads), RotationScan(grid, chunks, job.points));
    std::atomic<std::size_t> done = 0;
    ForEach(job.rotations.size(), threads, [&](std::size_t rotation, unsigned worker) {
        if (monitor.IsCancelled())
            return;
        scans[worker].Run(job.rotations[rotation], std::uint32_t(rotation), best[worker]);
        ++done;
        if (worker == 0)
            monitor.Advance(double(done) / double(job.rotations.size()));
    });
    std::vector<Pose> poses;
    for (const Candidate &candidate : BestOfAll(best, threads))
        poses.push_back({job.rotations[candidate.rotation], grid.PositionOf(candidate.place)});
    return poses;
}

} // namespace placement
