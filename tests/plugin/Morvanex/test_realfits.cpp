#include "Messages.h"
#include "Parameters.h"
#include "RealCase.h"
#include "TestData.h"
#include "formats/structures/StructureFile.h"
#include "search/Scoring.h"
#include "solutions/ResultsFile.h"

#include <QBuffer>
#include <QElapsedTimer>

#include <gmock/gmock.h>

#include <cstdio>

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::Gt;
using testing::Lt;

namespace {

std::string ResultsText() {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    solutions::WriteResults(buffer, Solutions);
    return buffer.data().toStdString();
}

class RealFits : public EngineTest {
protected:
    void SetUp() override { REQUIRE_TEST_DATA(); }

    /// Runs the loaded case, prints what came out, and expects what the case expects.
    Verdict Fit(const RealCase &real, const std::string &settings, const std::string &checkSearch);

    const Messages messages;
    RecordingMonitor monitor;
};

class EveryRealFit : public RealFits, public testing::WithParamInterface<std::string> {};

Verdict RealFits::Fit(const RealCase &real, const std::string &settings, const std::string &checkSearch) {
    search::PoseCounts counts;
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(RunFit(monitor, &counts));
    const double seconds = double(timer.elapsed()) / 1000;
    EXPECT_TRUE(std::ranges::is_sorted(Solutions, {}, &SolutionScore::score));
    if (Solutions.empty()) {
        ADD_FAILURE() << "no solution to judge";
        return {};
    }
    Verdict verdict = real.Judge(Solutions, monitor.fit.target.points);
    const auto &description = real.Description();
    std::printf("%-14s first RMSD %.2f Å, from a results file %.2f Å, rank %zu, score %.3f, %llu poses, %llu "
                "accepted, %.1f s\n",
                settings.c_str(), verdict.firstRmsd, verdict.firstRmsdFromFile, verdict.firstWithin,
                Solutions.back().score, static_cast<unsigned long long>(counts.tried),
                static_cast<unsigned long long>(counts.accepted), seconds);
    if (description.contains(checkSearch)) {
        const auto &check = description.at(checkSearch);
        EXPECT_NEAR(Solutions.back().score, check.at("top_score").get<double>(), 0.001);
        EXPECT_NEAR(verdict.firstRmsd, check.at("top1_rmsd").get<double>(), 0.01);
        EXPECT_NEAR(verdict.firstRmsdFromFile, check.at("top1_rmsd_from_rounded_file").get<double>(), 0.01);
    }
    EXPECT_GE(verdict.firstWithin, 1u);
    EXPECT_LE(verdict.firstWithin, description.at("expect").at("rank").get<std::size_t>());
    return verdict;
}

} // namespace

TEST_P(EveryRealFit, FindsTheTruePlaceAtQuickSettings) {
    RealCase real(GetParam());
    if (!real.Description().contains("settings_quick"))
        GTEST_SKIP() << "the case has no quick settings";
    real.Load(folder);
    real.Set(folder, "settings_quick");
    Fit(real, "settings_quick", "check_search_quick");
}

TEST_P(EveryRealFit, FindsTheTruePlaceAtFullSettings) {
    RealCase real(GetParam());
    real.Load(folder);
    real.Set(folder, "settings");
    Fit(real, "settings", "check_search");
}

INSTANTIATE_TEST_SUITE_P(Cases, EveryRealFit, testing::ValuesIn(CaseNames()),
                         [](const auto &test) { return "of_" + test.param; });

TEST_F(RealFits, AllFiveCopiesAreAmongTheBest) {
    RealCase real("tii_sym5");
    real.Load(folder);
    real.Set(folder, "settings"); // the quick ones are too coarse to come within the tolerance of all five
    EXPECT_TRUE(RunFit(monitor));
    EXPECT_EQ(Solutions.size(), 1000u);
    const Verdict verdict = real.Judge(Solutions, monitor.fit.target.points);
    EXPECT_EQ(verdict.foundAt.size(), 5u);
    EXPECT_THAT(verdict.foundAt, Each(Gt(0u)));
}

