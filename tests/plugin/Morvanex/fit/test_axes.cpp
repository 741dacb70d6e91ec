#include "PlainFit.h"
#include "fit/Axes.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

using namespace VARNO;

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr float a = float(0.5257311121191336);
constexpr float b = float(0.8506508083520399);

Vertex V(float x, float y, float z) {
    return Vertex(x, y, z, false);
}

std::vector<Point> Points(const std::vector<Vertex> &axes) {
    std::vector<Point> points;
    for (const Vertex &v : axes)
        points.push_back({v[0], v[1], v[2]});
    return points;
}

} // namespace

TEST(Axes, DepthZeroGivesTheUpperVerticesOfAnIcosahedron) {
    EXPECT_THAT(fit::RotationAxes(0),
                ElementsAre(V(a, 0, b), V(a, 0, -b), V(0, b, a), V(0, b, -a), V(b, a, 0), V(b, -a, 0)));
}

TEST(Axes, DepthOneBeginsWithTheFirstFaces) {
    const std::vector<Vertex> axes = fit::RotationAxes(1);
    ASSERT_EQ(axes.size(), 21u);
    EXPECT_NEAR(axes[6][0], 0.309, 0.0005);
    EXPECT_NEAR(axes[6][1], 0.5, 0.0005);
    EXPECT_NEAR(axes[6][2], 0.809, 0.0005);
    EXPECT_EQ(axes[7], V(0, 0, 1));
    EXPECT_EQ(axes[8], V(0, 1, 0));
}

TEST(Axes, AreThoseOfAPlainSearchInTheSameOrder) {
    std::size_t count = 6;
    for (int depth = 0; depth <= 5; ++depth) {
        const std::vector<Point> axes = Points(fit::RotationAxes(depth));
        EXPECT_EQ(axes.size(), count) << "depth " << depth;
        EXPECT_EQ(axes, PlainAxes(depth)) << "depth " << depth;
        count = 4 * count - 3;
    }
}

TEST(Axes, AreUnitVectorsOfOneHalfOfTheSphere) {
    for (const Vertex &axis : fit::RotationAxes(4)) {
        EXPECT_NEAR(axis.SquaredLength(), 1, 1e-6);
        EXPECT_FALSE(axis.IsValid());
        const float first = axis[0] != 0 ? axis[0] : axis[1] != 0 ? axis[1] : axis[2];
        EXPECT_GT(first, 0);
    }
}

TEST(Axes, TheLowerPoleIsNeverAmongThem) {
    for (int depth = 1; depth < 5; ++depth) {
        const std::vector<Vertex> axes = fit::RotationAxes(depth);
        EXPECT_EQ(std::ranges::count(axes, V(0, 0, 1)), 1);
        EXPECT_EQ(std::ranges::count(axes, V(0, 0, -1)), 0);
    }
}

TEST(Axes, ADepthBelowZeroSubdividesNothing) {
    EXPECT_EQ(fit::RotationAxes(-1).size(), 6u);
}

TEST(Subdivide, DepthZeroAddsNothing) {
    std::vector<Vertex> axes;
    Subdivide(V(1, 0, 0), V(0, 1, 0), V(0, 0, 1), 0, axes);
    EXPECT_THAT(axes, IsEmpty());
}

TEST(Subdivide, AddsTheMidpointsInOrderButNotTheCorners) {
    std::vector<Vertex> axes;
    Subdivide(V(1, 0, 0), V(0, 1, 0), V(0, 0, 1), 1, axes);
    const float half = float(1 / std::numbers::sqrt2);
    EXPECT_THAT(axes, ElementsAre(V(half, half, 0), V(0, half, half), V(half, 0, half)));
}

TEST(Subdivide, AddsNothingThatIsThereAlready) {
    std::vector<Vertex> axes = {V(9, 9, 9)};
    Subdivide(V(1, 0, 0), V(0, 1, 0), V(0, 0, 1), 3, axes);
    const std::vector<Vertex> once = axes;
    Subdivide(V(0, 1, 0), V(1, 0, 0), V(0, 0, 1), 3, axes); // the same triangle from another corner
    EXPECT_EQ(axes, once);
    EXPECT_EQ(axes.front(), V(9, 9, 9));
}

TEST(Subdivide, AMidpointReachedFromTwoFacesIsAddedOnce) {
    std::vector<Vertex> axes;
    Subdivide(V(1, 0, 0), V(0, 1, 0), V(0, 0, 1), 1, axes);
    Subdivide(V(0, 1, 0), V(1, 0, 0), V(0, 0, -1), 1, axes);
    EXPECT_EQ(axes.size(), 5u);
}

TEST(Subdivide, DropsMidpointsOfTheLowerHalf) {
    std::vector<Vertex> axes;
    Subdivide(V(-1, 0, 0), V(0, -1, 0), V(0, 0, -1), 2, axes);
    EXPECT_THAT(axes, IsEmpty());
}

TEST(Subdivide, CoordinatesWithinTheToleranceCountAsZero) {
    const auto isUpper = [](float x, float y, float z) {
        std::vector<Vertex> axes;
        Subdivide(V(x, y, z), V(x, y, z), V(x, y, z), 1, axes);
        return !axes.empty();
    };
    constexpr float epsilon = std::numeric_limits<float>::epsilon(), less = 1e-7f, more = 2e-7f;
    EXPECT_TRUE(isUpper(-less, 1, 0));
    EXPECT_TRUE(isUpper(-epsilon, 1, 0));
    EXPECT_FALSE(isUpper(-more, 1, 0));
    EXPECT_FALSE(isUpper(less, -1, 0));
    EXPECT_TRUE(isUpper(epsilon, -1, 0));
    EXPECT_TRUE(isUpper(0, -less, 1));
    EXPECT_FALSE(isUpper(0, less, -1));
    EXPECT_TRUE(isUpper(0, epsilon, -1));
    EXPECT_FALSE(isUpper(0, -more, 1));
    EXPECT_FALSE(isUpper(0, 0, -1));
    EXPECT_TRUE(isUpper(0, 0, 1));
}

TEST(Subdivide, AMidpointOfLengthZeroStaysAsItIs) {
    std::vector<Vertex> axes;
    Subdivide(V(1, 0, 0), V(-1, 0, 0), V(1, 0, 0), 1, axes);
    EXPECT_THAT(axes, ElementsAre(V(0, 0, 0), V(1, 0, 0)));
}
