#include "MapFile.h"
#include "Messages.h"
#include "Parameters.h"
#include "RealCase.h"
#include "ResultsFile.h"
#include "StructureFile.h"
#include "TestData.h"

#include "DataMaker.h"

#include <QBuffer>
#include <QElapsedTimer>

#include <gmock/gmock.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>

using testing::Each;
using testing::ElementsAre;
using testing::Gt;
using VARNO::DataMaker;

namespace {

std::string ResultsText() {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    WriteResults(buffer, Solutions);
    return buffer.data().toStdString();
}

class RealFits : public EngineTest {
protected:
    void SetUp() override { REQUIRE_TEST_DATA(); }

    /// Runs the case at these settings, prints what came out, and expects what the case expects.
    Verdict Fit(const RealCase &real, const std::string &settings, const std::string &checkSearch);

    const Messages messages;
    RecordingMonitor monitor;
};

class EveryRealFit : public RealFits, public testing::WithParamInterface<std::string> {};

Verdict RealFits::Fit(const RealCase &real, const std::string &settings, const std::string &checkSearch) {
    PoseCounts counts;
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(RunFit(monitor, &counts));
    const double seconds = double(timer.elapsed()) / 1000;
    EXPECT_TRUE(std::ranges::is_sorted(Solutions, {}, &SolutionScore::score));
    const Verdict verdict = real.Judge(Solutions, monitor.fit.target.points);
    const auto &description = real.Description();
    std::printf("%-15s %-14s first RMSD %5.2f Å, rank %zu, score %.3f, %llu poses, %llu accepted, %.1f s",
                description.at("name").get<std::string>().c_str(), settings.c_str(), verdict.firstRmsd,
                verdict.firstWithin, Solutions.back().score, static_cast<unsigned long long>(counts.tried),
                static_cast<unsigned long long>(counts.accepted), seconds);
    if (description.contains(checkSearch)) {
        const double score = description.at(checkSearch).at("top_score");
        std::printf("; check search: %.2f Å, score %.3f\n",
                    description.at(checkSearch).at("top1_rmsd").get<double>(), score);
        EXPECT_NEAR(Solutions.back().score, score, 0.01 * score);
    } else {
        std::puts("");
    }
    EXPECT_GE(verdict.firstWithin, 1u);
    EXPECT_LE(verdict.firstWithin, description.at("expect").at("rank").get<std::size_t>());
    return verdict;
}

} // namespace

TEST_P(EveryRealFit, FindsTheTruePlace) {
    RealCase real(GetParam());
    real.Load(folder);
    const bool quick = real.Description().contains("settings_quick");
    real.Set(folder, quick ? "settings_quick" : "settings");
    Fit(real, quick ? "settings_quick" : "settings", quick ? "check_search_quick" : "check_search");
}

TEST_P(EveryRealFit, FindsTheTruePlaceAtFullSettings) {
    if (!std::getenv("MORVANEX_FULL_FITS"))
        GTEST_SKIP() << "set MORVANEX_FULL_FITS to run";
    RealCase real(GetParam());
    real.Load(folder);
    real.Set(folder, "settings");
    Fit(real, "settings", "check_search");
}

INSTANTIATE_TEST_SUITE_P(Cases, EveryRealFit, testing::ValuesIn(CaseNames()), [](const auto &test) {
    return test.param.front() == '1' ? "pdb" + test.param : test.param;
});