TEST_F(RealFits, OneByOneThePosesScoreTheSame) {
    for (const char *name : {"1z5s_C_solid", "ubi_restraints"}) {
        RealCase real(name);
        real.Load(folder);
        real.Set(folder, "settings_quick");
        EXPECT_TRUE(RunFit(monitor));
        const std::string list = FullPrecision(PlainSolutions());
        Solutions.clear();
        EXPECT_TRUE(RunFit(monitor, nullptr, {.poseByPose = true}));
        EXPECT_EQ(FullPrecision(PlainSolutions()), list) << name;
    }
}

TEST_F(RealFits, PdbAndMmcifFilesOfOneModelGiveTheSameBytes) {
    for (const char *name : {"1z5s_C_solid", "ubi_restraints", "ake_10A"}) {
        RealCase real(name);
        real.Load(folder);
        real.Set(folder, "settings_quick");
        EXPECT_TRUE(RunFit(monitor));
        const std::string fromPdb = ResultsText(), list = FullPrecision(PlainSolutions());
        const std::string mmcif = folder.File("model.cif");
        formats::WriteStructure(mmcif, formats::StructureFormat::Mmcif, m_Target->GetParent());
        real.Load(folder, mmcif);
        real.Set(folder, "settings_quick");
        EXPECT_TRUE(RunFit(monitor));
        EXPECT_EQ(ResultsText(), fromPdb) << name;
        EXPECT_EQ(FullPrecision(PlainSolutions()), list) << name;
    }
}

TEST_F(RealFits, RestraintsTellHowFarTheBestPoseIsFromThem) {
    RealCase real("ubi_restraints");
    real.Load(folder);
    real.Set(folder, "settings");
    EXPECT_TRUE(RunFit(monitor));
    const auto expected =
        real.Description().at("restraint_distances").at("at_check_search_top1").get<std::vector<double>>();
    ASSERT_FALSE(Solutions.empty());
    EXPECT_THAT(Solutions.back().extraScores, testing::Pointwise(testing::DoubleNear(0.005001), expected));
    std::vector<double> atTheTruth(4);
    Score(monitor.fit.target.restraints, real.Truth(), atTheTruth);
    EXPECT_THAT(atTheTruth, Each(Lt(0.01)));
}

TEST_F(RealFits, AnOddRestraintsFileGivesItsPairsInTheOrderOfResidues) {
    RealCase real("ubi_restraints");
    const auto fit = [&](const char *file) {
        real.Load(folder);
        real.Set(folder, "settings_quick");
        re_fname = QString::fromStdString(TestDataFolder() + "/cases/ubi_restraints/" + file);
        EXPECT_TRUE(RunFit(monitor));
        return PlainSolutions();
    };
    const std::vector<PlainRecord> plain = fit("restraints.txt"), odd = fit("restraints_odd.txt");
    std::vector<float> preferred;
    for (const auto &[position, point] : monitor.fit.target.restraints)
        preferred.push_back(position[0]);
    EXPECT_THAT(preferred, ElementsAre(27.69f, 10.5f, 33.59f, 21.61f, 26.19f));
    EXPECT_THAT(messages.Debug(), Contains("Extra scores 6"));
    ASSERT_EQ(plain.size(), odd.size());
    for (std::size_t i = 0; i < plain.size(); ++i) { // restraints do not enter the score
        EXPECT_EQ(odd[i].score, plain[i].score);
        EXPECT_EQ(odd[i].translation, plain[i].translation);
        ASSERT_EQ(odd[i].extraScores.size(), 5u);
        EXPECT_THAT(plain[i].extraScores, ElementsAre(odd[i].extraScores[0], odd[i].extraScores[2],
                                                      odd[i].extraScores[3], odd[i].extraScores[4]));
    }
}
