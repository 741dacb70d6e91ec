#include "cli/CommandLine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace cli;
using testing::ElementsAre;

namespace {

const Command command{
    .name = "try",
    .summary = "",
    .description = "",
    .options = {{"--map", Value::File, "FILE", "", "", true},
                {"--solid", Value::Text, "FILE", "", "", false, true},
                {"--axis", Value::Integer, "N", "", ""},
                {"--step", Value::Number, "A", "", ""},
                {"--quiet", Value::None, "", "", ""},
                {.name = "--link", .value = Value::Text, .valueName = "A B", .repeatable = true, .words = 2}},
};

Command WithOperand() {
    Command info{.name = "info", .summary = "", .description = "", .options = {}};
    info.operand = "FILE";
    return info;
}

std::string ErrorOf(const std::vector<std::string> &words, const Command &parsed = command) {
    try {
        ParseArguments(parsed, words);
    } catch (const UsageError &error) {
        return error.what();
    }
    return "no error";
}

} // namespace

TEST(ParseArguments, TakesValuesFromTheNextWordOrBehindAnEqualsSign) {
    const Arguments arguments =
        ParseArguments(command, {"--map", "a.mrc", "--axis=3", "--step", "2.5", "--quiet"});
    EXPECT_EQ(arguments.Text("--map"), "a.mrc");
    EXPECT_EQ(arguments.Integer("--axis"), 3);
    EXPECT_EQ(arguments.Number("--step"), 2.5);
    EXPECT_TRUE(arguments.Has("--quiet"));
}

TEST(ParseArguments, LeavesOutWhatIsNotGiven) {
    const Arguments arguments = ParseArguments(command, {"--map", "a.mrc"});
    EXPECT_FALSE(arguments.Has("--axis"));
    EXPECT_FALSE(arguments.Has("--quiet"));
    EXPECT_EQ(arguments.Text("--solid"), "");
    EXPECT_TRUE(arguments.Texts("--solid").empty());
}

TEST(ParseArguments, KeepsTheOrderOfARepeatableOption) {
    const Arguments arguments =
        ParseArguments(command, {"--solid", "b", "--map", "m", "--solid=a", "--solid", "b"});
    EXPECT_THAT(arguments.Texts("--solid"), ElementsAre("b", "a", "b"));
}

TEST(ParseArguments, AValueMayBeSeveralWords) {
    const Arguments arguments = ParseArguments(
        command, {"--map", "a", "--link", "x", "y", "--quiet", "--link=u v", "--link", "1", "-2"});
    EXPECT_THAT(arguments.Texts("--link"), ElementsAre("x y", "u v", "1 -2"));
    EXPECT_TRUE(arguments.Has("--quiet"));
    EXPECT_EQ(ErrorOf({"--map", "a", "--link", "x", "--quiet"}), "--link needs a value, A B");
}

TEST(ParseArguments, TakesBlankEmptyAndNegativeValues) {
    EXPECT_EQ(ParseArguments(command, {"--map", " "}).Text("--map"), " ");
    EXPECT_EQ(ParseArguments(command, {"--map", "m", "--solid", ""}).Text("--solid"), "");
    EXPECT_EQ(ParseArguments(command, {"--map", "m", "--solid="}).Text("--solid"), "");
    EXPECT_EQ(ParseArguments(command, {"--map=--odd=name"}).Text("--map"), "--odd=name");
    EXPECT_EQ(ParseArguments(command, {"--map", "m", "--axis", "-5"}).Integer("--axis"), -5);
}

TEST(ParseArguments, NamesTheOptionThatIsWrong) {
    EXPECT_EQ(ErrorOf({"--map", "m", "--colour", "x"}), "unknown option '--colour'");
    EXPECT_EQ(ErrorOf({"--map", "m", "-q"}), "unknown option '-q'");
    EXPECT_EQ(ErrorOf({"--map", "m", "--map", "n"}), "--map is given twice");
    EXPECT_EQ(ErrorOf({"--map", "m", "--quiet", "--quiet"}), "--quiet is given twice");
    EXPECT_EQ(ErrorOf({"--map"}), "--map needs a value, FILE");
    EXPECT_EQ(ErrorOf({"--map", "--quiet"}), "--map needs a value, FILE");
    EXPECT_EQ(ErrorOf({"--quiet"}), "--map FILE is missing");
    EXPECT_EQ(ErrorOf({"--map", "m", "--quiet=yes"}), "--quiet takes no value");
    EXPECT_EQ(ErrorOf({"--map", "m", "stray"}), "unexpected argument 'stray'");
}

TEST(ParseArguments, SuggestsTheOptionThatWasMeant) {
    EXPECT_EQ(ErrorOf({"--mpa", "m"}), "unknown option '--mpa'; did you mean --map?");
    EXPECT_EQ(ErrorOf({"--sold=m"}), "unknown option '--sold'; did you mean --solid?");
}

TEST(ParseArguments, RefusesAnEmptyFileName) {
    EXPECT_EQ(ErrorOf({"--map", ""}), "--map: the name of the file is empty");
    EXPECT_EQ(ErrorOf({"--map="}), "--map: the name of the file is empty");
    EXPECT_EQ(ErrorOf({""}, WithOperand()), "FILE: the name of the file is empty");
}

TEST(ParseArguments, RefusesWhatIsNoNumber) {
    EXPECT_EQ(ErrorOf({"--map", "m", "--axis", "two"}), "--axis: 'two' is not a whole number");
    EXPECT_EQ(ErrorOf({"--map", "m", "--axis", "2.5"}), "--axis: '2.5' is not a whole number");
    EXPECT_EQ(ErrorOf({"--map", "m", "--axis", ""}), "--axis: '' is not a whole number");
    EXPECT_EQ(ErrorOf({"--map", "m", "--axis", "9999999999"}), "--axis: '9999999999' is too large a number");
    EXPECT_EQ(ErrorOf({"--map", "m", "--step", "5,0"}), "--step: '5,0' is not a number");
    EXPECT_EQ(ErrorOf({"--map", "m", "--step", "5A"}), "--step: '5A' is not a number");
}

TEST(ParseArguments, TakesOneOperand) {
    EXPECT_EQ(ParseArguments(WithOperand(), {"a.pdb"}).operand, "a.pdb");
    EXPECT_EQ(ParseArguments(WithOperand(), {"--", "--a.pdb"}).operand, "--a.pdb");
    EXPECT_EQ(ErrorOf({}, WithOperand()), "FILE is missing");
    EXPECT_EQ(ErrorOf({"a", "b"}, WithOperand()), "unexpected argument 'b'");
}

TEST(ParseArguments, AnswersHelpBeforeAnythingElse) {
    EXPECT_TRUE(ParseArguments(command, {"--help"}).wantsHelp);
    EXPECT_TRUE(ParseArguments(command, {"--unknown", "-h"}).wantsHelp);
    EXPECT_FALSE(ParseArguments(WithOperand(), {"--", "--help"}).wantsHelp);
}

TEST(Arguments, AListIsTakenApartAtItsCommas) {
    Arguments arguments;
    arguments.values["--chains"] = {"A,, B "};
    EXPECT_THAT(arguments.List("--chains"), testing::Optional(testing::ElementsAre("A", "", " B ")));
    EXPECT_EQ(arguments.List("--ranks"), std::nullopt);
    EXPECT_EQ(arguments.GivenText("--chains"), "A,, B ");
    EXPECT_EQ(arguments.GivenText("--ranks"), std::nullopt);
}
