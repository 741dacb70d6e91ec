#pragma once

#include "ModelGuard.h"
#include "PlainFit.h"
#include "RunFit.h"
#include "TemporaryFolder.h"
#include "search/FitMonitor.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

/// Everything that the engine keeps between fits, as it is when the library is loaded: parameters zeroed, no
/// solutions.
void ResetEngine();

/// Writes the host's setting "Marginal" into a settings file of its own in the folder.
void SetMarginal(const TemporaryFolder &folder, const std::string &text);

/// Adds clump, molecule and chain with these residues, each with one atom "CA" where it has a position.
VARNO::Compound *AddChain(const std::vector<PlainResidue> &residues);
/// Residues GLY1, GLY2 ... at these positions.
std::vector<PlainResidue> ResiduesAt(const std::vector<Point> &positions);
/// The residues below a node.
std::vector<VARNO::Compound *> ResiduesOf(VARNO::Compound *node);
VARNO::Grid *AddMap(const PlainMap &map);
/// A map of one value everywhere, the voxel (0, 0, 0) at the frame's origin.
PlainMap ConstantMap(std::array<unsigned, 3> size, float value);
/// The grid of that name below the root, or null.
const VARNO::Grid *FindGrid(const std::string &name);

/// Adds what the input describes to the model and makes it the engine's parameters and `Solutions`; the
/// restraints file, the log and the settings file go to the folder.
void LoadFit(const FitInput &input, const TemporaryFolder &folder);

/// Runs the engine on the input: what came out of it.
FitOutcome EngineFit(const FitInput &input);

/// What the engine makes of the random fits of the seeds below `seeds`, in one text.
std::string TextOfFits(unsigned seeds);

/// The engine's `Solutions`, in the plain form.
std::vector<PlainRecord> PlainSolutions();

/// Writes down every call; answers that the search is cancelled when asked for the given time (from 0).
class RecordingMonitor : public search::FitMonitor {
public:
    explicit RecordingMonitor(std::optional<std::size_t> cancelAt = {})
        : m_cancelAt(cancelAt) {}

    void Started(const fit::Preparation &fit) override;
    bool IsCancelled() override;
    void IdentityDone(std::size_t axes) override;
    void AxisDone(std::size_t done, std::size_t axes, double minutes) override;
    void Cancelled() override { calls.push_back("Cancelled"); }
    void Finished() override { calls.push_back("Finished"); }
    void LogLost(const QString &reason) override { calls.push_back("LogLost: " + reason.toStdString()); }

    std::vector<std::string> calls;
    std::vector<double> minutes;
    fit::Preparation fit;               ///< as it was when the search started
    std::function<void()> duringFit;    ///< called whenever the search asks whether to stop
    std::function<void()> whenStarting; ///< called when everything is prepared

private:
    std::optional<std::size_t> m_cancelAt;
    std::size_t m_asked = 0;
};

/// A test with an engine, a model and a settings file of its own.
class EngineTest : public testing::Test {
protected:
    EngineTest() {
        ResetEngine();
        SetMarginal(folder, "60.0");
    }
    ~EngineTest() override { ResetEngine(); }

    TemporaryFolder folder;

private:
    ModelGuard m_guard;
};
