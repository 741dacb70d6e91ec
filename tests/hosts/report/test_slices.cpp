#include "hosts/report/Slices.h"

#include <gmock/gmock.h>

using namespace report;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

/// A map with a ball of density about its middle, (20, 20, 20).
placement::Volume Ball() {
    placement::Volume map{{41, 41, 41}, {1, 1, 1}, {0, 0, 0}, {}};
    for (std::size_t k = 0; k < 41; ++k)
        for (std::size_t j = 0; j < 41; ++j)
            for (std::size_t i = 0; i < 41; ++i)
                map.values.push_back(Length(map.At(i, j, k) - placement::Point{20, 20, 20}) < 8 ? 1.f : 0.f);
    return map;
}

std::size_t CountOf(const std::string &part, const std::string &text) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

} // namespace

TEST(Slices, AreThreeWithTheirPlaces) {
    const std::string html = SlicesSvg(Ball(), 0.5, {}, {20, 19, 18}, 15);
    EXPECT_EQ(CountOf("data:image/png;base64,", html), 3u);
    EXPECT_THAT(html, HasSubstr("xy plane, z = 18.0 Å"));
    EXPECT_THAT(html, HasSubstr("xz plane, y = 19.0 Å"));
    EXPECT_THAT(html, HasSubstr("yz plane, x = 20.0 Å"));
    // Each cuts the ball in one circle.
    EXPECT_EQ(CountOf("class=\"contour\" d=\"M", html), 3u);
}

TEST(Slices, ShowResiduesNearThePlaneAlone) {
    const Trace across{{18, 20, 20}, {21, 20, 20}}, above{{18, 20, 27}, {21, 20, 27}};
    // Within 5 Å of xy, and in both of the others' planes.
    EXPECT_EQ(CountOf("class=\"trace\" d=\"M", SlicesSvg(Ball(), 0.5, {{across}, {}}, {20, 20, 20}, 15)), 3u);
    EXPECT_EQ(CountOf("class=\"trace\" d=\"M", SlicesSvg(Ball(), 0.5, {{above}, {}}, {20, 20, 20}, 15)), 2u);
}

TEST(Slices, PutAResidueWhereItStands) {
    // A picture is 300 wide for 30 Å: 2 Å right of the middle and 3 Å above it.
    const std::string html = SlicesSvg(Ball(), 0.5, {{{{22, 23, 20}, {22, 24, 20}}}, {}}, {20, 20, 20}, 15);
    EXPECT_THAT(html, HasSubstr("class=\"trace\" d=\"M170 120L170 110\""));
}

TEST(Slices, LeaveAGapWhereResiduesAreMissing) {
    const Trace broken{{10, 20, 20}, {13, 20, 20}, {25, 20, 20}, {28, 20, 20}};
    EXPECT_THAT(SlicesSvg(Ball(), 0.5, {{broken}, {}}, {20, 20, 20}, 15),
                HasSubstr("class=\"trace\" d=\"M50 150L80 150M200 150L230 150\""));
}

TEST(Slices, ReachBeyondTheMap) {
    const std::string html = SlicesSvg(Ball(), 0.5, {}, {-30, 500, 20}, 60);
    EXPECT_EQ(CountOf("data:image/png;base64,", html), 3u);
    EXPECT_THAT(html, Not(HasSubstr("nan")));
}

TEST(Slices, StaySmallForALargeModel) {
    EXPECT_LT(SlicesSvg(Ball(), 0.5, {}, {20, 20, 20}, 1000).size(), 200'000u);
}
