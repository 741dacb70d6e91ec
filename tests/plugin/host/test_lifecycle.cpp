#include "HostTest.h"

#include <QComboBox>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

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
