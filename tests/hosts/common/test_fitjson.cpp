#include "hosts/common/FitJson.h"

#include "formats/files/FileError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <sstream>

#include <sys/resource.h>
#include <unistd.h>

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
    record.options.inclusionDistance = 60;
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

/// Reads the list with so many bytes of memory besides those in use, and exits with 0 where that was
/// possible.
[[noreturn]] void ReadWithin(rlim_t bytes, const std::string &text) {
    std::ifstream statm("/proc/self/statm");
    rlim_t pages = 0;
    statm >> pages;
    const rlim_t limit = pages * rlim_t(sysconf(_SC_PAGESIZE)) + bytes;
    const rlimit limits{limit, limit};
    setrlimit(RLIMIT_AS, &limits);
    std::exit(ReadFitJson("fit.json", text).solutions.empty() ? 0 : 1);
}

} // namespace

TEST(FitJson, ReadsBackBitForBit) {
    const std::list<SolutionScore> solutions = Awkward();
    const std::vector<SolutionScore> read = ReadFitJson("fit.json", Written(solutions)).solutions;
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
    EXPECT_TRUE(ReadFitJson("fit.json", Written({})).solutions.empty());
}

TEST(FitJson, KeepsNumbersThatAreNotFinite) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    SolutionScore solution = Solution(infinity);
    solution.extraScores = {-infinity, std::numeric_limits<double>::quiet_NaN(), 1};
    FitRecord record;
    record.options.inclusionDistance = infinity;
    const std::list<SolutionScore> solutions{solution};
    record.solutions = RankByScore(solutions);
    std::ostringstream out;
    WriteFitJson(out, record);
    EXPECT_THAT(out.str(), HasSubstr("\"inclusionDistance\": \"inf\""));
    EXPECT_THAT(out.str(), HasSubstr("\"score\":\"inf\""));
    const JsonSolutions read = ReadFitJson("fit.json", out.str());
    EXPECT_TRUE(read.problems.empty());
    EXPECT_EQ(read.solutions.at(0).score, infinity);
    EXPECT_THAT(read.solutions.at(0).extraScores, testing::ElementsAre(-infinity, testing::IsNan(), 1));
}

