#include "HostTest.h"

#include "DataAdder.h"

#include <QApplication>
#include <QComboBox>
#include <QEvent>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

class Lifecycle : public HostTest {
protected:
    static std::string TextOf(const char *comboBox) {
        return Find<QComboBox>(FitDialog(), comboBox)->currentText().toStdString();
    }
};

TEST_F(Lifecycle, IsNeverDone) {
    EXPECT_FALSE(plugin.IsDone());
    plugin.Execute0();
    EXPECT_FALSE(plugin.IsDone());
    plugin.Cleanup();
    EXPECT_FALSE(plugin.IsDone());
}

TEST_F(Lifecycle, CleanupWithoutASessionOnlySaysSo) {
    const bool *done = plugin.Cleanup();
    EXPECT_TRUE(*done);
    EXPECT_EQ(plugin.Cleanup(), done);
    EXPECT_TRUE(*done);
    EXPECT_THAT(messages.Debug(), ElementsAre("Fitter cleanup.", "Fitter cleanup."));
}

TEST_F(Lifecycle, CleanupEndsTheSessionFirst) {
    const bool *done = plugin.Cleanup();
    plugin.Execute0();
    EXPECT_FALSE(*done);
    ASSERT_TRUE(FitDialog());
    messages.Clear();
    EXPECT_EQ(plugin.Cleanup(), done);
    EXPECT_TRUE(*done);
    EXPECT_FALSE(FitDialog());
    EXPECT_EQ(CountWindows("StartFit"), 0);
    EXPECT_THAT(messages.Debug(), ElementsAre("Morvanex has left the building.", "Fitter cleanup."));
}

TEST_F(Lifecycle, ASecondCallShowsTheSameDialogAsItWasLeft) {
    plugin.Execute0();
    QWidget *dialog = FitDialog();
    Enter("keepComboBox", "33");
    Press(dialog, "cancelButton");
    EXPECT_FALSE(FitDialog());
    Configure("TopList=44\n");
    plugin.Execute0();
    EXPECT_EQ(FitDialog(), dialog);
    EXPECT_EQ(CountWindows("StartFit"), 1);
    EXPECT_EQ(TextOf("keepComboBox"), "33");
    plugin.Execute0();
    EXPECT_EQ(CountWindows("StartFit"), 1);
}

TEST_F(Lifecycle, ASecondCallBringsAMinimisedDialogBack) {
    plugin.Execute0();
    QWidget *dialog = FitDialog();
    SetWindowState(dialog, Qt::WindowMinimized);
    ASSERT_TRUE(dialog->isMinimized());
    plugin.Execute0();
    EXPECT_EQ(FitDialog(), dialog);
    EXPECT_FALSE(dialog->isMinimized());
}

TEST_F(Lifecycle, ANewSessionReadsTheConfigurationAnewAndHasNothingChosen) {
    const Assembly assembly = ReadExample();
    plugin.Execute0();
    Choose(assembly);
    Enter("keepComboBox", "33");
    plugin.Cleanup();
    Configure("TopList=44\n");
    plugin.Execute0();
    EXPECT_EQ(TextOf("keepComboBox"), "44");
    EXPECT_EQ(Shown(FitDialog(), "selectedMoleculeLabel"), "N/A");
    EXPECT_FALSE(IsEnabled(FitDialog(), "applyButton") || IsEnabled(FitDialog(), "loadButton"));
}

