#include "hosts/common/PlaceChecks.h"

#include "hosts/common/ParameterError.h"

#include <gtest/gtest.h>

#include <set>

using namespace hosts;

namespace {

/// What is said of options that were given, "fine" where nothing is refused.
std::string Said(const std::set<std::string> &options, Placed what) {
    try {
        CheckCombination({[&](const std::string &option) { return options.contains(option); },
                          [](const std::string &option) { return '<' + option + '>'; }},
                         what);
    } catch (const std::runtime_error &error) {
        return error.what();
    }
    return "fine";
}

std::string ProblemOf(const std::vector<PartOptions> &parts) {
    try {
        CheckParts(parts);
    } catch (const ParameterError &error) {
        return error.Problem();
    }
    return "none";
}

} // namespace

TEST(PlaceChecks, LetPassWhatGoesTogether) {
    for (const std::set<std::string> &options : std::initializer_list<std::set<std::string>>{
             {"near", "hands"}, {"region", "symmetry"}, {"refine", "fixed"}})
        EXPECT_EQ(Said(options, Placed::OneModel), "fine");
    EXPECT_EQ(Said({"symmetry"}, Placed::SymmetricCopies), "fine");
    EXPECT_EQ(Said({"fixed"}, Placed::Assembly), "fine");
}

TEST(PlaceChecks, RefuseWhatExcludesOneAnotherByTheHostsOwnNames) {
    EXPECT_EQ(Said({"near", "refine"}, Placed::OneModel), "<near> and <refine> exclude one another");
    EXPECT_EQ(Said({"near", "region"}, Placed::OneModel), "<near> and <region> exclude one another");
    EXPECT_EQ(Said({"refine", "region"}, Placed::OneModel), "<refine> and <region> exclude one another");
    EXPECT_EQ(Said({"refine", "hands"}, Placed::OneModel), "<refine> and <hands> exclude one another");
    for (const std::string option : {"refine", "hands", "fixed"}) {
        EXPECT_EQ(Said({option, "symmetry"}, Placed::OneModel),
                  '<' + option + "> and <symmetry> exclude one another");
        EXPECT_EQ(Said({option, "symmetry-from"}, Placed::OneModel),
                  '<' + option + "> and <symmetry> exclude one another");
    }
    EXPECT_EQ(Said({"symmetry", "symmetry-from"}, Placed::OneModel),
              "<symmetry> and <symmetry-from> exclude one another");
}

TEST(PlaceChecks, RefuseForCopiesWhatIsOfThePlacesOfOneModel) {
    for (const std::string option :
         {"near", "refine", "region", "hands", "results", "models", "model-prefix", "moved-map", "symmetry"})
        EXPECT_EQ(Said({option}, Placed::Assembly),
                  '<' + option + "> is of the places of one model, and not for copies or several models");
    EXPECT_EQ(Said({"near", "symmetry"}, Placed::SymmetricCopies),
              "<near> is of the places of one model, and not for copies or several models");
}

TEST(PlaceChecks, RefuseAModelThatIsGivenTwice) {
    EXPECT_EQ(ProblemOf({{"a", 1}, {"b", 1}}), "none");
    EXPECT_EQ(ProblemOf({{"a", 1}, {"b", 1}, {"a", {}}}),
              "a is given twice; ask for two copies of it instead");
}
