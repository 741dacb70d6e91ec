#include "placement/Kernels.h"

#include "base/InstructionSets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "placement/Kernels.cpp"
#include <hwy/foreach_target.h>
// The order of these two is Highway's.
#include <hwy/highway.h>

#include <algorithm>

#ifndef MORVANEX_PLACEMENT_KERNELS_ONCE
#define MORVANEX_PLACEMENT_KERNELS_ONCE
namespace placement {

/// Points of one instruction at most: the floats of the widest vector.
constexpr std::size_t pointBlock = 16;
/// Levels that are added as bytes before they are widened.
constexpr std::size_t byteSums = 255 / highestLevel;

/// A volume, a model and its pose in the single precision of the kernel.
struct PoseJob {
    const float *values;
    std::int32_t count[3];
    float perSpacing[3], centre[3], rotation[9];
    const float *x, *y, *z, *weights;
    std::size_t padded;
};

} // namespace placement
#endif

HWY_BEFORE_NAMESPACE();
namespace placement::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::CappedTag<std::uint8_t, chunkPlaces>;
using Words = hn::Repartition<std::uint16_t, Bytes>;
using SignedWords = hn::RebindToSigned<Words>;

/// Sums `vectors` vectors of places that begin at `places`. Returns whether a sum exceeds the threshold; only
/// then are they written to `sums`, side by side.
template <std::size_t vectors>
HWY_INLINE void SumVectors(const std::uint8_t *const *places, const std::int32_t *offsets, std::size_t number,
                           hn::Vec<Words> *even, hn::Vec<Words> *odd) {
    const Bytes d8;
    const Words d16;
    const auto low = hn::Set(d16, 0x00ff);
    for (std::size_t v = 0; v < vectors; ++v)
        even[v] = odd[v] = hn::Zero(d16);
    for (std::size_t first = 0; first < number; first += byteSums) {
        const std::size_t end = std::min(number, first + byteSums);
        hn::Vec<Bytes> sum[vectors];
        for (std::size_t v = 0; v < vectors; ++v)
            sum[v] = hn::LoadU(d8, places[v] + offsets[first]);
        for (std::size_t i = first + 1; i < end; ++i)
            for (std::size_t v = 0; v < vectors; ++v)
                sum[v] = hn::Add(sum[v], hn::LoadU(d8, places[v] + offsets[i]));
        for (std::size_t v = 0; v < vectors; ++v) {
            const auto words = hn::BitCast(d16, sum[v]);
            even[v] = hn::Add(even[v], hn::And(words, low));
            odd[v] = hn::Add(odd[v], hn::ShiftRight<8>(words));
        }
    }
}

unsigned SumLevels(const std::uint8_t *const *chunks, std::span<const std::int32_t> offsets,
                   std::uint16_t threshold, std::uint16_t *sums) {
    const Bytes d8;
    const Words d16;
    const SignedWords signed16;
    constexpr std::size_t lanes = hn::MaxLanes(Bytes()), vectors = 8;
    constexpr std::size_t perChunk = chunkPlaces / lanes, all = blockChunks * perChunk;
    (void)d8;
    unsigned marks = 0;
    for (std::size_t first = 0; first < all; first += vectors) {
        const std::uint8_t *places[vectors];
        for (std::size_t v = 0; v < vectors; ++v)
            places[v] = chunks[(first + v) / perChunk] + (first + v) % perChunk * lanes;
        hn::Vec<Words> even[vectors], odd[vectors];
        SumVectors<vectors>(places, offsets.data(), offsets.size(), even, odd);
        // Sums stay far below 2^15, so that they compare as signed numbers, which every set can.
        const auto limit = hn::Set(signed16, std::int16_t(threshold));
        for (std::size_t v = 0; v < vectors; ++v) {
            const auto exceeds = hn::Or(hn::Gt(hn::BitCast(signed16, even[v]), limit),
                                        hn::Gt(hn::BitCast(signed16, odd[v]), limit));
            if (!hn::AllFalse(signed16, exceeds))
                marks |= 1u << (first + v) / perChunk;
        }
        for (std::size_t v = 0; v < vectors; ++v)
            if (marks >> (first + v) / perChunk & 1)
                hn::StoreInterleaved2(even[v], odd[v], d16, sums + lanes * (first + v));
    }
    return marks;
}

