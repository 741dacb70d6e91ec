#pragma once

#include "ModelGuard.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

/// Runs the program's subcommands inside the test's process, each on an empty model.
class CommandFixture : public testing::Test {
protected:
    struct Outcome {
        int status;
        std::string output, errors;
    };

    Outcome Run(const std::vector<std::string> &words);
    /// Runs what has to succeed, and returns its output.
    std::string OutputOf(const std::vector<std::string> &words);
    /// Runs what has to fail with exit status 1 and say nothing on standard output, and returns the message
    /// without the program's name and without the folder's.
    std::string ErrorOf(const std::vector<std::string> &words);
    /// The names in the folder, sorted.
    std::vector<std::string> FilesOfFolder() const;

    TemporaryFolder m_folder;
};

/// Two chains of CA atoms, A with three residues and B with two, and a water; and where A's second one
/// stands.
extern const std::string smallModel;