TEST_F(Lifecycle, TenSessionsWithAFitEachAreClean) {
    const Assembly assembly = ReadExample();
    const int leftOpen = CountWindows("SolutionsList");
    for (int session = 0; session < 10; ++session) {
        plugin.Execute0();
        Choose(assembly);
        EnterQuickSearch();
        ASSERT_TRUE(Apply());
        EXPECT_THAT(Rows(), SizeIs(20));
        Forget();
        LeaveResults();
        EXPECT_TRUE(IsEnabled(FitDialog(), "applyButton"));
        plugin.Cleanup();
        EXPECT_EQ(CountWindows("StartFit"), 0);
        EXPECT_EQ(CountWindows("SolutionsList"), leftOpen);
    }
    EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(Lifecycle, SolutionsAndTheirDialogOutliveTheSession) {
    const Assembly assembly = ReadExample();
    plugin.Execute0();
    Choose(assembly);
    EnterQuickSearch();
    ASSERT_TRUE(Apply());
    plugin.Cleanup();
    ASSERT_TRUE(ResultsDialog());
    EXPECT_THAT(Rows(), SizeIs(20));
    SelectRank("01");
    Press(ResultsDialog(), "buildButton");
    EXPECT_THAT(BuiltClumps(), SizeIs(1));

    plugin.Execute0();
    QWidget *dialog = FitDialog();
    EXPECT_TRUE(dialog->isEnabled());
    LeaveResults();
    EXPECT_FALSE(ResultsDialog());
    EXPECT_TRUE(dialog->isEnabled());
}

TEST_F(Lifecycle, CleanupDuringAFitCancelsIt) {
    const Assembly assembly = ReadExample();
    plugin.Execute0();
    Choose(assembly);
    EnterQuickSearch();
    const int endedFits = CountWindows("Progress");
    const DuringAFit cleanUp([&] {
        plugin.Cleanup();
        EXPECT_FALSE(FitDialog());
    });
    EXPECT_FALSE(Apply());
    EXPECT_TRUE(cleanUp.Done());
    Settle();
    EXPECT_FALSE(ProgressDialog());
    EXPECT_EQ(CountWindows("StartFit"), 0);
    EXPECT_EQ(CountWindows("Progress"), endedFits);

    plugin.Execute0();
    Choose(assembly);
    EnterQuickSearch();
    EXPECT_TRUE(Apply());
    LeaveResults();
}

TEST_F(Lifecycle, CleanupWhileAFileDialogIsOpenLeavesItToTheUser) {
    const Assembly assembly = ReadExample();
    plugin.Execute0();
    Choose(assembly);
    EnterQuickSearch();
    Forget();
    ASSERT_TRUE(Apply());
    for (int round = 0; round < 2; ++round) {
        bool cleaned = false;
        const Meanwhile cleanUp([&] {
            cleaned = QApplication::activeModalWidget();
            if (cleaned)
                plugin.Cleanup();
            return cleaned;
        });
        Save(Path("results.txt"));
        EXPECT_TRUE(cleaned);
    }
    Load(Path("results.txt"));
    EXPECT_THAT(Rows(), SizeIs(20));
}

TEST_F(Lifecycle, ASessionBegunDuringTheLastFitOfAnEndedOneIsItsOwn) {
    const Assembly assembly = ReadExample();
    plugin.Execute0();
    Choose(assembly);
    EnterQuickSearch();
    QWidget *next = nullptr;
    const DuringAFit restart([&] {
        plugin.Cleanup();
        plugin.Execute0();
        next = FitDialog();
        Choose(assembly);
        EXPECT_FALSE(Apply()) << "the first fit has not ended";
        EXPECT_TRUE(next->isEnabled());
    });
    EXPECT_FALSE(Apply());
    EXPECT_TRUE(restart.Done());
    Settle();
    EXPECT_THAT(Warnings(), ElementsAre("A fit is running already; no other one starts."));
    EXPECT_EQ(FitDialog(), next);
    EXPECT_EQ(CountWindows("StartFit"), 1);
    EnterQuickSearch();
    EXPECT_TRUE(Apply());
}

TEST_F(Lifecycle, ResultsClosedByTheirFrameLeaveTheSetUpDisabled) {
    const Assembly assembly = ReadExample();
    plugin.Execute0();
    Choose(assembly);
    EnterQuickSearch();
    ASSERT_TRUE(Apply());
    CloseByFrame(ResultsDialog());
    EXPECT_FALSE(FitDialog()->isEnabled());
    plugin.Execute0();
    EXPECT_FALSE(FitDialog()->isEnabled());
    plugin.Cleanup();
    plugin.Execute0();
    EXPECT_TRUE(FitDialog()->isEnabled()) << "a new session";
}

TEST_F(Lifecycle, AResultsDialogThatWasLeftOpenIsNotReplaced) {
    const Assembly assembly = ReadExample();
    const int leftOpen = CountWindows("SolutionsList");
    for (const int results : {1, 2}) {
        plugin.Execute0();
        Choose(assembly);
        EnterQuickSearch();
        ASSERT_TRUE(Apply());
        EXPECT_EQ(CountWindows("SolutionsList"), leftOpen + results);
        plugin.Cleanup();
    }
}

TEST_F(Lifecycle, ResultsThatWereLeftOpenDoNoHarmToTheNextFit) {
    const Assembly assembly = ReadExample();
    plugin.Execute0();
    Choose(assembly);
    EnterQuickSearch();
    Forget();
    ASSERT_TRUE(Apply());
    plugin.Cleanup();
    QWidget *leftOpen = ResultsDialog();
    plugin.Execute0();
    Choose(assembly);
    EnterQuickSearch();
    const DuringAFit use([&] {
        ClickRow(ListOf(leftOpen), 0, "01");
        Press(leftOpen, "buildButton");
        Press(leftOpen, "loadButton");
        Press(leftOpen, "doneButton");
    });
    EXPECT_TRUE(Apply());
    EXPECT_TRUE(use.Done());
    EXPECT_THAT(BuiltClumps(), SizeIs(1));
    EXPECT_THAT(Rows(), SizeIs(20));
    EXPECT_THAT(Warnings(), ElementsAre("A fit is running; nothing is loaded."));
}

TEST_F(Lifecycle, CalledDuringAFitTheSetUpIsShownAndStaysDisabled) {
    const Assembly assembly = ReadExample();
    plugin.Execute0();
    Choose(assembly);
    EnterQuickSearch();
    QWidget *dialog = FitDialog();
    const DuringAFit call([&] {
        CloseByFrame(dialog);
        EXPECT_FALSE(FitDialog());
        plugin.Execute0();
        EXPECT_EQ(FitDialog(), dialog);
        EXPECT_FALSE(dialog->isEnabled());
    });
    EXPECT_TRUE(Apply());
    EXPECT_TRUE(call.Done());
}

TEST_F(Lifecycle, ASetUpClosedDuringAFitComesBackWhenItIsCalled) {
    const Assembly assembly = ReadExample();
    plugin.Execute0();
    Choose(assembly);
    EnterQuickSearch();
    const DuringAFit close([] { CloseByFrame(FitDialog()); });
    EXPECT_TRUE(Apply());
    EXPECT_TRUE(close.Done());
    EXPECT_FALSE(FitDialog());
    LeaveResults();
    plugin.Execute0();
    EXPECT_TRUE(FitDialog() && FitDialog()->isEnabled());
}

TEST_F(Lifecycle, EscapeClosesAWindowAsItsFrameDoes) {
    const Assembly assembly = ReadExample();
    plugin.Execute0();
    Choose(assembly);
    EnterQuickSearch();
    const DuringAFit escape([] {
        PressKey(ProgressDialog(), Qt::Key_Escape);
        EXPECT_FALSE(ProgressDialog());
    });
    EXPECT_TRUE(Apply()) << "the fit goes on";
    EXPECT_TRUE(escape.Done());
    PressKey(ResultsDialog(), Qt::Key_Escape);
    EXPECT_FALSE(ResultsDialog());
    EXPECT_FALSE(FitDialog()->isEnabled()) << "the results are not done";
    PressKey(FitDialog(), Qt::Key_Escape);
    EXPECT_TRUE(FitDialog()) << "what is disabled takes no key";
}

namespace {

/// Writes down which windows are raised.
class RaiseWatch : public QObject {
public:
    RaiseWatch() { qApp->installEventFilter(this); }
    bool eventFilter(QObject *object, QEvent *event) override {
        if (event->type() == QEvent::ZOrderChange && static_cast<QWidget *>(object)->isVisible())
            raised.push_back(object->objectName().toStdString());
        return false;
    }

    std::vector<std::string> raised;
};

} // namespace

TEST_F(Lifecycle, EveryWindowIsRaisedWhenItIsShown) {
    const Assembly assembly = ReadExample();
    RaiseWatch watch;
    plugin.Execute0();
    plugin.Execute0();
    EXPECT_THAT(watch.raised, ElementsAre("StartFit", "StartFit"));
    Choose(assembly);
    EnterQuickSearch();
    Forget();
    watch.raised.clear();
    ASSERT_TRUE(Apply());
    EXPECT_THAT(watch.raised, ElementsAre("Progress", "solutionsDialog"));
    LeaveResults();
    watch.raised.clear();
    Press(FitDialog(), "loadButton");
    EXPECT_THAT(watch.raised, ElementsAre("solutionsDialog"));
}

TEST_F(Lifecycle, SaysWhatItDoesInOrder) {
    const Assembly assembly = ReadExample();
    plugin.Execute0();
    Choose(assembly);
    EnterQuickSearch();
    Forget();
    const std::string restraints =
        folder.Write("restraints.txt", ResiduesOf(assembly.target)[5]->GetLabel() + " 1.5 -2 30\n");
    Press(FitDialog(), "restraintfileCheckBox");
    Enter("restraintfileEdit", restraints.c_str());
    messages.Clear();
    Choose(assembly);
    ASSERT_TRUE(Apply());
    SelectRank("02");
    Press(ResultsDialog(), "buildButton");
    Save(Path("results.txt"));
    LeaveResults();
    plugin.Cleanup();
    EXPECT_THAT(messages.Debug(),
                ElementsAre("Selecting target chain", "Selecting density map", "Selecting static residues",
                            "Fit!",
                            "Residue: " + ResiduesOf(assembly.target)[5]->GetLabel() +
                                " should prefer position (   1.500  -2.000  30.000 )",
                            "Residue:  should prefer position (   0.000   0.000   0.000 )", "Points 21",
                            "Extra scores 2", "Solid inclusion distance:  60.000",
                            StartsWith("Solid residues: "), "Built solution 2.", Path("results.txt"),
                            "Morvanex has left the building.", "Fitter cleanup."));
}

TEST_F(Lifecycle, BuildsNothingIntoAModelThatTakesNoAdditions) {
    const Assembly assembly = ReadExample();
    plugin.Execute0();
    Choose(assembly);
    EnterQuickSearch();
    Forget();
    ASSERT_TRUE(Apply());
    SelectRank("01");
    auto *space = VARNO::Space::instance();
    {
        const VARNO::DataAdder<VARNO::Space> ofTheHost(space);
        Press(ResultsDialog(), "buildButton");
    }
    space->SetReadOnly(true);
    Press(ResultsDialog(), "buildButton");
    EXPECT_THAT(BuiltClumps(), IsEmpty());
    space->SetReadOnly(false);
    Press(ResultsDialog(), "buildButton");
    EXPECT_THAT(BuiltClumps(), SizeIs(1));
}
