#include "FitArguments.h"

#include "Config.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

using namespace batch;
using namespace cli;
using namespace hosts;
using testing::ElementsAre;
using VARNO::Config;

namespace {

/// Settings of the test's own instead of the user's.
class FitArguments : public testing::Test {
protected:
    FitArguments() { Config::SetUserFile(m_folder.File("varno.ini")); }
    ~FitArguments() override { Config::SetUserFile(m_before); }

    void Configure(const std::string &text) { m_folder.Write("varno.ini", "[Morvanex]\n" + text); }

    FitOptions Read(std::vector<std::string> words) {
        m_warnings.clear();
        words.insert(words.begin(), {"--map", "map.mrc"});
        if (std::ranges::find(words, "--target") == words.end())
            words.insert(words.end(), {"--target", "model.pdb"});
        const Command command{.name = "fit", .summary = "", .description = "", .options = FitOptionTable()};
        return ReadFitOptions(ParseArguments(command, words),
                              [this](const std::string &text) { m_warnings.push_back(text); });
    }

    std::string ErrorOf(const std::vector<std::string> &words) {
        try {
            CheckFitOptions(Read(words));
        } catch (const std::runtime_error &error) {
            return error.what();
        }
        return "no error";
    }

    std::vector<std::string> m_warnings; ///< of the last reading
    TemporaryFolder m_folder;

private:
    std::string m_before = Config::GetUserFile();
};

} // namespace

TEST_F(FitArguments, AreTheShippedSettingsByDefault) {
    const FitOptions options = Read({});
    EXPECT_EQ(options.map, "map.mrc");
    EXPECT_EQ(options.target, "model.pdb");
    EXPECT_EQ(options.chain, std::nullopt);
    EXPECT_TRUE(options.solids.empty());
    EXPECT_EQ(options.solidChains, std::nullopt);
    EXPECT_EQ(options.restraints, std::nullopt);
    EXPECT_EQ(options.axis, 2);
    EXPECT_EQ(options.rotationStep, 10.0);
    EXPECT_EQ(options.translationStep, 5.0);
    EXPECT_EQ(options.translationSteps, 5);
    EXPECT_EQ(options.keep, 100);
    EXPECT_EQ(options.inclusionDistance, 60);
    EXPECT_EQ(options.results, std::nullopt);
    EXPECT_EQ(options.log, std::nullopt);
    EXPECT_EQ(options.json, std::nullopt);
    EXPECT_EQ(options.models, 0);
    EXPECT_FALSE(options.quiet);
    EXPECT_FALSE(options.force);
    EXPECT_EQ(options.threads, int(std::thread::hardware_concurrency()));
    EXPECT_NO_THROW(CheckFitOptions(options));
}

TEST_F(FitArguments, TakeTheUsersSettingsAsTheDialogConvertsThem) {
    Configure("Axis=3\nRotationStep=7.1\nTransNum=abc\nTransStep=2.7x\nTopList=12.5\nMarginal=35.5\n");
    const FitOptions options = Read({});
    EXPECT_EQ(options.axis, 3);
    EXPECT_EQ(options.rotationStep, 7.1) << "in double, not widened from float";
    EXPECT_EQ(options.translationSteps, 0);
    EXPECT_EQ(options.translationStep, 0.0);
    EXPECT_EQ(options.keep, 0);
    EXPECT_EQ(options.inclusionDistance, 35.5);
}

TEST_F(FitArguments, WarnOfSettingsThatAreNoNumbers) {
    Configure("Axis=3\nTopList=1e3\nTransStep=2.7x\nTransNum=99999999999\nMarginal=\n");
    Read({});
    const std::string start = m_folder.File("varno.ini") + ": section Morvanex: ";
    EXPECT_THAT(
        m_warnings,
        ElementsAre(start + "TransStep=2.7x is not a number; it counts as 0",
                    start + "TransNum=99999999999 is not a whole number up to 2147483647; it counts as 0",
                    start + "TopList=1e3 is not a whole number up to 2147483647; it counts as 0",
                    start + "Marginal= is not a number; it counts as 0"));
    Read(
        {"--keep", "5", "--translation-step", "1", "--translation-steps", "3", "--inclusion-distance", "60"});
    EXPECT_THAT(m_warnings, ElementsAre()) << "the command line has its own";
}

TEST_F(FitArguments, HoldTheConfiguredDepthInTheDialogsRange) {
    Configure("Axis=120\n");
    EXPECT_EQ(Read({}).axis, 99);
    Configure("Axis=-3\n");
    EXPECT_EQ(Read({}).axis, 0);
}

TEST_F(FitArguments, PreferTheCommandLine) {
    Configure("Axis=3\nRotationStep=7.1\nTransNum=9\nTransStep=2.7\nTopList=12\nMarginal=35.5\n");
    const FitOptions options =
        Read({"--axis", "1", "--rotation-step", "15", "--translation-steps", "3", "--translation-step", "4.5",
              "--keep", "7", "--inclusion-distance", "20", "--threads", "3"});
    EXPECT_EQ(options.axis, 1);
    EXPECT_EQ(options.rotationStep, 15.0);
    EXPECT_EQ(options.translationSteps, 3);
    EXPECT_EQ(options.translationStep, 4.5);
    EXPECT_EQ(options.keep, 7);
    EXPECT_EQ(options.inclusionDistance, 20);
    EXPECT_EQ(options.threads, 3);
}

TEST_F(FitArguments, SplitTheSolidChains) {
    EXPECT_THAT(*Read({"--solid", "s", "--solid-chains", "A,BB, "}).solidChains, ElementsAre("A", "BB", " "));
    EXPECT_EQ(*Read({"--chain", " "}).chain, " ");
}

TEST_F(FitArguments, NameModelsAfterTheTarget) {
    EXPECT_EQ(Read({}).modelPrefix, "model-fit-");
    EXPECT_EQ(Read({"--model-prefix", "out/best"}).modelPrefix, "out/best");
    EXPECT_EQ(Read({"--target", "folder.d/1abc.cif.gz"}).modelPrefix, "1abc-fit-");
}

TEST_F(FitArguments, SolidChainsNeedASolid) {
    EXPECT_EQ(ErrorOf({"--solid-chains", "A"}), "--solid-chains is given without --solid");
}
