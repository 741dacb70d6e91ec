#include "solutions/TopList.h"

#include "Messages.h"

#include <gmock/gmock.h>

#include <limits>

using namespace VARNO;

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr auto tooShort = "Solutions list is shorter than requested size, not weeding.";

/// Records with these scores; the translation's x tells their place in the list.
std::list<SolutionScore> List(const std::vector<double> &scores) {
    std::list<SolutionScore> list;
    for (const double score : scores) {
        SolutionScore solution;
        solution.score = score;
        solution.translation = Vertex(float(list.size()), 0, 0, false);
        list.push_back(solution);
    }
    return list;
}

std::vector<double> Scores(const std::list<SolutionScore> &list) {
    std::vector<double> scores;
    for (const SolutionScore &solution : list)
        scores.push_back(solution.score);
    return scores;
}

std::vector<int> Places(const std::list<SolutionScore> &list) {
    std::vector<int> places;
    for (const SolutionScore &solution : list)
        places.push_back(int(solution.translation[0]));
    return places;
}

} // namespace

TEST(Weed, AShorterListStaysAsItIs) {
    Messages messages;
    std::list<SolutionScore> list = List({3, 1, 5, 2, 4});
    weed(list, 10);
    EXPECT_THAT(Scores(list), ElementsAre(3, 1, 5, 2, 4));
    EXPECT_THAT(messages.Debug(), ElementsAre(tooShort));
}

TEST(Weed, AListOfTheSizeIsSorted) {
    Messages messages;
    std::list<SolutionScore> list = List({3, 1, 9, 5, 2, 4, 8, 7, 0, 6});
    weed(list, 10);
    EXPECT_THAT(Scores(list), ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9));
    EXPECT_THAT(messages.Debug(), IsEmpty());
}

TEST(Weed, KeepsTheHighestInAscendingOrder) {
    std::list<SolutionScore> list = List({3, 1, 2, 1});
    weed(list, 2);
    EXPECT_THAT(Scores(list), ElementsAre(2, 3));
}

TEST(Weed, OfEqualScoresTheLaterSurvive) {
    std::list<SolutionScore> list = List({1, 5, 1});
    weed(list, 2);
    EXPECT_THAT(Scores(list), ElementsAre(1, 5));
    EXPECT_THAT(Places(list), ElementsAre(2, 1));
}

TEST(Weed, EqualScoresKeepTheirOrder) {
    std::list<SolutionScore> list = List({2, 1, 2, 1, 2, 1});
    weed(list, 5);
    EXPECT_THAT(Places(list), ElementsAre(3, 5, 0, 2, 4));
}

TEST(Weed, SizeZeroErasesEverything) {
    Messages messages;
    std::list<SolutionScore> list = List({3, 1, 2});
    weed(list, 0);
    EXPECT_THAT(list, IsEmpty());
    weed(list, 0);
    EXPECT_THAT(list, IsEmpty());
    EXPECT_THAT(messages.Debug(), IsEmpty());
}

TEST(Weed, ANegativeSizeCountsAsZero) {
    Messages messages;
    for (const int size : {-1, -5, std::numeric_limits<int>::min()}) {
        std::list<SolutionScore> list = List({3, 1, 2});
        weed(list, size);
        EXPECT_THAT(list, IsEmpty());
        weed(list, size);
        EXPECT_THAT(list, IsEmpty());
    }
    EXPECT_THAT(messages.Debug(), IsEmpty());
}

TEST(Weed, ScoresThatAreNoNumbersDoNoHarm) {
    std::list<SolutionScore> list = List({NAN, 1, NAN, 3, NAN, 2, NAN});
    weed(list, 3);
    EXPECT_EQ(list.size(), 3u);
}

TEST(NeedsWeeding, WhenTheListHasGrownPastTwiceTheSize) {
    EXPECT_FALSE(solutions::NeedsWeeding(List({1, 2, 3, 4}), 2));
    EXPECT_TRUE(solutions::NeedsWeeding(List({1, 2, 3, 4, 5}), 2));
    EXPECT_FALSE(solutions::NeedsWeeding({}, 0));
    EXPECT_TRUE(solutions::NeedsWeeding(List({1}), 0));
}

TEST(NeedsWeeding, ANegativeSizeCountsAsZero) {
    EXPECT_FALSE(solutions::NeedsWeeding({}, -3));
    EXPECT_TRUE(solutions::NeedsWeeding(List({1}), -3));
    EXPECT_TRUE(solutions::NeedsWeeding(List({1}), std::numeric_limits<int>::min()));
}

TEST(NeedsWeeding, TwiceTheLargestSizeDoesNotOverflow) {
    EXPECT_FALSE(solutions::NeedsWeeding(List({1}), std::numeric_limits<int>::max()));
}
