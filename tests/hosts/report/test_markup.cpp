#include "hosts/report/Markup.h"

#include <gtest/gtest.h>

#include <limits>

using namespace report;

TEST(Markup, EscapesWhatABrowserWouldTakeForIt) {
    EXPECT_EQ(Escaped("<img src=x onerror=\"alert('1')\">&.pdb"),
              "&lt;img src=x onerror=&quot;alert(&#39;1&#39;)&quot;&gt;&amp;.pdb");
}

TEST(Markup, ShowsBytesThatAreNoTextAsReplacements) {
    EXPECT_EQ(Escaped("a\xff.pdb"), "a\uFFFD.pdb");
    EXPECT_EQ(Escaped("a\x1b[31m.pdb"), "a\uFFFD[31m.pdb");
    EXPECT_EQ(Escaped("Å"), "Å");
}

TEST(Markup, LetsNoJsonEndItsElement) {
    EXPECT_EQ(InScript(R"({"name":"</script><!--"})"), R"({"name":"\u003c/script>\u003c!--"})");
}

TEST(Markup, ShowsNumbersThatAreNotFiniteAsADash) {
    EXPECT_EQ(Figure(1.25, 1), "1.2");
    EXPECT_EQ(Figure(std::numeric_limits<double>::infinity(), 1), "–");
    EXPECT_EQ(Figure(std::numeric_limits<double>::quiet_NaN(), 1), "–");
}

TEST(Markup, KeepsCoordinatesShort) {
    EXPECT_EQ(Coordinate(12), "12");
    EXPECT_EQ(Coordinate(12.349), "12.3");
}
