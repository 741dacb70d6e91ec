#include "fast/Kernels.h"

// The emulated target stands in where the machine has none of the others. Highway leaves it out for compilers
// that miscompile its MulHigh, which is not used here.
#define HWY_BROKEN_EMU128 0
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "fast/Kernels.cpp"
#include <hwy/foreach_target.h>
// The order of these two is Highway's.
#include <hwy/highway.h>

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace fast::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::CappedTag<float, pointBlock>;
using Indices = hn::RebindToSigned<Floats>;

void RotatePoints(const double *m, const double *const *p, std::size_t padded, float *const *out) {
    const hn::CappedTag<double, pointBlock / 2> d;
    const hn::Rebind<float, decltype(d)> rounded;
    for (std::size_t i = 0; i < padded; i += hn::Lanes(d)) {
        const auto x = hn::LoadU(d, p[0] + i), y = hn::LoadU(d, p[1] + i), z = hn::LoadU(d, p[2] + i);
        for (std::size_t row = 0; row < 3; ++row) {
            const auto xy =
                hn::Add(hn::Mul(hn::Set(d, m[3 * row]), x), hn::Mul(hn::Set(d, m[3 * row + 1]), y));
            const auto sum = hn::Add(xy, hn::Mul(hn::Set(d, m[3 * row + 2]), z));
            hn::StoreU(hn::DemoteTo(rounded, sum), rounded, out[row] + i);
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

void MapCoordinates(const float *coordinates, std::size_t padded, float translation, const GridAxis &axis,
                    std::int32_t *out) {
    const Floats d;
    const Indices di;
    const auto shift = hn::Set(d, translation);
    const auto stride = hn::Set(di, axis.stride);
    for (std::size_t i = 0; i < padded; i += hn::Lanes(d)) {
        const auto index = NearestIndex(hn::Add(hn::LoadU(d, coordinates + i), shift), axis);
        hn::StoreU(hn::Mul(index, stride), di, out + i);
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

bool MapWindows(const float *coordinates, std::size_t points, std::size_t padded, const float *translations,
                std::size_t count, const GridAxis &axis, const Windows &windows) {
    const Floats d;
    const Indices di;
    const hn::Rebind<std::uint8_t, Indices> bytes;
    const std::size_t lanes = hn::Lanes(d);
    GridAxis ends = axis;
    ends.stride = 1;
    HWY_NAMESPACE::MapCoordinates(coordinates, padded, translations[0], ends, windows.starts);
    HWY_NAMESPACE::MapCoordinates(coordinates, padded, translations[count - 1], ends, windows.scratch);
    for (std::size_t i = 0; i < padded; i += lanes)
        hn::StoreU(hn::Min(hn::LoadU(di, windows.starts + i), hn::LoadU(di, windows.scratch + i)), di,
                   windows.starts + i);
    const std::size_t window = windows.shape.bytes;
    for (std::size_t i = 0; i < points; ++i) {
        const auto p = hn::Set(d, coordinates[i]);
        const auto start = hn::Set(di, windows.starts[i]);
        std::uint8_t *pattern = windows.patterns + i * windows.shape.PatternBytes();
        for (std::size_t k = 0; k < count; k += lanes) {
            const auto index = NearestIndex(hn::Add(p, hn::LoadU(d, translations + k)), axis);
            hn::StoreU(hn::DemoteTo(bytes, hn::Sub(index, start)), bytes,
                       pattern + k / lookUpOffsets * window + k % lookUpOffsets);
        }
    }
    const hn::FixedTag<std::uint8_t, 16> d8;
    auto largest = hn::Zero(d8);
    for (std::size_t i = 0; i < points * windows.shape.lookUps; ++i) {
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
    std::fill_n(job.sums, rowSums * job.rowsBegin[job.xCount], std::uint16_t(0));
    for (std::size_t point = 0; point < job.padded; point += levelGroup) {
        const std::uint8_t *p0 = job.windows.patterns + point * pattern, *p1 = p0 + pattern,
                           *p2 = p1 + pattern, *p3 = p2 + pattern;
        const auto first0 = hn::LoadU(d, p0), first1 = hn::LoadU(d, p1), first2 = hn::LoadU(d, p2),
                   first3 = hn::LoadU(d, p3);
        const auto second0 = hn::LoadU(d, p0 + second), second1 = hn::LoadU(d, p1 + second),
                   second2 = hn::LoadU(d, p2 + second), second3 = hn::LoadU(d, p3 + second);
        const std::int32_t *starts = job.windows.starts + point;
        std::uint16_t *sums = job.sums;
        const std::int32_t *const *row = job.ys;
        for (std::size_t x = 0; x < job.xCount; ++x) {
            const std::int32_t *xs = job.xs[x] + point;
            const std::uint8_t *slab0 = job.levels + xs[0] + starts[0],
                               *slab1 = job.levels + xs[1] + starts[1],
                               *slab2 = job.levels + xs[2] + starts[2],
                               *slab3 = job.levels + xs[3] + starts[3];
            for (const auto end = job.ys + job.rowsBegin[x + 1]; row != end; ++row) {
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
        SumRowsOf<windowBytes, mostLookUps>(job);
}

void SumRows(const RowSums &job) {
    if constexpr (hasWideWindow)
        if (job.windows.shape.bytes == 32)
            return SumRowsOf<32>(job);
    SumRowsOf<16>(job);
}

void MarkSums(const std::uint16_t *sums, std::size_t lookUps, SumRange a, SumRange b, std::uint16_t *marks) {
    const Sums d;
    const auto aFirst = hn::Set(d, a.first), aLast = hn::Set(d, a.last);
    const auto bFirst = hn::Set(d, b.first), bLast = hn::Set(d, b.last);
    for (std::size_t i = 0; i < lookUps; ++i) {
        std::uint8_t bits[8] = {};
        for (std::size_t k = 0; k < lookUpOffsets; k += sumLanes) {
            const auto sum = hn::LoadU(d, sums + i * lookUpOffsets + k);
            const auto inA = hn::And(hn::Eq(hn::Max(sum, aFirst), sum), hn::Eq(hn::Min(sum, aLast), sum));
            const auto inB = hn::And(hn::Eq(hn::Max(sum, bFirst), sum), hn::Eq(hn::Min(sum, bLast), sum));
            hn::StoreMaskBits(d, hn::Or(inA, inB), bits + k / 8);
        }
        marks[i] = std::uint16_t(bits[0] | bits[1] << 8);
    }
}

void MarkFineSums(const std::uint16_t *sums, const std::uint16_t *fineSums, std::int32_t fineSteps,
                  std::size_t lookUps, FineRange a, FineRange b, std::uint16_t *marks) {
    const hn::CappedTag<std::int32_t, 8> d;
    const hn::Rebind<std::uint16_t, decltype(d)> d16;
    // Highway has no >= for whole numbers here.
    const auto within = [d](auto sum, FineRange range) {
        return hn::And(hn::Eq(hn::Max(sum, hn::Set(d, range.first)), sum),
                       hn::Eq(hn::Min(sum, hn::Set(d, range.last)), sum));
    };
    for (std::size_t i = 0; i < lookUps; ++i) {
        unsigned bits = 0;
        for (std::size_t k = 0; k < lookUpOffsets; k += hn::Lanes(d)) {
            const std::size_t at = i * lookUpOffsets + k;
            const auto levels = hn::PromoteTo(d, hn::LoadU(d16, sums + at));
            const auto fine = hn::PromoteTo(d, hn::LoadU(d16, fineSums + at));
            const auto sum = hn::Sub(hn::Mul(levels, hn::Set(d, fineSteps)), fine);
            std::uint8_t lanes[8] = {};
            hn::StoreMaskBits(d, hn::Or(within(sum, a), within(sum, b)), lanes);
            bits |= unsigned(lanes[0]) << k;
        }
        marks[i] = std::uint16_t(bits);
    }
}

/// The voxels' indices under `pointBlock` points of a pose.
HWY_INLINE void FindVoxels(const PoseIndices &pose, std::size_t point, std::int32_t *at) {
    const Indices d;
    for (std::size_t i = 0; i < pointBlock; i += hn::Lanes(d)) {
        const auto xy = hn::Add(hn::LoadU(d, pose.x + point + i), hn::LoadU(d, pose.y + point + i));
        hn::StoreU(hn::Add(xy, hn::LoadU(d, pose.z + point + i)), d, at + i);
    }
}

bool Touches(const std::uint8_t *levels, std::size_t points, const PoseIndices &pose) {
    unsigned touched = 0;
    for (std::size_t point = 0; point < points && touched == 0; point += pointBlock) {
        HWY_ALIGN std::int32_t at[pointBlock];
        FindVoxels(pose, point, at);
        for (std::size_t i = 0; i < std::min(pointBlock, points - point); ++i)
            touched |= levels[at[i]];
    }
    return touched != 0;
}

/// Scores `side` poses at a time: sums that do not wait for each other hide the latency of an addition.
template <std::size_t side>
void ScorePosesBy(const float *voxels, std::size_t points, const PoseIndices *poses, double *scores) {
    double sums[side] = {};
    for (std::size_t point = 0; point < points; point += pointBlock) {
        HWY_ALIGN std::int32_t at[side][pointBlock];
        for (std::size_t c = 0; c < side; ++c)
            FindVoxels(poses[c], point, at[c]);
        const std::size_t end = std::min(pointBlock, points - point);
        for (std::size_t i = 0; i < end; ++i)
            for (std::size_t c = 0; c < side; ++c)
                sums[c] += double(voxels[at[c][i]]);
    }
    std::copy_n(sums, side, scores);
}

void ScorePoses(const float *voxels, std::size_t points, const PoseIndices *poses, std::size_t count,
                double *scores) {
    std::size_t first = 0;
    for (; first + 4 <= count; first += 4)
        ScorePosesBy<4>(voxels, points, poses + first, scores + first);
    for (; first < count; ++first)
        ScorePosesBy<1>(voxels, points, poses + first, scores + first);
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

void RotatePoints(const double *matrix, const double *const *p, std::size_t padded, float *const *out) {
    HWY_DYNAMIC_DISPATCH(RotatePoints)(matrix, p, padded, out);
}
void MapCoordinates(const float *coordinates, std::size_t padded, float translation, const GridAxis &axis,
                    std::int32_t *out) {
    HWY_DYNAMIC_DISPATCH(MapCoordinates)(coordinates, padded, translation, axis, out);
}
std::size_t LargestWindow() {
    return HWY_DYNAMIC_DISPATCH(LargestWindow)();
}
bool MapWindows(const float *coordinates, std::size_t points, std::size_t padded, const float *translations,
                std::size_t count, const GridAxis &axis, const Windows &windows) {
    return HWY_DYNAMIC_DISPATCH(MapWindows)(coordinates, points, padded, translations, count, axis, windows);
}
void SumRows(const RowSums &job) {
    HWY_DYNAMIC_DISPATCH(SumRows)(job);
}
void MarkSums(const std::uint16_t *sums, std::size_t lookUps, SumRange a, SumRange b, std::uint16_t *marks) {
    HWY_DYNAMIC_DISPATCH(MarkSums)(sums, lookUps, a, b, marks);
}
void MarkFineSums(const std::uint16_t *sums, const std::uint16_t *fineSums, std::int32_t fineSteps,
                  std::size_t lookUps, FineRange a, FineRange b, std::uint16_t *marks) {
    HWY_DYNAMIC_DISPATCH(MarkFineSums)(sums, fineSums, fineSteps, lookUps, a, b, marks);
}
bool Touches(const std::uint8_t *levels, std::size_t points, const PoseIndices &pose) {
    return HWY_DYNAMIC_DISPATCH(Touches)(levels, points, pose);
}
void ScorePoses(const float *voxels, std::size_t points, const PoseIndices *poses, std::size_t count,
                double *scores) {
    HWY_DYNAMIC_DISPATCH(ScorePoses)(voxels, points, poses, count, scores);
}

} // namespace fast
#endif
