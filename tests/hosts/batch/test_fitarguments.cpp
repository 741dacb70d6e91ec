#include "FitArguments.h"

#include "Config.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

    static FitOptions Read(std::vector<std::string> words) {
        words.insert(words.begin(), {"--map", "map.mrc", "--target", "model.pdb"});
        const Command command{.name = "fit", .summary = "", .description = "", .options = FitOptionTable()};
        return ReadFitOptions(ParseArguments(command, words));
    }

    static std::string ErrorOf(const std::vector<std::string> &words) {
        try {
            CheckFitOptions(Read(words));
        } catch (const std::runtime_error &error) {
            return error.what();
        }
        return "no error";
    }

private:
    TemporaryFolder m_folder;
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
    EXPECT_EQ(options.inclusionDistance, "60.0");
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
    EXPECT_EQ(options.inclusionDistance, "35.5");
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
    EXPECT_EQ(options.inclusionDistance, "20");
    EXPECT_EQ(options.threads, 3);
}

TEST_F(FitArguments, SplitTheSolidChains) {
    EXPECT_THAT(*Read({"--solid", "s", "--solid-chains", "A,BB, "}).solidChains, ElementsAre("A", "BB", " "));
    EXPECT_EQ(*Read({"--chain", " "}).chain, " ");
}

TEST_F(FitArguments, NameModelsAfterTheTarget) {
    EXPECT_EQ(Read({}).modelPrefix, "model-fit-");
    EXPECT_EQ(Read({"--model-prefix", "out/best"}).modelPrefix, "out/best");
    EXPECT_EQ(ReadFitOptions({{{"--target", {"folder.d/1abc.cif.gz"}}}, "", false}).modelPrefix, "1abc-fit-");
}

TEST_F(FitArguments, AreRefusedWithOptionAndValue) {
    EXPECT_EQ(ErrorOf({"--axis", "-1"}), "--axis: -1 is not a whole number from 0 to 99");
    EXPECT_EQ(ErrorOf({"--axis", "100"}), "--axis: 100 is not a whole number from 0 to 99");
    EXPECT_EQ(ErrorOf({"--translation-step", "inf"}), "--translation-step: inf is not a finite number of Å");
    EXPECT_EQ(ErrorOf({"--translation-step", "nan"}), "--translation-step: nan is not a finite number of Å");
    EXPECT_EQ(ErrorOf({"--translation-steps", "-2"}), "--translation-steps: -2 is not a number of steps");
    EXPECT_EQ(ErrorOf({"--keep", "-1"}), "--keep: -1 is not a number of solutions");
    EXPECT_EQ(ErrorOf({"--inclusion-distance", "-1"}), "--inclusion-distance: -1 is not a distance in Å");
    EXPECT_EQ(ErrorOf({"--inclusion-distance", "nan"}), "--inclusion-distance: nan is not a distance in Å");
    EXPECT_EQ(ErrorOf({"--models", "-1"}), "--models: -1 is not a number of models");
    EXPECT_EQ(ErrorOf({"--threads", "0"}), "--threads: 0 is not a whole number from 1 to 1024");
    EXPECT_EQ(ErrorOf({"--threads", "-2"}), "--threads: -2 is not a whole number from 1 to 1024");
    EXPECT_EQ(ErrorOf({"--threads", "1025"}), "--threads: 1025 is not a whole number from 1 to 1024");
    EXPECT_EQ(ErrorOf({"--solid-chains", "A"}), "--solid-chains is given without --solid");
    EXPECT_EQ(ErrorOf({"--rotation-step", "0"}), "no error");
}
