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
