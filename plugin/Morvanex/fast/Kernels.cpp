#include "fast/Kernels.h"

#include "base/InstructionSets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "fast/Kernels.cpp"
#include <hwy/foreach_target.h>
// The order of these two is Highway's.
#include <hwy/highway.h>

#include <algorithm>
#include <cassert>

HWY_BEFORE_NAMESPACE();
namespace fast::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::CappedTag<float, PaddedPoints::block>;
using Indices = hn::RebindToSigned<Floats>;

void RotatePoints(const std::array<double, 9> &m, const CoordinateArrays<const double> &p,
                  PaddedPoints points, const CoordinateArrays<float> &rotated) {
    const hn::CappedTag<double, PaddedPoints::block / 2> d;
    const hn::Rebind<float, decltype(d)> rounded;
    for (std::size_t i = 0; i < points.Entries(); i += hn::Lanes(d)) {
        const auto x = hn::LoadU(d, p[0] + i), y = hn::LoadU(d, p[1] + i), z = hn::LoadU(d, p[2] + i);
        for (std::size_t row = 0; row < 3; ++row) {
            const auto xy =
                hn::Add(hn::Mul(hn::Set(d, m[3 * row]), x), hn::Mul(hn::Set(d, m[3 * row + 1]), y));
            const auto sum = hn::Add(xy, hn::Mul(hn::Set(d, m[3 * row + 2]), z));
            hn::StoreU(hn::DemoteTo(rounded, sum), rounded, rotated[row] + i);
        }
    }
}

/// The index of the voxel nearest to p, -1 below the grid and `count` above it.
///
/// `NearestVoxel` truncates q + 0.5, formed in double, for q = (p - origin) / spacing in float. Truncating
/// q + h in float, h being the float below 0.5, gives the same for 0 <= q <= 2^22: q + 0.5 itself could round
/// up to an integer that it does not reach (q just below 0.5), q + h cannot, and where q + 0.5 is an integer,
/// q + h lies so close below it that it rounds up to it. Negative q down to -1.5 land on 0.
template <class V>
HWY_INLINE auto NearestIndex(V p, const GridAxis &axis) {
    const Floats d;
    const Indices di;
    const auto q = hn::Div(hn::Sub(p, hn::Set(d, axis.origin)), hn::Set(d, axis.spacing));
    const auto inside = hn::Min(hn::Max(q, hn::Zero(d)), hn::Set(d, float(axis.count)));
    const auto index = hn::ConvertTo(di, hn::Add(inside, hn::Set(d, 0x1.fffffep-2f)));
    return hn::Add(index, hn::VecFromMask(di, hn::RebindMask(di, hn::Le(q, hn::Set(d, -1.5f)))));
}

void MapCoordinates(const float *coordinates, PaddedPoints points, float translation, const GridAxis &axis,
                    std::int32_t *indices) {
    const Floats d;
    const Indices di;
    const auto shift = hn::Set(d, translation);
    const auto stride = hn::Set(di, axis.stride);
    for (std::size_t i = 0; i < points.Entries(); i += hn::Lanes(d)) {
        const auto index = NearestIndex(hn::Add(hn::LoadU(d, coordinates + i), shift), axis);
        hn::StoreU(hn::Mul(index, stride), di, indices + i);
    }
}

/// Lookups in 32 bytes are two in 16 that stand side by side.
constexpr bool hasWideWindow = !HWY_HAVE_SCALABLE && hn::MaxLanes(hn::CappedTag<std::uint8_t, 32>()) == 32;

std::size_t LargestWindow() {
    return hasWideWindow ? 32 : 16;
}

/// Turns positions in a window of 32 bytes into the look-ups of its two blocks of 16: a position belongs to
/// one of them, and has its top bit set for the other. Returns the larger one of `largest` and the positions.
HWY_INLINE hn::Vec<hn::FixedTag<std::uint8_t, 16>>
SplitPositions(std::uint8_t *patterns, hn::Vec<hn::FixedTag<std::uint8_t, 16>> largest) {
    const hn::FixedTag<std::uint8_t, 16> d;
    const auto position = hn::LoadU(d, patterns);
    const auto beyond = hn::And(hn::SaturatedAdd(position, hn::Set(d, 0x70)), hn::Set(d, 0x80));
    hn::StoreU(hn::Or(position, beyond), d, patterns);
    hn::StoreU(hn::Sub(position, hn::Set(d, 16)), d, patterns + 16);
    return hn::Max(largest, position);
}

