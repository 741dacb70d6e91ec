#pragma once

#include "Process.h"

#include "ModelGuard.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

/// A small fit for the whole program: a chain A beside a chain B, and the map of both with A moved.
class FitFixture : public testing::Test {
protected:
    FitFixture();

    std::string File(const std::string &name) const { return m_folder.File(name); }
    std::string Put(const std::string &name, const std::string &bytes) const {
        return m_folder.Write(name, bytes);
    }

    /// The words of `morvanex fit` with these options besides the usual ones; an option given here takes the
    /// place of a usual one, and one with the value "-" is left out.
    std::vector<std::string> Words(const std::vector<std::string> &options = {}) const;
    Outcome RunFit(const std::vector<std::string> &options = {}, long fileSizeLimit = -1) const {
        return RunProgramProcess(Words(options), fileSizeLimit);
    }
    /// Expects exit status 1, nothing on standard output, the error and no other line on standard error, and
    /// the folder as it was.
    void ExpectRefused(const std::vector<std::string> &options, const std::string &error) const;
    /// Names and contents of the files in the folder.
    std::map<std::string, std::string> Contents() const;

    /// Options of a search of more than two seconds, with 321 axes and `longSteps`³ translations. A sanitizer
    /// makes it seven times longer.
#ifdef MORVANEX_SANITIZED
    static constexpr int longSteps = 13;
#else
    static constexpr int longSteps = 25;
#endif
    static const std::vector<std::string> longSearch;

    const std::string m_chainA, m_chainB; ///< as PDB records

private:
    TemporaryFolder m_folder;
};
