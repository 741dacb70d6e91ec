#include "placement/Kernels.h"

#include "OnlyTarget.h"
#include "SyntheticModel.h"

#include <algorithm>
#include <numbers>

using namespace placement;

namespace {

class PlacementKernelsOn : public testing::TestWithParam<std::int64_t> {};

/// A scan of one block: levels, chunks that begin anywhere in them, and offsets to both sides.
struct Scan {
    std::vector<std::uint8_t> levels;
    const std::uint8_t *chunks[blockChunks];
    std::vector<std::int32_t> offsets;

    Scan(std::size_t points, unsigned seed)
        : levels(20000) {
        std::mt19937 random(seed);
        for (std::uint8_t &level : levels)
            level = std::uint8_t(random() % (highestLevel + 1));
        for (const std::uint8_t *&chunk : chunks)
            chunk = levels.data() + 5000 + random() % 9000;
        for (std::size_t i = 0; i < points; ++i)
            offsets.push_back(std::int32_t(random() % 9000) - 4500);
    }

    std::uint16_t PlainSum(std::size_t chunk, std::size_t place) const {
        unsigned sum = 0;
        for (const std::int32_t offset : offsets)
            sum += chunks[chunk][std::ptrdiff_t(place) + offset];
        return std::uint16_t(sum);
    }
};

/// The score by its definition, in double.
double PlainScore(const Volume &volume, const PointModel &model, const Pose &pose) {
    double sum = 0;
    for (std::size_t n = 0; n < model.points.size(); ++n) {
        const Point p = pose.rotation * model.points[n] + pose.centre - volume.origin;
        const double r[3] = {p.x / volume.spacing[0], p.y / volume.spacing[1], p.z / volume.spacing[2]};
        bool inside = true;
        for (std::size_t axis = 0; axis < 3; ++axis)
            inside = inside && r[axis] >= 0 && r[axis] < double(volume.count[axis] - 1);
        if (!inside)
            continue;
        const auto i = std::size_t(r[0]), j = std::size_t(r[1]), k = std::size_t(r[2]);
        for (std::size_t corner = 0; corner < 8; ++corner) {
            const std::size_t a = corner & 1, b = corner >> 1 & 1, c = corner >> 2;
            const auto part = [](double x, std::size_t upper) {
                const double f = x - std::floor(x);
                return upper ? f : 1 - f;
            };
            sum += model.weights[n] * part(r[0], a) * part(r[1], b) * part(r[2], c) *
                   double(volume.values[volume.Index(i + a, j + b, k + c)]);
        }
    }
    return sum;
}

} // namespace

TEST_P(PlacementKernelsOn, SumTheLevelsAsAPlainLoopDoes) {
    const OnlyTarget target(GetParam());
    // About the 17 points that are summed in bytes, and the most that a scan has.
    for (const std::size_t points : {1, 16, 17, 18, 33, 80, 2184}) {
        const Scan scan(points, unsigned(points));
        std::vector<std::uint16_t> sums(chunkPlaces * blockChunks, 12345);
        const unsigned marks = SumLevels(scan.chunks, scan.offsets, 0, sums.data());
        for (std::size_t c = 0; c < blockChunks; ++c)
            for (std::size_t p = 0; p < chunkPlaces; ++p) {
                ASSERT_TRUE(marks >> c & 1);
                ASSERT_EQ(sums[chunkPlaces * c + p], scan.PlainSum(c, p)) << points << " points";
            }
    }
}

TEST_P(PlacementKernelsOn, MarkTheChunksThatExceedTheThreshold) {
    const OnlyTarget target(GetParam());
    const Scan scan(40, 3);
    std::vector<std::uint16_t> best;
    for (std::size_t c = 0; c < blockChunks; ++c) {
        best.push_back(0);
        for (std::size_t p = 0; p < chunkPlaces; ++p)
            best.back() = std::max(best.back(), scan.PlainSum(c, p));
    }
    const std::uint16_t threshold = best[3];
    std::vector<std::uint16_t> sums(chunkPlaces * blockChunks);
    const unsigned marks = SumLevels(scan.chunks, scan.offsets, threshold, sums.data());
    for (std::size_t c = 0; c < blockChunks; ++c)
        EXPECT_EQ(marks >> c & 1, best[c] > threshold ? 1u : 0u) << c;
}

TEST_P(PlacementKernelsOn, ScoreAsAPlainLoopDoesAlsoBeyondTheEdge) {
    const OnlyTarget target(GetParam());
    const PointModel model = MakePointModel(RandomModel(33, 1));
    const Volume map = DensityOf(RandomModel(33, 1), 8, {2, 1.5, 2.5}, 4);
    std::mt19937 random(9);
    std::uniform_real_distribution<double> shift(-20, 20);
    for (int i = 0; i < 20; ++i) {
        const Pose pose{RandomRotation(random),
                        model.centre + Point{shift(random), shift(random), shift(random)}};
        const double plain = PlainScore(map, model, pose);
        const double found = ScorePose(map, WeightedPoints(model.points, model.weights), pose).score;
        EXPECT_NEAR(found, plain, 1e-4 * std::abs(plain) + 1e-2);
    }
}

TEST_P(PlacementKernelsOn, TheGradientIsThatOfFiniteDifferences) {
    const OnlyTarget target(GetParam());
    // A volume that is linear in each coordinate between its voxels and beyond: differences are exact.
    Volume map{{40, 40, 40}, {2, 1.5, 2.5}, {-40, -30, -50}, {}};
    for (std::size_t k = 0; k < 40; ++k)
        for (std::size_t j = 0; j < 40; ++j)
            for (std::size_t i = 0; i < 40; ++i) {
                const Point p = map.At(i, j, k);
                map.values.push_back(float(0.3 * p.x - 0.2 * p.y + 0.1 * p.z + 0.01 * p.x * p.y));
            }
    const PointModel model = MakePointModel(RandomModel(20, 2));
    std::mt19937 random(4);
    for (int i = 0; i < 5; ++i) {
        const Pose pose{RandomRotation(random), {1.3, -2.1, 0.7}};
        const ScoreGradient g = ScorePose(map, WeightedPoints(model.points, model.weights), pose);
        constexpr double d = 1e-4;
        const auto difference = [&](const Pose &plus, const Pose &minus) {
            return (PlainScore(map, model, plus) - PlainScore(map, model, minus)) / (2 * d);
        };
        const auto shifted = [&](const Point &by) { return Pose{pose.rotation, pose.centre + by}; };
        const auto turned = [&](const Point &by) {
            return Pose{RotationBy(by) * pose.rotation, pose.centre};
        };
        const double shifts[3] = {g.byShift.x, g.byShift.y, g.byShift.z};
        const double turns[3] = {g.byRotation.x, g.byRotation.y, g.byRotation.z};
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const Point by{axis == 0 ? d : 0, axis == 1 ? d : 0, axis == 2 ? d : 0};
            const double byShift = difference(shifted(by), shifted(-1 * by));
            const double byTurn = difference(turned(by), turned(-1 * by));
            EXPECT_NEAR(shifts[axis], byShift, 1e-3 * std::abs(byShift) + 0.05);
            EXPECT_NEAR(turns[axis], byTurn, 1e-3 * std::abs(byTurn) + 0.5);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Targets, PlacementKernelsOn, testing::ValuesIn(Targets()), NameOf);
