#include "cli/Completion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include <unistd.h>

using namespace cli;
using testing::HasSubstr;

namespace {

std::vector<Command> Commands() {
    Command look{.name = "look",
                 .summary = "look at a file",
                 .description = "Looks.",
                 .options = {{"--deep", Value::None, "", "Look deeper"}}};
    look.operand = "FILE";
    return {
        {.name = "try",
         .summary = "try it: once",
         .description = "Tries.",
         .options = {{"--map", Value::File, "FILE", "The map's file [MRC]; read whole", "", true},
                     {"--model", Value::File, "FILE", "A model", "", true, true},
                     {"--step", Value::Number, "A", "Step: in Å"},
                     {"--quiet", Value::None, "", "Say nothing"}}},
        {.name = "try export",
         .summary = "write it",
         .description = "Writes.",
         .options = {{"--csv", Value::File, "FILE", "The table"}}},
        look,
    };
}

/// What bash completes, in a folder with the file "toxin.mrc": the words of the command line, the cursor
/// behind the last one, as bash divides them.
std::string Completed(const std::string &words) {
    const std::filesystem::path folder =
        std::filesystem::path(testing::TempDir()) / ("completion-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "toxin.mrc") << '\n';
    std::ofstream(folder.string() + ".bash") << BashCompletion(Commands()) << "COMP_WORDS=(" << words
                                             << ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n_morvanex\n"
                                             << "echo \"${COMPREPLY[*]}\"\n";
    FILE *bash = popen(
        ("cd '" + folder.string() + "' && bash ../" + folder.filename().string() + ".bash 2>&1").c_str(),
        "r");
    std::array<char, 4096> text{};
    const std::size_t read = fread(text.data(), 1, text.size(), bash);
    EXPECT_EQ(pclose(bash), 0);
    std::filesystem::remove_all(folder);
    std::filesystem::remove(folder.string() + ".bash");
    std::string line(text.data(), read);
    line.pop_back(); // the end of the line
    return line;
}

} // namespace

TEST(BashCompletion, OfTheFirstWordIsTheCommands) {
    EXPECT_EQ(Completed("morvanex ''"), "try look --help --version");
    EXPECT_EQ(Completed("morvanex t"), "try");
}

TEST(BashCompletion, OfACommandIsItsOptions) {
    EXPECT_EQ(Completed("morvanex try --"), "--map --model --step --quiet --help");
    EXPECT_EQ(Completed("morvanex try --map a.mrc --m"), "--map --model");
    EXPECT_EQ(Completed("morvanex other --"), "");
}

TEST(BashCompletion, OfANameOfTwoWordsIsTheSecondOne) {
    EXPECT_EQ(Completed("morvanex try e"), "export");
    EXPECT_EQ(Completed("morvanex try --map a.mrc e"), "");
    EXPECT_EQ(Completed("morvanex try export --"), "--csv --help");
}

TEST(BashCompletion, OfAnOptionsValueIsAFileWhereItTakesOne) {
    EXPECT_EQ(Completed("morvanex try --map to"), "toxin.mrc");
    EXPECT_EQ(Completed("morvanex try --map = to"), "toxin.mrc");
    EXPECT_EQ(Completed("morvanex try --map ="), "toxin.mrc");
    EXPECT_EQ(Completed("morvanex try --step ''"), "");
    EXPECT_EQ(Completed("morvanex try --quiet to"), "");
}

TEST(BashCompletion, OfTheOperandIsAFile) {
    EXPECT_EQ(Completed("morvanex look to"), "toxin.mrc");
    EXPECT_EQ(Completed("morvanex look -"), "--deep --help");
}

TEST(ZshCompletion, EscapesWhatDividesItsSpecifications) {
    const std::string script = ZshCompletion(Commands());
    EXPECT_THAT(script, HasSubstr("'try:try it\\: once' "));
    EXPECT_THAT(script, HasSubstr("'--map=[The map'\\''s file \\[MRC\\]]:FILE:_files' \\\n"));
    EXPECT_THAT(script, HasSubstr("'*--model=[A model]:FILE:_files' \\\n"));
    EXPECT_THAT(script, HasSubstr("'--step=[Step]:A:' \\\n"));
    EXPECT_THAT(script, HasSubstr("'--quiet[Say nothing]' \\\n"));
    EXPECT_THAT(script, HasSubstr("try) commands=('export:write it' ) ;;\n"));
    EXPECT_THAT(script, HasSubstr("':FILE:_files'\n"));
}
