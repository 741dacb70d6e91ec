#include "hosts/report/Contour.h"

#include <gmock/gmock.h>

#include <limits>

using namespace report;

namespace {

constexpr std::size_t width = 7;

/// A square picture, empty but for the pixels given.
std::vector<float> Picture(std::initializer_list<std::pair<std::size_t, std::size_t>> high) {
    std::vector<float> values(width * width);
    for (const auto &[x, y] : high)
        values[x + width * y] = 1;
    return values;
}

bool IsClosed(const Line &line) {
    return line.front().x == line.back().x && line.front().y == line.back().y;
}

} // namespace

TEST(Contours, OfOnePixelIsADiamondRoundIt) {
    const std::vector<Line> lines = Contours(Picture({{3, 3}}), width, 0.25f);
    ASSERT_EQ(lines.size(), 1u);
    ASSERT_EQ(lines[0].size(), 5u);
    EXPECT_TRUE(IsClosed(lines[0]));
    for (const PicturePoint &point : lines[0])
        EXPECT_DOUBLE_EQ(std::abs(point.x - 3) + std::abs(point.y - 3), 0.75);
}

TEST(Contours, HaveALineForEachIslandAndForEachHole) {
    std::vector<float> ring(width * width);
    for (std::size_t y = 1; y < 6; ++y)
        for (std::size_t x = 1; x < 6; ++x)
            ring[x + width * y] = x == 3 && y == 3 ? 0.f : 1.f;
    const std::vector<Line> lines = Contours(ring, width, 0.5f);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_TRUE(IsClosed(lines[0]) && IsClosed(lines[1]));
    EXPECT_EQ(Contours(Picture({{1, 1}, {5, 5}}), width, 0.5f).size(), 2u);
}

TEST(Contours, KeepPixelsApartThatOnlyTouchAtACorner) {
    EXPECT_EQ(Contours(Picture({{2, 2}, {3, 3}}), width, 0.5f).size(), 2u);
}

TEST(Contours, EndAtTheBorder) {
    const std::vector<Line> lines = Contours(Picture({{0, 3}}), width, 0.5f);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_FALSE(IsClosed(lines[0]));
    EXPECT_EQ(lines[0].front().x, 0);
    EXPECT_EQ(lines[0].back().x, 0);
}

TEST(Contours, OfNothingOrOfOneLevelAreNone) {
    EXPECT_TRUE(Contours({}, 0, 1).empty());
    EXPECT_TRUE(Contours(std::vector<float>(width * width, 2), width, 1).empty());
}

TEST(Contours, TakeWhatIsNotFiniteForLow) {
    std::vector<float> values = Picture({{3, 3}});
    values[2 + width * 3] = std::numeric_limits<float>::quiet_NaN();
    const std::vector<Line> lines = Contours(values, width, 0.5f);
    ASSERT_EQ(lines.size(), 1u);
    for (const PicturePoint &point : lines[0])
        EXPECT_TRUE(std::isfinite(point.x) && std::isfinite(point.y));
}
