#include "FitFixture.h"

#include "TestData.h"

#include <cstdlib>
#include <filesystem>
#include <sstream>

namespace {

/// The command lines of a document: those of its blocks marked as shell.
std::vector<std::string> CommandsOf(const std::string &document) {
    std::vector<std::string> commands;
    std::istringstream lines(ReadFile(document));
    bool inside = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("```"))
            inside = line == "```sh";
        else if (inside)
            commands.push_back(line);
    }
    return commands;
}

} // namespace

class Documentation : public FitFixture {
protected:
    /// Runs the document's commands that begin so, one after another, in the folder.
    void Run(const std::string &document, const std::string &begin = {}) {
        std::vector<std::string> commands = CommandsOf(SourceFolder() + document);
        std::erase_if(commands, [&](const std::string &command) { return !command.starts_with(begin); });
        EXPECT_GE(commands.size(), 2u);
        const std::string folder = std::filesystem::path(File("x")).parent_path();
        const std::string path = std::filesystem::path(MORVANEX_PROGRAM).parent_path();
        for (const std::string &command : commands)
            EXPECT_EQ(std::system(("cd " + folder + " && PATH=" + path +
                                   ":$PATH XDG_CONFIG_HOME=/nonexistent && " + command + " >output 2>errors")
                                      .c_str()),
                      0)
                << command << '\n'
                << ReadFile(File("errors"));
    }

    void PutExamples() {
        std::filesystem::create_directory_symlink(SourceFolder() + "/examples", File("examples"));
    }
};

// The other lines build; screening is the Python module's.
TEST_F(Documentation, TheReadmesCallsOfPlaceRun) {
    PutExamples();
    Run("/README.md", "morvanex place");
    for (const char *file : {"1tii_D_displaced-place-1.pdb", "toxin.cif", "toxin.html"})
        EXPECT_TRUE(std::filesystem::exists(File(file))) << file;
}

TEST_F(Documentation, TheUserGuideHasOnlyCommandsThatRun) {
    Put("restraints.txt", "ALA3 20 20 20\n");
    Run("/docs/user-guide.md");
}

TEST_F(Documentation, TheTutorialHasOnlyCommandsThatRun) {
    PutExamples();
    Run("/docs/tutorial.md");
    EXPECT_TRUE(std::filesystem::exists(File("B-5.pdb")));
    EXPECT_TRUE(std::filesystem::exists(File("C-place-1.pdb")));
}

TEST_F(Documentation, TheReportHasOnlyCommandsThatRun) {
    PutExamples();
    Run("/docs/report.md");
    for (const char *written : {"report.html", "places.cxc", "places.pml"})
        EXPECT_TRUE(std::filesystem::exists(File(written))) << written;
}
