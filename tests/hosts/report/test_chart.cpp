#include "hosts/report/Chart.h"

#include <gmock/gmock.h>

#include <limits>

using namespace report;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

std::size_t CountOf(const std::string &part, const std::string &text) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

constexpr double infinite = std::numeric_limits<double>::infinity();

} // namespace

TEST(Histogram, MarksWhatIsFound) {
    const std::string svg =
        HistogramSvg({.scores = {9, 8, 3, 2, 1}, .found = 2, .mean = {}, .deviation = {}});
    EXPECT_EQ(CountOf("class=\"mark\"", svg), 2u);
    EXPECT_EQ(CountOf("<rect class=\"found\"", svg), 2u);
    EXPECT_EQ(CountOf("<rect class=\"bar\"", svg), 3u);
    EXPECT_THAT(svg, HasSubstr("Histogram of 5 scores from 1 to 9, 2 of them marked"));
    EXPECT_THAT(svg, Not(HasSubstr("class=\"all\"")));
}

TEST(Histogram, ShowsAllPosesAsACurve) {
    EXPECT_THAT(HistogramSvg({.scores = {9, 8}, .found = 1, .mean = 2, .deviation = 1.5}),
                HasSubstr("class=\"all\""));
    EXPECT_THAT(HistogramSvg({.scores = {9, 8}, .found = 1, .mean = 2, .deviation = 0}),
                Not(HasSubstr("class=\"all\"")));
}

TEST(Histogram, LeavesOutWhatIsNotFinite) {
    EXPECT_EQ(HistogramSvg({}), "");
    EXPECT_EQ(HistogramSvg({.scores = {3, infinite}, .found = 1, .mean = {}, .deviation = {}}), "");
    EXPECT_EQ(HistogramSvg({.scores = {infinite, -infinite}, .found = 2, .mean = {}, .deviation = {}}), "");
    const std::string svg =
        HistogramSvg({.scores = {infinite, 5, 5}, .found = 9, .mean = infinite, .deviation = infinite});
    EXPECT_THAT(svg, HasSubstr("Histogram of 2 scores from 5 to 5"));
    EXPECT_THAT(svg, Not(HasSubstr("nan")));
    EXPECT_THAT(svg, Not(HasSubstr("inf")));
}

TEST(Ranking, ShowsEveryModelWithinThePicture) {
    const std::string svg = RankingSvg({{1e-300, true}, {1e-3, false}, {infinite, false}, {0, true}});
    EXPECT_EQ(CountOf("<circle class=\"found\"", svg), 2u);
    EXPECT_EQ(CountOf("<circle class=\"bar\"", svg), 2u);
    EXPECT_THAT(svg, HasSubstr("of 4 models by rank, 2 of them found"));
    EXPECT_THAT(svg, Not(HasSubstr("inf")));
    EXPECT_EQ(RankingSvg({}), "");
}
