#include "CommonOptions.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace batch;
using namespace cli;

namespace {

Arguments Read(const std::vector<std::string> &words) {
    const Command command{.name = "place",
                          .summary = "",
                          .description = "",
                          .options = {ThreadsOption("search"),
                                      ModelPrefixOption("--model", "place"),
                                      ModelsOption(""),
                                      {.name = "--model", .value = Value::File, .valueName = "FILE"}}};
    return ParseArguments(command, words);
}

std::string ErrorOfThreads(const std::string &threads) {
    try {
        ThreadsOf(Read({"--threads", threads}));
    } catch (const std::runtime_error &error) {
        return error.what();
    }
    return "no error";
}

} // namespace

TEST(CommonOptions, ModelsAreNamedAfterTheInputUnlessTheyHaveAPrefix) {
    const auto prefix = [](const std::vector<std::string> &words) {
        return ModelPrefixOf(Read(words), "--model", "place");
    };
    EXPECT_EQ(prefix({"--model", "folder.d/1abc.cif.gz"}), "1abc-place-");
    EXPECT_EQ(prefix({"--model", "1abc.cif.gz", "--model-prefix", "out/best"}), "out/best");
    EXPECT_EQ(ModelPrefixOption("--model", "place").defaultText,
              "the model file's name without folder and extensions, then -place-, in the current folder");
}

TEST(CommonOptions, WholeNumbersOutOfRangeAreRefusedWithTheirValue) {
    const auto models = [](const std::vector<std::string> &words) {
        return IntegerOf(Read(words), "--models", 0, 150, 7);
    };
    EXPECT_EQ(models({}), 7);
    EXPECT_EQ(models({"--models", "0"}), 0);
    EXPECT_EQ(models({"--models", "150"}), 150);
    EXPECT_THROW(models({"--models", "-1"}), std::runtime_error);
    EXPECT_THROW(models({"--models", "151"}), std::runtime_error);
    EXPECT_EQ(ErrorOfThreads("0"), "--threads: 0 is not a whole number from 1 to 1024");
    EXPECT_EQ(ErrorOfThreads("1025"), "--threads: 1025 is not a whole number from 1 to 1024");
}

TEST(CommonOptions, ACommandLineCanBeGivenToAShellAgain) {
    const std::vector<Option> options{{.name = "--map", .value = Value::File},
                                      {.name = "--model", .value = Value::File, .repeatable = true},
                                      {.name = "--max-distance", .value = Value::Text, .words = 3},
                                      {.name = "--invert"}};
    const Arguments arguments{.values = {{"--invert", {}},
                                         {"--max-distance", {"A:1 B:2 9.5"}},
                                         {"--map", {"it's $HOME.mrc"}},
                                         {"--model", {"a.pdb=2", ""}}},
                              .operand = {}};
    EXPECT_EQ(
        CommandLineOf("place", options, arguments),
        "morvanex place --map 'it'\\''s $HOME.mrc' --model a.pdb=2 --model '' --max-distance A:1 B:2 9.5 "
        "--invert");
}

TEST(CommonOptions, AHeadingBeginsAGroup) {
    const Option option = Headed("Input", MapOption());
    EXPECT_EQ(option.heading, "Input");
    EXPECT_EQ(option.name, "--map");
    EXPECT_TRUE(option.required);
}

TEST(CommonOptions, ParametersAreNamedAsTheirOptions) {
    EXPECT_EQ(OptionOf("translation step"), "--translation-step");
    EXPECT_EQ(OptionOf("axis"), "--axis");
}