bool MapWindows(const float *coordinates, PaddedPoints points, const UnitTranslations &translations,
                std::size_t count, const GridAxis &axis, const Windows &windows) {
    const Floats d;
    const Indices di;
    const hn::Rebind<std::uint8_t, Indices> bytes;
    const std::size_t lanes = hn::Lanes(d);
    HWY_NAMESPACE::MapCoordinates(coordinates, points, translations[0], axis, windows.starts);
    HWY_NAMESPACE::MapCoordinates(coordinates, points, translations[count - 1], axis, windows.scratch);
    for (std::size_t i = 0; i < points.Entries(); i += lanes)
        hn::StoreU(hn::Min(hn::LoadU(di, windows.starts + i), hn::LoadU(di, windows.scratch + i)), di,
                   windows.starts + i);
    const std::size_t window = windows.shape.bytes;
    for (std::size_t i = 0; i < points.Points(); ++i) {
        const auto p = hn::Set(d, coordinates[i]);
        const auto start = hn::Set(di, windows.starts[i]);
        std::uint8_t *pattern = windows.patterns + i * windows.shape.PatternBytes();
        for (std::size_t k = 0; k < count; k += lanes) {
            const auto index = NearestIndex(hn::Add(p, hn::LoadU(d, translations.data() + k)), axis);
            hn::StoreU(hn::DemoteTo(bytes, hn::Sub(index, start)), bytes,
                       pattern + k / lookUpOffsets * window + k % lookUpOffsets);
        }
    }
    const hn::FixedTag<std::uint8_t, 16> d8;
    auto largest = hn::Zero(d8);
    for (std::size_t i = 0; i < points.Points() * windows.shape.lookUps; ++i) {
        std::uint8_t *pattern = windows.patterns + i * window;
        largest = window == 32 ? SplitPositions(pattern, largest) : hn::Max(largest, hn::LoadU(d8, pattern));
    }
    HWY_ALIGN std::uint8_t positions[16];
    hn::Store(largest, d8, positions);
    return *std::max_element(positions, positions + 16) < window;
}

using Levels16 = hn::FixedTag<std::uint8_t, 16>;
constexpr std::size_t sumLanes = HWY_HAVE_SCALABLE ? 8 : hn::MaxLanes(hn::CappedTag<std::uint16_t, 16>());
using Sums = hn::FixedTag<std::uint16_t, sumLanes>;

/// Adds 16 bytes, widened, to 16 sums.
template <class D>
HWY_INLINE void AddWidened(D d, hn::Vec<Levels16> levels, std::uint16_t *sums) {
    if constexpr (hn::MaxLanes(D()) == 16) {
        hn::StoreU(hn::Add(hn::LoadU(d, sums), hn::PromoteTo(d, levels)), d, sums);
    } else {
        const hn::Half<Levels16> half;
        const auto low = hn::PromoteTo(d, hn::LowerHalf(half, levels));
        const auto high = hn::PromoteTo(d, hn::UpperHalf(half, levels));
        hn::StoreU(hn::Add(hn::LoadU(d, sums), low), d, sums);
        hn::StoreU(hn::Add(hn::LoadU(d, sums + 8), high), d, sums + 8);
    }
}

/// One level per offset out of a window: each offset stands in one of the window's blocks, and the other
/// gives 0.
template <class D, class V>
HWY_INLINE hn::Vec<Levels16> Fold(D, V levels) {
    if constexpr (hn::MaxLanes(D()) == 16)
        return levels;
    else
        return hn::Add(hn::LowerHalf(Levels16(), levels), hn::UpperHalf(Levels16(), levels));
}

/// Looks up the levels of `levelGroup` points in their windows of a row and adds them to the row's sums.
template <class D, class V>
HWY_INLINE void AddLookUp(D d, V row0, V row1, V row2, V row3, V pattern0, V pattern1, V pattern2, V pattern3,
                          std::uint16_t *sums) {
    const auto levels01 =
        hn::Add(hn::TableLookupBytesOr0(row0, pattern0), hn::TableLookupBytesOr0(row1, pattern1));
    const auto levels23 =
        hn::Add(hn::TableLookupBytesOr0(row2, pattern2), hn::TableLookupBytesOr0(row3, pattern3));
    AddWidened(Sums(), Fold(d, hn::Add(levels01, levels23)), sums);
}

