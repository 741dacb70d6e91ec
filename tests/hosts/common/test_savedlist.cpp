#include "hosts/common/SavedList.h"

#include "TemporaryFolder.h"
#include "formats/files/FileError.h"
#include "hosts/common/FitJson.h"
#include "solutions/ResultsFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QBuffer>

#include <cmath>
#include <random>
#include <sstream>

using namespace VARNO;

using namespace hosts;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;

namespace {

const std::string comment = "# w Rx Ry Rz Tx Ty Tz score [extra scores...]\n";
const std::string worst = "  0.71   0.00   0.71   0.00   1.00   2.00   3.00    10.500\n";
const std::string best = "  0.50   0.50   0.50   0.50  -4.00   5.25   6.00    20.125   1.50\n";

class SavedLists : public testing::Test {
protected:
    SavedList Read(const std::string &bytes) { return ReadSavedList(m_folder.Write("list", bytes)); }
    std::string ErrorOf(const std::string &bytes) { return ErrorOfFile(m_folder.Write("list", bytes)); }
    std::string ErrorOfFile(const std::string &file, double memory = base::MemoryLimit()) {
        try {
            ReadSavedList(file, memory);
        } catch (const formats::FileError &error) {
            return WithoutFolder(error.what());
        }
        return "no error";
    }
    std::string ErrorOfRank(const std::string &bytes, long rank) {
        try {
            Read(bytes).OfRank(rank);
        } catch (const formats::FileError &error) {
            return WithoutFolder(error.what());
        }
        return "no error";
    }

    TemporaryFolder m_folder;

private:
    std::string WithoutFolder(const std::string &text) { return text.substr(m_folder.Path().size() + 1); }
};

std::string Json(const std::list<SolutionScore> &solutions) {
    FitRecord record;
    record.solutions = RankByScore(solutions);
    std::ostringstream out;
    WriteFitJson(out, record);
    return out.str();
}

SolutionScore RandomPose(std::mt19937_64 &random) {
    std::normal_distribution<double> normal;
    const double q[] = {normal(random), normal(random), normal(random), normal(random)};
    const double length = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
    SolutionScore pose;
    pose.rotation.Set(q[0] / length, q[1] / length, q[2] / length, q[3] / length);
    pose.translation.setValue(float(30 * normal(random)), float(30 * normal(random)),
                              float(30 * normal(random)), false);
    return pose;
}

double Distance(const Vertex &a, const Vertex &b) {
    return std::hypot(double(a[0] - b[0]), double(a[1] - b[1]), double(a[2] - b[2]));
}

} // namespace

TEST_F(SavedLists, RanksOfAResultsFileCountFromItsEnd) {
    const SavedList list = Read(comment + worst + best);
    EXPECT_TRUE(list.isRounded);
    EXPECT_EQ(list.solutions.size(), 2u);
    EXPECT_EQ(list.OfRank(1).score, 20.125);
    EXPECT_EQ(list.OfRank(2).score, 10.5);
    EXPECT_EQ(list.OfRank(1).translation, Vertex(-4, 5.25f, 6, false));
}

TEST_F(SavedLists, RanksOfAJsonFileGoByScore) {
    SolutionScore low, high;
    low.score = 1;
    high.score = 2;
    high.rotation.Set(std::sqrt(0.3), std::sqrt(0.7), 0, 0);
    const SavedList list = Read(Json({high, low}));
    EXPECT_FALSE(list.isRounded);
    EXPECT_EQ(list.OfRank(1).score, 2);
    EXPECT_EQ(list.OfRank(1).rotation.w(), std::sqrt(0.3));
    EXPECT_EQ(list.OfRank(2).score, 1);
}

TEST_F(SavedLists, ARankOutsideTheListIsRefusedWithTheLengthOfTheList) {
    for (const long rank : {0L, -1L, 3L, 99L})
        EXPECT_EQ(ErrorOfRank(worst + best, rank),
                  "list: rank " + std::to_string(rank) + ": the list has the ranks 1 to 2");
    EXPECT_EQ(ErrorOfRank(worst + best, 2), "no error");
}

TEST_F(SavedLists, SkippedLinesAreNamed) {
    EXPECT_THAT(Read(comment + worst + "\n1 2 3\n" + best).skippedLines, ElementsAre(3, 4));
}

