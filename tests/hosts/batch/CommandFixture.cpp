#include "CommandFixture.h"

#include "Commands.h"
#include "cli/Program.h"

#include <algorithm>
#include <filesystem>

const std::string smallModel =
    "ATOM      1  CA  ALA A   1      10.000   2.000   3.000  1.00 11.00           C  \n"
    "ATOM      2  CA  GLY A   2      13.000   4.000   0.000  1.00 12.00           C  \n"
    "ATOM      3  CA  LYS A   3      16.000   1.000   3.500  1.00 13.00           C  \n"
    "TER\n"
    "ATOM      4  CA  TRP B   1      -9.000   0.000   1.000  1.00 14.00           C  \n"
    "ATOM      5  CA  SER B   2      -9.000   3.500   2.000  1.00 15.00           C  \n"
    "TER\n"
    "HETATM    6  O   HOH A 101      20.000  20.000  20.000  1.00 30.00           O  \n"
    "END\n";

CommandFixture::Outcome CommandFixture::Run(const std::vector<std::string> &words) {
    const ModelGuard guard;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = cli::RunProgram(batch::AllCommands(), words);
    return {status, testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
}

std::string CommandFixture::OutputOf(const std::vector<std::string> &words) {
    const Outcome outcome = Run(words);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    return outcome.output;
}

std::string CommandFixture::ErrorOf(const std::vector<std::string> &words) {
    const Outcome outcome = Run(words);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    const std::string start = "morvanex " + words.front() + ": error: ", folder = m_folder.Path() + "/";
    std::string text = outcome.errors;
    EXPECT_TRUE(text.starts_with(start)) << text;
    text.erase(0, start.size());
    for (std::size_t at; (at = text.find(folder)) != std::string::npos;)
        text.erase(at, folder.size());
    return text;
}

std::vector<std::string> CommandFixture::FilesOfFolder() const {
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(m_folder.Path()))
        names.push_back(entry.path().filename());
    std::ranges::sort(names);
    return names;
}