template <std::size_t windowBytes, std::size_t lookUps>
void SumRowsOf(const RowSums &job) {
    static_assert(levelGroup == 4);
    const hn::FixedTag<std::uint8_t, windowBytes> d;
    constexpr std::size_t rowSums = lookUps * lookUpOffsets, pattern = lookUps * windowBytes;
    constexpr std::size_t second = pattern - windowBytes; // the first where there is no other
    const std::uint8_t *levels = job.levels.First();
    std::ranges::fill(job.sums, std::uint16_t(0));
    for (std::size_t point = 0; point < job.points.Entries(); point += levelGroup) {
        const std::uint8_t *p0 = job.windows.patterns + point * pattern, *p1 = p0 + pattern,
                           *p2 = p1 + pattern, *p3 = p2 + pattern;
        const auto first0 = hn::LoadU(d, p0), first1 = hn::LoadU(d, p1), first2 = hn::LoadU(d, p2),
                   first3 = hn::LoadU(d, p3);
        const auto second0 = hn::LoadU(d, p0 + second), second1 = hn::LoadU(d, p1 + second),
                   second2 = hn::LoadU(d, p2 + second), second3 = hn::LoadU(d, p3 + second);
        const std::int32_t *starts = job.windows.starts + point;
        std::uint16_t *sums = job.sums.data();
        const std::int32_t *const *row = job.ys.data();
        for (std::size_t x = 0; x < job.xs.size(); ++x) {
            const std::int32_t *xs = job.xs[x] + point;
            const std::uint8_t *slab0 = levels + xs[0] + starts[0], *slab1 = levels + xs[1] + starts[1],
                               *slab2 = levels + xs[2] + starts[2], *slab3 = levels + xs[3] + starts[3];
            for (const auto end = job.ys.data() + job.rowsBegin[x + 1]; row != end; ++row) {
                const std::int32_t *ys = *row + point;
                const auto row0 = hn::LoadU(d, slab0 + ys[0]), row1 = hn::LoadU(d, slab1 + ys[1]),
                           row2 = hn::LoadU(d, slab2 + ys[2]), row3 = hn::LoadU(d, slab3 + ys[3]);
                AddLookUp(d, row0, row1, row2, row3, first0, first1, first2, first3, sums);
                if constexpr (lookUps == 2)
                    AddLookUp(d, row0, row1, row2, row3, second0, second1, second2, second3,
                              sums + lookUpOffsets);
                sums += rowSums;
            }
        }
    }
}

template <std::size_t windowBytes>
void SumRowsOf(const RowSums &job) {
    if (job.windows.shape.lookUps == 1)
        SumRowsOf<windowBytes, 1>(job);
    else
        SumRowsOf<windowBytes, maxLookUps>(job);
}

void SumRows(const RowSums &job) {
    if constexpr (hasWideWindow)
        if (job.windows.shape.bytes == 32)
            return SumRowsOf<32>(job);
    SumRowsOf<16>(job);
}

void MarkSums(std::span<const std::uint16_t> sums, SumRange a, SumRange b, std::span<std::uint16_t> marks) {
    const Sums d;
    const auto aFirst = hn::Set(d, a.first), aLast = hn::Set(d, a.last);
    const auto bFirst = hn::Set(d, b.first), bLast = hn::Set(d, b.last);
    for (std::size_t i = 0; i < marks.size(); ++i) {
        std::uint8_t bits[8] = {};
        for (std::size_t k = 0; k < lookUpOffsets; k += sumLanes) {
            const auto sum = hn::LoadU(d, sums.data() + i * lookUpOffsets + k);
            const auto inA = hn::And(hn::Eq(hn::Max(sum, aFirst), sum), hn::Eq(hn::Min(sum, aLast), sum));
            const auto inB = hn::And(hn::Eq(hn::Max(sum, bFirst), sum), hn::Eq(hn::Min(sum, bLast), sum));
            hn::StoreMaskBits(d, hn::Or(inA, inB), bits + k / 8);
        }
        marks[i] = std::uint16_t(bits[0] | bits[1] << 8);
    }
}