TEST_F(SavedLists, ALineWithLettersKeepsItsRankAndIsNotBuilt) {
    const std::string letters = "a b c d e f g hh\n";
    EXPECT_THAT(Read(letters + worst + best).problems,
                ElementsAre(Pair(3, "line 1 holds a word that is not a number")));
    EXPECT_EQ(ErrorOfRank(letters + worst + best, 3),
              "list: rank 3: line 1 holds a word that is not a number");
    EXPECT_EQ(ErrorOfRank(letters + worst + best, 1), "no error");
    EXPECT_EQ(ErrorOfRank(worst + "nan 0 0 0 0 0 0 0.00\n", 1),
              "list: rank 1: its pose holds a number that is not finite");
}

TEST_F(SavedLists, ABrokenSolutionOfAJsonFileIsNotBuilt) {
    std::string text = Json({SolutionScore(), SolutionScore()});
    text.replace(text.find("rotation", text.find("\"rank\":2")), 8, "notation");
    EXPECT_EQ(ErrorOfRank(text, 2), "list: rank 2: rotation is missing");
    EXPECT_EQ(ErrorOfRank(text, 1), "no error");
}

TEST_F(SavedLists, ListsThatTheMemoryDoesNotHoldAreRefused) {
    std::string lines = comment;
    for (int i = 0; i < 1000; ++i)
        lines += worst;
    std::string json = Json({});
    const std::size_t list = json.rfind('[') + 1;
    for (int i = 0; i < 1000; ++i)
        json.insert(list, i > 0 ? "{}," : "{}");
    for (const std::string &text : {lines, json}) {
        const std::string file = m_folder.Write("list", text);
        const auto bytes = double(text.size());
        EXPECT_EQ(ReadSavedList(file, 1e6).solutions.size(), 1000u);
        EXPECT_THAT(ErrorOfFile(file, 4 * bytes - 4), HasSubstr("list: holds more than ")) << "the text";
        EXPECT_THAT(ErrorOfFile(file, 4 * bytes + 4), HasSubstr("would need more than 0.0 GiB of memory"));
    }
    const std::string distances = Json({[] {
        SolutionScore solution;
        solution.extraScores.resize(10'000);
        return solution;
    }()});
    EXPECT_THAT(ErrorOfFile(m_folder.Write("list", distances), 4.0 * double(distances.size()) + 4),
                HasSubstr("list: solutions: the list would need more than 0.0 GiB of memory"));
}

TEST_F(SavedLists, WhatIsNoListIsRefused) {
    EXPECT_EQ(ErrorOf(""), "list: is empty");
    EXPECT_EQ(ErrorOf(" \n\n"), "list: is empty");
    EXPECT_EQ(ErrorOf(worst + std::string("\0\x01", 2)),
              "list: byte 59: is a control character; a list of solutions is text");
    EXPECT_EQ(ErrorOf(comment), "list: no line holds the eight numbers of a solution");
    EXPECT_EQ(ErrorOf("a letter to somebody, in more than eight words\n"),
              "list: no line holds the eight numbers of a solution");
    EXPECT_EQ(ErrorOf(Json({})), "list: solutions: the list is empty");
    EXPECT_EQ(ErrorOf("{"), "list: line 1: is not JSON: it ends too early");
    EXPECT_EQ(ErrorOf("{\"a\": 1}"), "list: format: is missing");
    EXPECT_THAT(ErrorOfFile(m_folder.File("absent")), HasSubstr("No such file"));
    EXPECT_THAT(ErrorOfFile(m_folder.Path() + "/."), HasSubstr("directory"));
}

TEST(RoundingCost, BoundsWhatTwoDecimalsDoToAPoint) {
    std::mt19937_64 random(1);
    double worstShare = 0;
    for (int i = 0; i < 20000; ++i) {
        const SolutionScore pose = RandomPose(random);
        SolutionScore rounded;
        rounded.setFromLine(pose.getLine());
        const Vertex point = RandomPose(random).translation;
        const double moved = Distance(Transform(pose.rotation, pose.translation) * point,
                                      Transform(rounded.rotation, rounded.translation) * point);
        const double bound = RoundingCost(Distance(point, Vertex()));
        ASSERT_LE(moved, bound);
        worstShare = std::max(worstShare, moved / bound);
    }
    // A bound that is far above everything says nothing.
    EXPECT_GT(worstShare, 0.7);
}