using Floats = hn::CappedTag<float, pointBlock>;
using Indices = hn::RebindToSigned<Floats>;
using FloatVector = hn::Vec<Floats>;

/// Where points stand along one axis: the voxel below, and the way to the next one from 0 to 1.
struct AxisPlace {
    hn::Vec<Indices> index;
    FloatVector part;
};

/// `inside` loses the lanes whose points lie outside; their index is one that may be read.
template <class M>
HWY_INLINE AxisPlace PlaceOnAxis(FloatVector coordinate, float perSpacing, std::int32_t count, M &inside) {
    const Floats d;
    const Indices di;
    const auto u = hn::Mul(coordinate, hn::Set(d, perSpacing));
    const auto last = hn::Set(d, float(count - 1));
    inside = hn::And(inside, hn::And(hn::Ge(u, hn::Zero(d)), hn::Lt(u, last)));
    const auto held = hn::Min(hn::Max(u, hn::Zero(d)), last);
    const auto index = hn::Min(hn::ConvertTo(di, held), hn::Set(di, count - 2));
    return {index, hn::Sub(held, hn::ConvertTo(d, index))};
}

HWY_INLINE FloatVector Between(FloatVector from, FloatVector to, FloatVector part) {
    return hn::MulAdd(part, hn::Sub(to, from), from);
}

void ScorePoseInto(const PoseJob &job, float *result) {
    const Floats d;
    const Indices di;
    const float *r = job.rotation;
    const std::int32_t strideY = job.count[0], strideZ = job.count[0] * job.count[1];
    FloatVector score = hn::Zero(d), shiftX = score, shiftY = score, shiftZ = score, turnX = score,
                turnY = score, turnZ = score;
    for (std::size_t i = 0; i < job.padded; i += hn::Lanes(d)) {
        const auto px = hn::LoadU(d, job.x + i), py = hn::LoadU(d, job.y + i), pz = hn::LoadU(d, job.z + i);
        const auto rotated = [&](std::size_t row) {
            const auto z = hn::Mul(hn::Set(d, r[row + 2]), pz);
            return hn::MulAdd(hn::Set(d, r[row]), px, hn::MulAdd(hn::Set(d, r[row + 1]), py, z));
        };
        const auto x = rotated(0), y = rotated(3), z = rotated(6);
        auto inside = hn::Eq(x, x);
        const AxisPlace u =
            PlaceOnAxis(hn::Add(x, hn::Set(d, job.centre[0])), job.perSpacing[0], job.count[0], inside);
        const AxisPlace v =
            PlaceOnAxis(hn::Add(y, hn::Set(d, job.centre[1])), job.perSpacing[1], job.count[1], inside);
        const AxisPlace w =
            PlaceOnAxis(hn::Add(z, hn::Set(d, job.centre[2])), job.perSpacing[2], job.count[2], inside);
        const auto index = hn::Add(
            u.index, hn::Add(hn::Mul(v.index, hn::Set(di, strideY)), hn::Mul(w.index, hn::Set(di, strideZ))));
        const auto at = [&](std::int32_t offset) { return hn::GatherIndex(d, job.values + offset, index); };
        const auto v000 = at(0), v100 = at(1), v010 = at(strideY), v110 = at(strideY + 1);
        const auto v001 = at(strideZ), v101 = at(strideZ + 1), v011 = at(strideZ + strideY),
                   v111 = at(strideZ + strideY + 1);
        const auto v00 = Between(v000, v100, u.part), v10 = Between(v010, v110, u.part);
        const auto v01 = Between(v001, v101, u.part), v11 = Between(v011, v111, u.part);
        const auto v0 = Between(v00, v10, v.part), v1 = Between(v01, v11, v.part);
        const auto weight = hn::IfThenElseZero(inside, hn::LoadU(d, job.weights + i));
        score = hn::MulAdd(weight, Between(v0, v1, w.part), score);
        const auto slopeX = Between(Between(hn::Sub(v100, v000), hn::Sub(v110, v010), v.part),
                                    Between(hn::Sub(v101, v001), hn::Sub(v111, v011), v.part), w.part);
        const auto slopeY = Between(hn::Sub(v10, v00), hn::Sub(v11, v01), w.part);
        const auto gx = hn::Mul(hn::Mul(weight, hn::Set(d, job.perSpacing[0])), slopeX);
        const auto gy = hn::Mul(hn::Mul(weight, hn::Set(d, job.perSpacing[1])), slopeY);
        const auto gz = hn::Mul(hn::Mul(weight, hn::Set(d, job.perSpacing[2])), hn::Sub(v1, v0));
        shiftX = hn::Add(shiftX, gx);
        shiftY = hn::Add(shiftY, gy);
        shiftZ = hn::Add(shiftZ, gz);
        turnX = hn::Add(turnX, hn::MulSub(y, gz, hn::Mul(z, gy)));
        turnY = hn::Add(turnY, hn::MulSub(z, gx, hn::Mul(x, gz)));
        turnZ = hn::Add(turnZ, hn::MulSub(x, gy, hn::Mul(y, gx)));
    }
    const FloatVector sums[7] = {score, shiftX, shiftY, shiftZ, turnX, turnY, turnZ};
    for (std::size_t i = 0; i < 7; ++i)
        result[i] = hn::GetLane(hn::SumOfLanes(d, sums[i]));
}

} // namespace placement::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace placement {