void MarkFineSums(std::span<const std::uint16_t> sums, std::span<const std::uint16_t> fineSums,
                  std::int32_t fineSteps, FineRange a, FineRange b, std::span<std::uint16_t> marks) {
    const hn::CappedTag<std::int32_t, 8> d;
    const hn::Rebind<std::uint16_t, decltype(d)> d16;
    // Highway has no >= for whole numbers here.
    const auto within = [d](auto sum, FineRange range) {
        return hn::And(hn::Eq(hn::Max(sum, hn::Set(d, range.first)), sum),
                       hn::Eq(hn::Min(sum, hn::Set(d, range.last)), sum));
    };
    for (std::size_t i = 0; i < marks.size(); ++i) {
        unsigned bits = 0;
        for (std::size_t k = 0; k < lookUpOffsets; k += hn::Lanes(d)) {
            const std::size_t at = i * lookUpOffsets + k;
            const auto levels = hn::PromoteTo(d, hn::LoadU(d16, sums.data() + at));
            const auto fine = hn::PromoteTo(d, hn::LoadU(d16, fineSums.data() + at));
            const auto sum = hn::Sub(hn::Mul(levels, hn::Set(d, fineSteps)), fine);
            std::uint8_t lanes[8] = {};
            hn::StoreMaskBits(d, hn::Or(within(sum, a), within(sum, b)), lanes);
            bits |= unsigned(lanes[0]) << k;
        }
        marks[i] = std::uint16_t(bits);
    }
}

/// The voxels' indices under `PaddedPoints::block` points of a pose.
HWY_INLINE void FindVoxels(const PoseIndices &pose, std::size_t point, std::int32_t *at) {
    const Indices d;
    for (std::size_t i = 0; i < PaddedPoints::block; i += hn::Lanes(d)) {
        const auto xy = hn::Add(hn::LoadU(d, pose.x + point + i), hn::LoadU(d, pose.y + point + i));
        hn::StoreU(hn::Add(xy, hn::LoadU(d, pose.z + point + i)), d, at + i);
    }
}

bool Touches(const GridValues<std::uint8_t> &levels, PaddedPoints points, const PoseIndices &pose) {
    const std::uint8_t *first = levels.First();
    unsigned touched = 0;
    for (std::size_t point = 0; point < points.Points() && touched == 0; point += PaddedPoints::block) {
        HWY_ALIGN std::int32_t at[PaddedPoints::block];
        FindVoxels(pose, point, at);
        for (std::size_t i = 0; i < std::min(PaddedPoints::block, points.Points() - point); ++i)
            touched |= first[at[i]];
    }
    return touched != 0;
}

/// Scores `side` poses at a time: sums that do not wait for each other hide the latency of an addition.
template <std::size_t side>
void ScorePosesBy(const float *voxels, std::size_t points, const PoseIndices *poses, double *scores) {
    double sums[side] = {};
    for (std::size_t point = 0; point < points; point += PaddedPoints::block) {
        HWY_ALIGN std::int32_t at[side][PaddedPoints::block];
        for (std::size_t c = 0; c < side; ++c)
            FindVoxels(poses[c], point, at[c]);
        const std::size_t end = std::min(PaddedPoints::block, points - point);
        for (std::size_t i = 0; i < end; ++i)
            for (std::size_t c = 0; c < side; ++c)
                sums[c] += double(voxels[at[c][i]]);
    }
    std::copy_n(sums, side, scores);
}

void ScorePoses(const GridValues<float> &voxels, PaddedPoints points, std::span<const PoseIndices> poses,
                std::span<double> scores) {
    std::size_t first = 0;
    for (; first + 4 <= poses.size(); first += 4)
        ScorePosesBy<4>(voxels.First(), points.Points(), &poses[first], &scores[first]);
    for (; first < poses.size(); ++first)
        ScorePosesBy<1>(voxels.First(), points.Points(), &poses[first], &scores[first]);
}

} // namespace fast::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace fast {

HWY_EXPORT(RotatePoints);
HWY_EXPORT(MapCoordinates);
HWY_EXPORT(LargestWindow);
HWY_EXPORT(MapWindows);
HWY_EXPORT(SumRows);
HWY_EXPORT(MarkSums);
HWY_EXPORT(MarkFineSums);
HWY_EXPORT(Touches);
HWY_EXPORT(ScorePoses);

