#include "placement/CoarseSearch.h"

#include "SyntheticModel.h"

#include "placement/Constants.h"
#include "placement/Rotations.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace placement;

namespace {

/// A scan of a small model through a level of waves.
struct SmallScan {
    Volume level{{30, 28, 26}, {4, 4.5, 5}, {10, -20, 30}, {}};
    std::vector<Point> points;
    std::vector<Matrix> rotations = SpreadRotations(40);
    std::vector<bool> places;

    SmallScan() {
        for (std::size_t k = 0; k < 26; ++k)
            for (std::size_t j = 0; j < 28; ++j)
                for (std::size_t i = 0; i < 30; ++i)
                    level.values.push_back(float(std::sin(0.7 * double(i)) + std::cos(0.4 * double(j * k)) +
                                                 std::sin(double(i * j + k))));
        places.assign(level.values.size(), true);
        const PointModel model = MakePointModel(RandomModel(30, 1));
        points = model.scanPoints;
    }

    CoarseJob Job() const { return {level, places, level.count, points, rotations}; }
    std::vector<Pose> Run(unsigned threads) const {
        Monitor silent;
        return CoarseSearch(Job(), threads, silent);
    }
};

bool AreEqual(const std::vector<Pose> &a, const std::vector<Pose> &b) {
    return std::ranges::equal(a, b, [](const Pose &p, const Pose &q) {
        return p.rotation == q.rotation && p.centre.x == q.centre.x && p.centre.y == q.centre.y &&
               p.centre.z == q.centre.z;
    });
}

/// The scan's sum by its definition.
long SumAt(const SmallScan &scan, const Pose &pose, double deviation) {
    long sum = 0;
    for (const Point &point : scan.points) {
        const Point offset = pose.rotation * point, centre = pose.centre - scan.level.origin;
        const std::array<double, 3> from{centre.x, centre.y, centre.z}, by{offset.x, offset.y, offset.z};
        std::array<long, 3> at;
        bool inside = true;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            at[axis] = std::lrint(from[axis] / scan.level.spacing[axis]) +
                       std::lrint(by[axis] / scan.level.spacing[axis]);
            inside = inside && at[axis] >= 0 && at[axis] < long(scan.level.count[axis]);
        }
        const double value = inside ? double(scan.level.values[scan.level.Index(
                                          std::size_t(at[0]), std::size_t(at[1]), std::size_t(at[2]))])
                                    : 0;
        const double part = std::clamp(value / (scanClip * deviation), -1.0, 1.0);
        sum += std::lround((part + 1) / 2 * scanLevels);
    }
    return sum;
}

double DeviationOf(const Volume &level) {
    double squares = 0;
    for (const float value : level.values)
        squares += double(value) * double(value) / double(level.values.size());
    return std::sqrt(squares);
}

} // namespace

TEST(CoarseSearch, FindsTheBestSumOfAllRotationsAndPlaces) {
    const SmallScan scan;
    const double deviation = DeviationOf(scan.level);
    const std::vector<Pose> found = scan.Run(1);
    ASSERT_FALSE(found.empty());
    long best = 0;
    for (const Matrix &rotation : scan.rotations)
        for (std::size_t voxel = 0; voxel < scan.level.values.size(); ++voxel) {
            const Point place = scan.level.At(voxel % 30, voxel / 30 % 28, voxel / 840);
            best = std::max(best, SumAt(scan, {rotation, place}, deviation));
        }
    EXPECT_EQ(SumAt(scan, found.front(), deviation), best);
    for (std::size_t i = 1; i < std::min<std::size_t>(found.size(), 500); ++i)
        ASSERT_GE(SumAt(scan, found[i - 1], deviation), SumAt(scan, found[i], deviation)) << i;
}

TEST(CoarseSearch, ThreadsGiveTheSamePosesInTheSameOrder) {
    const SmallScan scan;
    const std::vector<Pose> one = scan.Run(1);
    EXPECT_TRUE(AreEqual(one, scan.Run(2)));
    EXPECT_TRUE(AreEqual(one, scan.Run(7)));
}

TEST(CoarseSearch, KeepsNoMoreThanItShould) {
    SmallScan scan;
    // So many rotations that the list is trimmed while the scan goes on, at one thread and at several.
    scan.rotations = SpreadRotations(1500);
    const std::vector<Pose> one = scan.Run(1);
    EXPECT_EQ(one.size(), keptCandidates);
    EXPECT_TRUE(AreEqual(one, scan.Run(3)));
}

TEST(CoarseSearch, StaysAtTheAllowedPlaces) {
    SmallScan scan;
    scan.places.assign(scan.places.size(), false);
    const std::size_t only = scan.level.Index(12, 13, 14);
    scan.places[only] = true;
    for (const Pose &pose : scan.Run(1))
        EXPECT_LT(Length(pose.centre - scan.level.At(12, 13, 14)), 1e-9);
    scan.places[only] = false;
    EXPECT_TRUE(scan.Run(1).empty());
}

TEST(CoarseSearch, ACancelledOneReturnsWhatItCameTo) {
    struct Impatient : Monitor {
        void Advance(double) override { ++steps; }
        bool IsCancelled() override { return steps >= 3; }
        int steps = 0;
    } impatient;
    const SmallScan scan;
    const std::vector<Pose> found = CoarseSearch(scan.Job(), 1, impatient);
    EXPECT_FALSE(found.empty());
    EXPECT_EQ(impatient.steps, 3);
}

TEST(CoarseSearch, OfALargeVolumeASampleOfRowsTellsTheThreshold) {
    constexpr std::size_t edge = 180;
    Volume volume{{edge, edge, edge}, {1, 1, 1}, {}, {}};
    for (std::size_t i = 0; i < edge * edge * edge; ++i)
        volume.values.push_back(float(i * 2654435761u % 1000));
    EXPECT_LT(ValuesInBox(volume, volume.count).size(), volume.values.size() * 6 / 10);
    // The lowest tenth of 0 to 999 ends at 100, and 15 % of the way from there to the top is 235.
    EXPECT_NEAR(DensityThreshold(volume, volume.count), 235, 3);
}

TEST(CoarseSearch, DensePlacesLieAboveTheThreshold) {
    Volume smoothed{{10, 1, 1}, {1, 1, 1}, {}, {0, 0, 1, 2, 10, 9, 1.4f, 1.6f, 0, 100}};
    // The last voxel is padding.
    const std::vector<bool> places = DensePlaces(smoothed, {9, 1, 1}, {});
    EXPECT_EQ(places, (std::vector<bool>{0, 0, 0, 1, 1, 1, 0, 1, 0, 0}));
    // The voxel at 4 reaches into it.
    const Sphere region{{0, 0, 0}, 3.6};
    EXPECT_EQ(DensePlaces(smoothed, {9, 1, 1}, region), (std::vector<bool>{0, 0, 0, 1, 1, 0, 0, 0, 0, 0}));
}
