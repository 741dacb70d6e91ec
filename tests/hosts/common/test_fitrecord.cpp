#include "hosts/common/FitRecord.h"

#include "formats/files/FileError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <sstream>

using namespace hosts;
using testing::HasSubstr;

namespace {

SolutionScore Solution(double score) {
    SolutionScore solution;
    solution.score = score;
    return solution;
}

std::list<SolutionScore> Awkward() {
    SolutionScore first = Solution(0.1 + 0.2);
    first.rotation.Set(std::sqrt(0.5), -0.0, 1e-300, -std::sqrt(1.0 / 3));
    first.translation.setValue(0.1f, -123456.79f, std::nextafter(16.0f, 17.0f), false);
    first.extraScores = {10.0 / 3, std::nextafter(7.0, 8.0)};
    return {first, Solution(-std::nextafter(1e9, 2e9))};
}

std::string Written(const std::list<SolutionScore> &solutions) {
    FitRecord record;
    record.options.map = "caf\xE9.mrc";
    record.options.inclusionDistance = "60.0";
    record.solutions = RankByScore(solutions);
    std::ostringstream out;
    WriteFitJson(out, record);
    return out.str();
}

void ExpectSameBits(double a, double b) {
    EXPECT_EQ(std::bit_cast<std::uint64_t>(a), std::bit_cast<std::uint64_t>(b)) << a << ' ' << b;
}

std::string ErrorOf(const std::string &bytes) {
    try {
        ReadFitJson("fit.json", bytes);
    } catch (const formats::FileError &error) {
        return error.what();
    }
    return "no error";
}

} // namespace

TEST(RankByScore, PutsTheBestFirstAndTheLaterOfEqualOnesBefore) {
    const std::list<SolutionScore> solutions{Solution(3), Solution(1), Solution(5), Solution(3)};
    std::vector<double> scores;
    std::vector<std::size_t> ranks, ranksInFile;
    for (const RankedSolution &ranked : RankByScore(solutions)) {
        scores.push_back(ranked.solution->score);
        ranks.push_back(ranked.rank);
        ranksInFile.push_back(ranked.rankInFile);
    }
    EXPECT_THAT(scores, testing::ElementsAre(5, 3, 3, 1));
    EXPECT_THAT(ranks, testing::ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(ranksInFile, testing::ElementsAre(2, 1, 4, 3));
}

TEST(FitJson, ReadsBackBitForBit) {
    const std::list<SolutionScore> solutions = Awkward();
    const auto read = ReadFitJson("fit.json", Written(solutions));
    ASSERT_EQ(read.size(), 2u);
    auto wanted = solutions.begin();
    for (const SolutionScore &solution : read) {
        ExpectSameBits(solution.score, wanted->score);
        ExpectSameBits(solution.rotation.w(), wanted->rotation.w());
        ExpectSameBits(solution.rotation.x(), wanted->rotation.x());
        ExpectSameBits(solution.rotation.y(), wanted->rotation.y());
        ExpectSameBits(solution.rotation.z(), wanted->rotation.z());
        for (const unsigned i : {0u, 1u, 2u})
            ExpectSameBits(solution.translation[i], wanted->translation[i]);
        ASSERT_EQ(solution.extraScores.size(), wanted->extraScores.size());
        for (std::size_t i = 0; i < solution.extraScores.size(); ++i)
            ExpectSameBits(solution.extraScores[i], wanted->extraScores[i]);
        ++wanted;
    }
}

TEST(FitJson, HoldsOneSolutionOnEachLine) {
    const std::string text = Written({Solution(2), Solution(1)});
    EXPECT_THAT(text,
                HasSubstr("\n    {\"rank\":1,\"rankInFile\":2,\"score\":2.0,\"rotation\":[1.0,0.0,0.0,0.0],"
                          "\"translation\":[0.0,0.0,0.0],\"restraintDistances\":[]},\n    {\"rank\":2,"));
    EXPECT_TRUE(text.ends_with("}\n  ]\n}\n"));
}

TEST(FitJson, MayHoldNoSolution) {
    EXPECT_TRUE(ReadFitJson("fit.json", Written({})).empty());
}

TEST(FitJson, NamesFileAndPlaceOfAnError) {
    EXPECT_THAT(ErrorOf(Written(Awkward()).substr(0, 900)), HasSubstr("fit.json: is not JSON: "));
    EXPECT_THAT(ErrorOf("[1, 2]"), HasSubstr("fit.json: solution 1: "));
    EXPECT_EQ(ErrorOf(R"({"solutions": [{"rotation": [1, 0, 0]}]})"),
              "fit.json: solution 1: rotation holds 3 numbers instead of 4");
    EXPECT_THAT(ErrorOf(R"({"solutions": [{"rotation": [1, 0, 0, "z"]}]})"),
                HasSubstr("fit.json: solution 1: "));
    EXPECT_THAT(ErrorOf(std::string(100'000, '[')), HasSubstr("fit.json: is not JSON: "));
}