TEST(FitJson, NamesFileAndPlaceOfWhatIsNoJson) {
    const std::string text = Written(Awkward());
    EXPECT_EQ(ErrorOf(text.substr(0, text.find("\"sample\""))),
              "fit.json: line 30: is not JSON: it ends too early");
    EXPECT_EQ(ErrorOf("{\n\"a\": tru }"), "fit.json: line 2: is not JSON near '\"a\": tru '");
    EXPECT_EQ(ErrorOf("{\n\"a\": 1e999\n}"), "fit.json: line 2: is not JSON near '\"a\": 1e999'");
    EXPECT_EQ(ErrorOf("{\"a\": " + std::string(100, ' ') + "}"),
              "fit.json: line 1: is not JSON near '" + std::string(19, ' ') + "}'");
    EXPECT_THAT(ErrorOf(std::string(100'000, '[')), HasSubstr("it ends too early"));
}

TEST(FitJson, RefusesAnotherFormatAndAnotherVersion) {
    const auto with = [](const std::string &format, const std::string &version) {
        return "{\"format\": " + format + ", \"version\": " + version + ", \"solutions\": []}";
    };
    EXPECT_EQ(ErrorOf(with("\"morvanex fit\"", "1")), "no error");
    EXPECT_EQ(ErrorOf(with("\"morvanex fit\"", "2")),
              "fit.json: version: is 2; this program reads version 1");
    EXPECT_EQ(ErrorOf(with("\"morvanex fit\"", "1.5")),
              "fit.json: version: is 1.5; this program reads version 1");
    EXPECT_EQ(ErrorOf(with("\"places\"", "1")), "fit.json: format: is 'places' and not 'morvanex fit'");
    EXPECT_EQ(ErrorOf("{\"a\": 1}"), "fit.json: format: is missing");
    EXPECT_EQ(ErrorOf("[1, 2]"), "fit.json: is not a list that 'morvanex fit' saved");
    EXPECT_EQ(ErrorOf("7"), "fit.json: is not a list that 'morvanex fit' saved");
    for (const std::string solutions : {"", ", \"solutions\": 3", ", \"solutions\": {}"})
        EXPECT_EQ(ErrorOf("{\"format\": \"morvanex fit\", \"version\": 1" + solutions + "}"),
                  "fit.json: solutions: is missing or not a list");
}

TEST(FitJson, ABrokenSolutionLeavesTheOthersReadable) {
    const auto problemOf = [](const std::string &from, const std::string &to) {
        std::string text = Written({Solution(2), Solution(1), Solution(3)});
        const std::size_t second = text.find("{\"rank\":2");
        const std::size_t at = text.find(from, second);
        EXPECT_NE(at, std::string::npos) << from;
        text.replace(at, from.size(), to);
        const JsonSolutions read = ReadFitJson("fit.json", text);
        EXPECT_EQ(read.solutions.size(), 3u);
        EXPECT_EQ(read.solutions.at(0).score, 3);
        EXPECT_EQ(read.solutions.at(2).score, 1);
        return read.problems.size() == 1 && read.problems.contains(2) ? read.problems.at(2)
                                                                      : "none of rank 2";
    };
    EXPECT_EQ(problemOf("[1.0,0.0,0.0,0.0]", "[1.0,0.0,0.0]"), "rotation holds 3 numbers instead of 4");
    EXPECT_EQ(problemOf("[1.0,0.0,0.0,0.0]", "[1.0,0.0,0.0,\"z\"]"),
              "rotation holds something other than numbers");
    EXPECT_EQ(problemOf("[1.0,0.0,0.0,0.0]", "[1.0,0.0,[0.0],0.0]"),
              "rotation holds something other than numbers");
    EXPECT_EQ(problemOf("[1.0,0.0,0.0,0.0]", "7"), "rotation is not a list");
    EXPECT_EQ(problemOf("[1.0,0.0,0.0,0.0]", "{\"w\":1}"), "rotation is not a list");
    EXPECT_EQ(problemOf("translation", "shift"), "translation is missing");
    EXPECT_EQ(problemOf("restraintDistances", "distances"), "restraintDistances is missing");
    EXPECT_EQ(problemOf("\"score\":2.0", "\"score\":\"high\""), "score is not a number");
    EXPECT_EQ(problemOf("\"score\":2.0", "\"score\":[2.0]"), "score is not a number");
    EXPECT_EQ(problemOf("\"score\":2.0", "\"score\":null"), "score is not a number");
    EXPECT_EQ(problemOf("score", "scores"), "score is missing");
    EXPECT_EQ(problemOf("\"rank\":2", "\"rank\":7"), "the solution that stands there has rank 7");
    EXPECT_EQ(problemOf("\"rank\":2", "\"rank\":true"), "rank is not a number");
    EXPECT_EQ(problemOf("\"rank\":2,", ""), "rank is missing");
}

TEST(FitJson, AnEntryThatIsNoSolutionKeepsItsRank) {
    const JsonSolutions read = ReadFitJson(
        "fit.json", R"({"format": "morvanex fit", "version": 1, "solutions": [7, [1, [2]], "x", null]})");
    EXPECT_EQ(read.solutions.size(), 4u);
    EXPECT_THAT(read.problems, testing::ElementsAre(testing::Pair(1, "is not an object"),
                                                    testing::Pair(2, "is not an object"),
                                                    testing::Pair(3, "is not an object"),
                                                    testing::Pair(4, "is not an object")));
}

TEST(FitJson, IsReadWithLittleMemoryBesidesTheBytes) {
    // A tree of these lists would take 44 bytes for each two of theirs, some 450 MB.
    std::string text = "{\"format\": \"morvanex fit\", \"version\": 1, \"a\": [";
    for (int i = 0; i < 10'000'000; ++i)
        text += "0,";
    text += "0], \"solutions\": []}";
    EXPECT_EXIT(ReadWithin(100'000'000, text), testing::ExitedWithCode(0), "");
}