namespace {

// What the kernels assume, for debug builds.

[[maybe_unused]] bool IsPossible(const WindowShape &shape) {
    return (shape.bytes == 16 || shape.bytes == LargestWindow()) && shape.lookUps >= 1 &&
           shape.lookUps <= maxLookUps;
}

[[maybe_unused]] bool IsUnit(const UnitTranslations &translations, std::size_t count) {
    const auto end = translations.begin() + std::ptrdiff_t(count);
    return (std::is_sorted(translations.begin(), end) ||
            std::is_sorted(translations.begin(), end, std::greater())) &&
           std::all_of(end, translations.end(), [end](float t) { return t == end[-1]; });
}

[[maybe_unused]] bool HoldsWindows(const RowSums &job) {
    for (std::size_t x = 0; x < job.xs.size(); ++x)
        for (std::size_t row = job.rowsBegin[x]; row < job.rowsBegin[x + 1]; ++row)
            for (std::size_t i = 0; i < job.points.Entries(); ++i) {
                const auto index = std::int64_t(job.xs[x][i]) + job.ys[row][i] + job.windows.starts[i];
                if (!job.levels.Holds(index, job.windows.shape.bytes))
                    return false;
            }
    return true;
}

template <class T>
[[maybe_unused]] bool HoldsPose(const GridValues<T> &grid, PaddedPoints points, const PoseIndices &pose) {
    for (std::size_t i = 0; i < points.Points(); ++i)
        if (!grid.Holds(std::int64_t(pose.x[i]) + pose.y[i] + pose.z[i], 1))
            return false;
    return true;
}

} // namespace

void RotatePoints(const std::array<double, 9> &matrix, const CoordinateArrays<const double> &p,
                  PaddedPoints points, const CoordinateArrays<float> &rotated) {
    HWY_DYNAMIC_DISPATCH(RotatePoints)(matrix, p, points, rotated);
}
void MapCoordinates(const float *coordinates, PaddedPoints points, float translation, const GridAxis &axis,
                    std::int32_t *indices) {
    assert(axis.spacing > 0 && axis.count <= GridAxis::maxCount);
    HWY_DYNAMIC_DISPATCH(MapCoordinates)(coordinates, points, translation, axis, indices);
}
std::size_t LargestWindow() {
    return HWY_DYNAMIC_DISPATCH(LargestWindow)();
}
bool MapWindows(const float *coordinates, PaddedPoints points, const UnitTranslations &translations,
                std::size_t count, const GridAxis &axis, const Windows &windows) {
    assert(axis.spacing > 0 && axis.count <= GridAxis::maxCount && axis.stride == 1);
    assert(IsPossible(windows.shape) && count >= 1 && count <= windows.shape.MaxOffsets());
    assert(IsUnit(translations, count));
    return HWY_DYNAMIC_DISPATCH(MapWindows)(coordinates, points, translations, count, axis, windows);
}
void SumRows(const RowSums &job) {
    assert(IsPossible(job.windows.shape) && job.rowsBegin.size() == job.xs.size() + 1);
    assert(job.rowsBegin.front() == 0 && job.rowsBegin.back() == job.ys.size());
    assert(job.sums.size() == job.ys.size() * job.windows.shape.MaxOffsets());
    assert(HoldsWindows(job));
    HWY_DYNAMIC_DISPATCH(SumRows)(job);
}
void MarkSums(std::span<const std::uint16_t> sums, SumRange a, SumRange b, std::span<std::uint16_t> marks) {
    assert(sums.size() == marks.size() * lookUpOffsets);
    HWY_DYNAMIC_DISPATCH(MarkSums)(sums, a, b, marks);
}
void MarkFineSums(std::span<const std::uint16_t> sums, std::span<const std::uint16_t> fineSums,
                  std::int32_t fineSteps, FineRange a, FineRange b, std::span<std::uint16_t> marks) {
    assert(sums.size() == marks.size() * lookUpOffsets && fineSums.size() == sums.size());
    HWY_DYNAMIC_DISPATCH(MarkFineSums)(sums, fineSums, fineSteps, a, b, marks);
}
bool Touches(const GridValues<std::uint8_t> &levels, PaddedPoints points, const PoseIndices &pose) {
    assert(HoldsPose(levels, points, pose));
    return HWY_DYNAMIC_DISPATCH(Touches)(levels, points, pose);
}
void ScorePoses(const GridValues<float> &voxels, PaddedPoints points, std::span<const PoseIndices> poses,
                std::span<double> scores) {
    assert(scores.size() == poses.size());
    assert(std::ranges::all_of(poses, [&](const auto &pose) { return HoldsPose(voxels, points, pose); }));
    HWY_DYNAMIC_DISPATCH(ScorePoses)(voxels, points, poses, scores);
}

} // namespace fast
#endif