HWY_EXPORT(SumLevels);
HWY_EXPORT(ScorePoseInto);

unsigned SumLevels(const std::uint8_t *const *chunks, std::span<const std::int32_t> offsets,
                   std::uint16_t threshold, std::uint16_t *sums) {
    return HWY_DYNAMIC_DISPATCH(SumLevels)(chunks, offsets, threshold, sums);
}

WeightedPoints::WeightedPoints(std::span<const Point> points, std::span<const double> weights) {
    const std::size_t padded = (points.size() + pointBlock - 1) / pointBlock * pointBlock;
    for (std::vector<float> *v : {&m_x, &m_y, &m_z, &m_weights})
        v->resize(padded);
    for (std::size_t i = 0; i < points.size(); ++i) {
        m_x[i] = float(points[i].x);
        m_y[i] = float(points[i].y);
        m_z[i] = float(points[i].z);
        m_weights[i] = float(weights[i]);
    }
}

ScoreGradient ScorePose(const Volume &volume, const WeightedPoints &points, const Pose &pose) {
    const Point centre = pose.centre - volume.origin;
    PoseJob job{.values = volume.values.data(),
                .count = {},
                .perSpacing = {},
                .centre = {float(centre.x), float(centre.y), float(centre.z)},
                .rotation = {},
                .x = points.X(),
                .y = points.Y(),
                .z = points.Z(),
                .weights = points.Weights(),
                .padded = points.Padded()};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        job.count[axis] = std::int32_t(volume.count[axis]);
        job.perSpacing[axis] = float(1 / volume.spacing[axis]);
    }
    std::ranges::transform(pose.rotation, job.rotation, [](double entry) { return float(entry); });
    float result[7];
    HWY_DYNAMIC_DISPATCH(ScorePoseInto)(job, result);
    const auto at = [&](std::size_t i) { return double(result[i]); };
    return {at(0), {at(1), at(2), at(3)}, {at(4), at(5), at(6)}};
}

} // namespace placement
#endif
