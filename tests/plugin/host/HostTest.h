#pragma once

#include "Plugin.h"

#include "Gui.h"
#include "Messages.h"
#include "ModelGuard.h"
#include "Scene.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

/// What takes part in a fit, read from files into the model.
struct Assembly {
    VARNO::Compound *target = nullptr;
    VARNO::Compound *map = nullptr;
    std::vector<VARNO::Compound *> solid; ///< chains

    VARNO::Compound *TargetClump() const { return target->GetParent()->GetParent(); }
};

/// A row of the results list, as it is displayed.
struct Row {
    std::string rank, score;
    bool operator==(const Row &) const = default;
};

/// A host with the plug-in loaded, an empty model and the shipped settings. It knows of the plug-in what any
/// host knows: three functions, and windows and controls by their object names.
class HostTest : public testing::Test {
protected:
    HostTest();
    ~HostTest() override;

    /// The user's own settings of the section "Morvanex".
    void Configure(const std::string &lines) {
        // Every fit empties its log file, logging or not: there is to be none in the working folder.
        folder.Write("varno.ini", "[Morvanex]\nOutput=\n" + lines);
    }

    /// Chain D of 1TII, displaced, the map of the whole complex, and the other chains: the project's own
    /// example.
    static Assembly ReadExample();
    /// The chain of that identifier in what a file held.
    static VARNO::Compound *ChainOf(const VARNO::Compound *clump, const std::string &identifier);
    /// The clumps with copies that the plug-in has built, in model order.
    static std::vector<VARNO::Compound *> BuiltClumps();
    static std::vector<VARNO::Compound *> ResiduesOf(VARNO::Compound *node);
    static int CountMaps(const std::string &name);

    /// The visible dialogs; null where there is none.
    static QWidget *FitDialog() { return FindNamedWindow("StartFit"); }
    static QWidget *ProgressDialog() { return FindNamedWindow("Progress"); }
    static QWidget *ResultsDialog() { return FindNamedWindow("solutionsDialog"); }

    /// Clicks a button or check box of a window.
    static void Press(QWidget *window, const char *button);
    /// Types into a field of the set-up dialog.
    static void Enter(const char *field, const QString &text);
    static std::string Shown(QWidget *window, const char *label);
    static bool IsEnabled(QWidget *window, const char *control);

    /// Selects the nodes in the host and presses a button of the set-up dialog.
    static void Choose(const char *button, const std::vector<VARNO::Compound *> &nodes);
    static void Choose(const Assembly &assembly);
    /// A search of 1 + 21·11 orientations at 27 places, as a user types it in.
    static void EnterQuickSearch();
    /// Presses "Apply"; true when the results are shown.
    static bool Apply();
    /// Presses "Done" and lets the dialog go.
    static void LeaveResults();

    static std::vector<Row> Rows();
    static void SelectRank(const std::string &rank) { ClickRow(ListOf(ResultsDialog()), 0, rank.c_str()); }
    static QWidget *ListOf(const QWidget *results) { return Find<QWidget>(results, "solutionsListView"); }
    static void Save(const std::string &file) { Answer("saveButton", QString::fromStdString(file)); }
    static void Load(const std::string &file) { Answer("loadButton", QString::fromStdString(file)); }
    /// Empties the list of solutions, to which every fit adds and which outlives sessions: loading is begun
    /// and cancelled, in the results that are shown or else in an empty list.
    static void Forget();

    std::string Path(const std::string &name) const { return folder.File(name); }
    /// What was said on the warning channel, less what a platform without a window manager says of itself.
    std::vector<std::string> Warnings() const;

    TemporaryFolder folder;
    ModelGuard model;
    Messages messages;
    Plugin plugin;

private:
    static void Answer(const char *button, const QString &path);
};

/// What the progress dialog of a running fit shows, round after round of its event processing.
class ProgressWatch {
public:
    struct Sight {
        int value, maximum;
        std::string estimate;
    };

    ProgressWatch();

    std::vector<Sight> sights; ///< each different from the one before

private:
    Meanwhile m_meanwhile;
};

/// Does something once, in the middle of a running fit: when the progress bar has come to `value`.
class DuringAFit {
public:
    explicit DuringAFit(std::function<void()> action, int value = 2);
    bool Done() const { return m_meanwhile.Done(); }

private:
    Meanwhile m_meanwhile;
};
