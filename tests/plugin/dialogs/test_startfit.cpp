#include "StartFit.h"

#include "Progress.h"
#include "SolutionsList.h"

#include "DialogTest.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTextDocumentFragment>
#include <QTreeWidget>

using testing::ElementsAre;
using testing::IsEmpty;

class StartFitTest : public DialogTest {
protected:
    StartFitTest() {
        RDialog = nullptr;
        // Every fit empties its log file: there is to be none in the working folder.
        Configure("Output=\n");
        dialog.GetConfig();
        dialog.show();
        // A fit of 1 + 6·5 poses.
        Type(dialog.recursionSpinBox, "0");
        Type(dialog.rotstepComboBox, "70");
        Type(dialog.transstepsComboBox, "1");
    }

    void ChooseTarget() {
        Select({chain});
        Click(dialog.moleculeButton);
    }
    void ChooseMap() {
        Select({map});
        Click(dialog.densButton);
    }
    void ChooseBoth() {
        ChooseTarget();
        ChooseMap();
    }
    void LeaveResults() {
        Click(Find<QPushButton>(FindWindow("SolutionsList"), "doneButton"));
        Settle();
    }

    VARNO::Compound *chain = MakeChain("1abc", "A", 4);
    VARNO::Grid *map = MakeMap("density");
    StartFit dialog;
};

TEST_F(StartFitTest, HasItsSlotsInOrderAndOneSignal) {
    EXPECT_THAT(MethodsOf(StartFit::staticMetaObject, QMetaMethod::Slot),
                ElementsAre("GetConfig()", "languageChange()", "Fit()", "SelectTarget()", "SelectMap()",
                            "SelectSolid()", "ActivateLog()", "updateTransf()", "GetSettings()", "reEnable()",
                            "zipToResults()", "updateLoad()", "ActivateRestraint()", "updateApply()"));
    EXPECT_THAT(MethodsOf(StartFit::staticMetaObject, QMetaMethod::Signal), ElementsAre("exit()"));
}

namespace {

/// Writes down which of its slots run.
class Recorder : public StartFit {
public:
    std::vector<std::string> calls;

    void GetConfig() override { calls.push_back("GetConfig"); }
    void languageChange() override { calls.push_back("languageChange"); }
    void Fit() override { calls.push_back("Fit"); }
    void SelectTarget() override { calls.push_back("SelectTarget"); }
    void SelectMap() override { calls.push_back("SelectMap"); }
    void SelectSolid() override { calls.push_back("SelectSolid"); }
    void ActivateLog() override { calls.push_back("ActivateLog"); }
    void updateTransf() override { calls.push_back("updateTransf"); }
    void GetSettings() override { calls.push_back("GetSettings"); }
    void reEnable() override { calls.push_back("reEnable"); }
    void zipToResults() override { calls.push_back("zipToResults"); }
    void updateLoad() override { calls.push_back("updateLoad"); }
    void ActivateRestraint() override { calls.push_back("ActivateRestraint"); }
    void updateApply() override { calls.push_back("updateApply"); }
};

} // namespace

TEST_F(StartFitTest, ControlsRunTheirSlotsInOrder) {
    Recorder recorder;
    recorder.show();
    recorder.loadButton->setEnabled(true);
    recorder.applyButton->setEnabled(true);
    const auto calls = [&](QWidget *control) {
        recorder.calls.clear();
        Click(control);
        return recorder.calls;
    };
    EXPECT_THAT(calls(recorder.moleculeButton), ElementsAre("SelectTarget", "updateLoad", "updateApply"));
    EXPECT_THAT(calls(recorder.densButton), ElementsAre("SelectMap", "updateApply"));
    EXPECT_THAT(calls(recorder.surfmolButton), ElementsAre("SelectSolid"));
    EXPECT_THAT(calls(recorder.applyButton), ElementsAre("Fit"));
    EXPECT_THAT(calls(recorder.loadButton), ElementsAre("zipToResults"));
    EXPECT_THAT(calls(recorder.logfileCheckBox), ElementsAre("ActivateLog"));
    EXPECT_THAT(calls(recorder.restraintfileCheckBox), ElementsAre("ActivateRestraint"));
    EXPECT_THAT(calls(recorder.helpButton), IsEmpty());
    EXPECT_THAT(calls(recorder.cancelButton), IsEmpty());
    EXPECT_FALSE(recorder.isVisible());
}

TEST_F(StartFitTest, HasItsNamesAndTexts) {
    const StartFit fresh;
    EXPECT_EQ(fresh.objectName(), "StartFit");
    EXPECT_EQ(fresh.windowTitle(), "Morvanex");
    EXPECT_FALSE(fresh.isModal());
    EXPECT_EQ(StartFit(nullptr, "mine").objectName(), "mine");
    for (const auto &[name, text] : std::initializer_list<std::pair<const char *, const char *>>{
             {"moleculeLabel", "Fit this molecule"},
             {"selectedMoleculeLabel", "N/A"},
             {"densLabel", "to this EM density"},
             {"selectedDensLabel", "N/A"},
             {"surfmolLabel", "contacting surface of"},
             {"selectedSurfmolLabel", "N/A"},
             {"recursionLabel", "Recursion"},
             {"axlesLabel", "No. of axles"},
             {"selectedAxlesLabel", "N/A"},
             {"rotstepLabel", "Rotational step"},
             {"transtepLabel", "Translational step"},
             {"totalLabel", "Total transformations:"},
             {"transtepsLabel", "No. of trans. steps"},
             {"selectedTotalLabel", "N/A"},
             {"restraintfileLabel", "Restraints file:"},
             {"keepLabel", "Keep and show top"},
             {"leftoverLabel", "solutions."},
             {"logfileLabel", "Log file:"}}) {
        ASSERT_TRUE(Find<QLabel>(&fresh, name)) << name;
        EXPECT_EQ(TextOf(Find<QLabel>(&fresh, name)), text) << name;
    }
    for (const auto &[name, text] : std::initializer_list<std::pair<const char *, const char *>>{
             {"moleculeButton", "Select"},
             {"densButton", "Select"},
             {"surfmolButton", "Select"},
             {"loadButton", "Load results from disk"},
             {"applyButton", "Apply"},
             {"cancelButton", "Cancel"},
             {"helpButton", "Help"},
             {"restraintfileCheckBox", "Distance restraints from file"},
             {"logfileCheckBox", "Log all solutions"}}) {
        ASSERT_TRUE(Find<QAbstractButton>(&fresh, name)) << name;
        EXPECT_EQ(TextOf(Find<QAbstractButton>(&fresh, name)), text) << name;
    }
    EXPECT_EQ(fresh.keepComboBox->toolTip(),
              "The number of highest-scoring solutions that will be saved and can be built interactively.");
    for (const char *line : {"line1", "line1_3", "line1_2_2", "line1_2_2_2"})
        EXPECT_TRUE(Find<QFrame>(&fresh, line)) << line;
}

TEST_F(StartFitTest, BeginsWithNothingToApplyOrLoad) {
    const StartFit fresh;
    for (const QWidget *widget : std::initializer_list<const QWidget *>{
             fresh.applyButton, fresh.loadButton, fresh.restraintfileLabel, fresh.restraintfileEdit,
             fresh.logfileLabel, fresh.logfileEdit})
        EXPECT_FALSE(widget->isEnabled()) << widget->objectName().toStdString();
    EXPECT_FALSE(fresh.logfileCheckBox->isChecked() || fresh.restraintfileCheckBox->isChecked());
}

TEST_F(StartFitTest, IsLaidOutFromTopToBottom) {
    EXPECT_EQ(StartFit().size(), QSize(397, 537).expandedTo(dialog.minimumSizeHint()));
    EXPECT_EQ(dialog.layout()->objectName(), "StartFitLayout");
    EXPECT_EQ(dialog.layout()->contentsMargins(), QMargins(10, 10, 10, 10));
    int bottom = 0;
    for (const QWidget *widget : std::initializer_list<const QWidget *>{
             dialog.moleculeButton, dialog.densButton, dialog.surfmolButton, dialog.line1_3,
             dialog.loadButton, dialog.line1, dialog.recursionSpinBox, dialog.rotstepComboBox,
             dialog.transstepComboBox, dialog.transstepsComboBox, dialog.restraintfileCheckBox,
             dialog.restraintfileEdit, dialog.line1_2_2_2, dialog.keepComboBox, dialog.logfileCheckBox,
             dialog.logfileEdit, dialog.line1_2_2, dialog.applyButton}) {
        EXPECT_GE(widget->geometry().top(), bottom) << widget->objectName().toStdString();
        bottom = widget->geometry().bottom();
    }
    for (const char *layout : {"layout17", "layout9", "layout2", "layout3", "layout4", "layout42", "layout14",
                               "layout16", "layout15", "layout16_2", "layout19"}) {
        ASSERT_TRUE(dialog.findChild<QLayout *>(layout)) << layout;
        EXPECT_EQ(dialog.findChild<QLayout *>(layout)->contentsMargins(), QMargins()) << layout;
        EXPECT_EQ(dialog.findChild<QLayout *>(layout)->spacing(), 6) << layout;
    }
}

TEST_F(StartFitTest, CountsStandBesideTheirControls) {
    const auto *grid = dialog.findChild<QGridLayout *>("layout14");
    ASSERT_TRUE(grid);
    EXPECT_EQ(grid->itemAtPosition(0, 2)->widget(), dialog.axlesLabel);
    EXPECT_EQ(grid->itemAtPosition(0, 3)->widget(), dialog.selectedAxlesLabel);
    for (const int column : {2, 3}) {
        EXPECT_EQ(grid->itemAtPosition(2, column)->widget(), dialog.totalLabel);
        EXPECT_EQ(grid->itemAtPosition(3, column)->widget(), dialog.selectedTotalLabel);
    }
}

TEST_F(StartFitTest, RowsStayTogetherInALargeDialog) {
    const auto gap = [](const QWidget *upper, const QWidget *lower) {
        return lower->geometry().top() - upper->geometry().bottom();
    };
    const auto gaps = [&] {
        return std::vector{gap(dialog.moleculeButton, dialog.densButton),
                           gap(dialog.transstepComboBox, dialog.transstepsComboBox),
                           gap(dialog.keepComboBox, dialog.logfileCheckBox)};
    };
    const auto asItComesUp = gaps();
    dialog.resize(800, 900);
    Settle();
    EXPECT_EQ(gaps(), asItComesUp);
    EXPECT_EQ(dialog.moleculeButton->y(), 10) << "the margin";
    EXPECT_EQ(dialog.height() - 1 - dialog.applyButton->geometry().bottom(), 10);
    EXPECT_EQ(dialog.selectedMoleculeLabel->x(), dialog.selectedDensLabel->x());
    EXPECT_EQ(dialog.selectedMoleculeLabel->x(), dialog.selectedSurfmolLabel->x());
}

TEST_F(StartFitTest, SelectsTheFirstSelectedChain) {
    VARNO::Compound *second = MakeChain("2xyz", "B", 2);
    Select({second, chain});
    messages.Clear();
    Click(dialog.moleculeButton);
    EXPECT_EQ(m_Target, chain);
    EXPECT_EQ(TextOf(dialog.selectedMoleculeLabel), "1abcA");
    EXPECT_THAT(messages.Debug(), ElementsAre("Selecting target chain"));
    EXPECT_TRUE(dialog.loadButton->isEnabled());
    EXPECT_FALSE(dialog.applyButton->isEnabled());
}

TEST_F(StartFitTest, ShowsTheFirstCharacterOfALongChainIdentifier) {
    Select({MakeChain("7big", "AB2", 1)});
    Click(dialog.moleculeButton);
    EXPECT_EQ(TextOf(dialog.selectedMoleculeLabel), "7bigA");
}

TEST_F(StartFitTest, NamesAreNeverMarkUp) {
    Select({MakeChain("<b>bold</b>", "A", 1)});
    Click(dialog.moleculeButton);
    EXPECT_EQ(dialog.selectedMoleculeLabel->textFormat(), Qt::PlainText);
    EXPECT_EQ(dialog.selectedDensLabel->textFormat(), Qt::PlainText);
}

namespace {

QImage Picture(QWidget &widget) {
    return widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

} // namespace

TEST_F(StartFitTest, ALongNameIsPaintedWithItsMiddleLeftOutAndDoesNotWidenTheDialog) {
    const int width = dialog.width();
    const std::string name =
        "A_fragment_of_the_large_subunit_as_refined_against_both_of_the_maps_and_displaced_b_10";
    ASSERT_EQ(name.size(), 86u);
    Select({MakeChain(name, "A", 1), MakeMap(name, 3)});
    Click(dialog.moleculeButton);
    Click(dialog.densButton);
    Settle();
    EXPECT_EQ(dialog.width(), width);
    EXPECT_LE(dialog.minimumSizeHint().width(), width);
    for (const auto &[label, whole] :
         {std::pair(dialog.selectedMoleculeLabel, name + "A"), std::pair(dialog.selectedDensLabel, name)}) {
        EXPECT_EQ(TextOf(label), whole);
        EXPECT_EQ(label->toolTip().toStdString(), whole);
        QLabel shortened(label->fontMetrics().elidedText(label->text(), Qt::ElideMiddle, label->width()));
        shortened.setTextFormat(Qt::PlainText);
        shortened.resize(label->size());
        EXPECT_TRUE(Picture(*label) == Picture(shortened));
    }
    dialog.resize(1600, dialog.height());
    Settle();
    EXPECT_EQ(dialog.selectedMoleculeLabel->toolTip(), "") << "the whole name is there to be read";
}

TEST_F(StartFitTest, AShortNameHasNoToolTip) {
    ChooseBoth();
    Settle();
    EXPECT_EQ(dialog.selectedMoleculeLabel->toolTip(), "");
    EXPECT_EQ(dialog.selectedDensLabel->toolTip(), "");
}

TEST_F(StartFitTest, TheToolTipOfANameIsNeverMarkUp) {
    const std::string name = "<b>" + std::string(86, 'x') + "</b>";
    Select({MakeMap(name, 3)});
    Click(dialog.densButton);
    Settle();
    EXPECT_EQ(
        QTextDocumentFragment::fromHtml(dialog.selectedDensLabel->toolTip()).toPlainText().toStdString(),
        name);
}

TEST_F(StartFitTest, SeparatorsKeepTheHeightOfTheirFrame) {
    const QFont before = QApplication::font();
    for (const int points : {9, 16, 24}) {
        QFont font = before;
        font.setPointSize(points);
        QApplication::setFont(font);
        StartFit fresh;
        fresh.show();
        for (const QSize &size : {fresh.size(), QSize(1, 1)}) {
            fresh.resize(size);
            Settle();
            for (const QFrame *line : {fresh.line1_3, fresh.line1, fresh.line1_2_2_2, fresh.line1_2_2})
                EXPECT_GE(line->height(), line->frameWidth())
                    << line->objectName().toStdString() << " at " << points << " points";
        }
    }
    QApplication::setFont(before);
}

TEST_F(StartFitTest, SelectsTheFirstSelectedMap) {
    VARNO::Grid *second = MakeMap("other", 3);
    Select({second, map});
    messages.Clear();
    Click(dialog.densButton);
    EXPECT_EQ(m_Map, map);
    EXPECT_EQ(TextOf(dialog.selectedDensLabel), "density");
    EXPECT_THAT(messages.Debug(), ElementsAre("Selecting density map"));
    EXPECT_FALSE(dialog.loadButton->isEnabled() || dialog.applyButton->isEnabled());
}

TEST_F(StartFitTest, SelectsAllResiduesOfTheSelectedChainsAsSolid) {
    VARNO::Compound *second = MakeChain("2xyz", "B", 2);
    Select({second, chain});
    messages.Clear();
    Click(dialog.surfmolButton);
    ASSERT_EQ(m_Solid.size(), 6u);
    EXPECT_EQ(m_Solid.front()->GetParent(), chain);
    EXPECT_EQ(m_Solid.back()->GetParent(), second);
    EXPECT_EQ(TextOf(dialog.selectedSurfmolLabel), "6");
    EXPECT_THAT(messages.Debug(), ElementsAre("Selecting static residues"));
    EXPECT_FALSE(dialog.applyButton->isEnabled() || dialog.loadButton->isEnabled());
}

TEST_F(StartFitTest, TheTargetIsNotLeftOutOfTheSolid) {
    ChooseTarget();
    Click(dialog.surfmolButton);
    EXPECT_EQ(m_Target, chain);
    EXPECT_EQ(m_Solid.size(), 4u);
}

TEST_F(StartFitTest, NothingSelectedShowsNotAvailable) {
    Select({});
    Click(dialog.moleculeButton);
    Click(dialog.densButton);
    Click(dialog.surfmolButton);
    EXPECT_EQ(TextOf(dialog.selectedMoleculeLabel), "N/A");
    EXPECT_EQ(TextOf(dialog.selectedDensLabel), "N/A");
    EXPECT_EQ(TextOf(dialog.selectedSurfmolLabel), "0");
    EXPECT_THAT(m_Solid, IsEmpty());
    EXPECT_FALSE(dialog.applyButton->isEnabled());
    EXPECT_FALSE(dialog.loadButton->isEnabled());
}

TEST_F(StartFitTest, ApplyNeedsTargetAndMapInAnyOrder) {
    ChooseMap();
    EXPECT_FALSE(dialog.applyButton->isEnabled());
    ChooseTarget();
    EXPECT_TRUE(dialog.applyButton->isEnabled());
}

TEST_F(StartFitTest, SelectingNothingClearsAChoice) {
    ChooseBoth();
    Select({});
    Click(dialog.densButton);
    EXPECT_EQ(m_Map, nullptr);
    EXPECT_FALSE(dialog.applyButton->isEnabled());
    EXPECT_TRUE(dialog.loadButton->isEnabled());
    ChooseMap();
    Select({});
    Click(dialog.moleculeButton);
    EXPECT_EQ(m_Target, nullptr);
    EXPECT_EQ(TextOf(dialog.selectedMoleculeLabel), "N/A");
    EXPECT_FALSE(dialog.applyButton->isEnabled());
    EXPECT_FALSE(dialog.loadButton->isEnabled());
}

TEST_F(StartFitTest, SelectingNothingEmptiesTheSolid) {
    Select({chain});
    Click(dialog.surfmolButton);
    Click(dialog.surfmolButton);
    EXPECT_EQ(m_Solid.size(), 4u);
    Select({});
    Click(dialog.surfmolButton);
    EXPECT_EQ(TextOf(dialog.selectedSurfmolLabel), "0");
    EXPECT_THAT(m_Solid, IsEmpty());
}

TEST_F(StartFitTest, CheckBoxesEnableTheirFileFields) {
    dialog.logfileEdit->setText("poses.log");
    Click(dialog.logfileCheckBox);
    EXPECT_TRUE(dialog.logfileLabel->isEnabled() && dialog.logfileEdit->isEnabled());
    EXPECT_FALSE(dialog.restraintfileEdit->isEnabled());
    Click(dialog.logfileCheckBox);
    EXPECT_FALSE(dialog.logfileLabel->isEnabled() || dialog.logfileEdit->isEnabled());
    EXPECT_EQ(dialog.logfileEdit->text(), "poses.log");
    Click(dialog.restraintfileCheckBox);
    EXPECT_TRUE(dialog.restraintfileLabel->isEnabled() && dialog.restraintfileEdit->isEnabled());
    Click(dialog.restraintfileCheckBox);
    EXPECT_FALSE(dialog.restraintfileLabel->isEnabled() || dialog.restraintfileEdit->isEnabled());
}

TEST_F(StartFitTest, HelpDoesNothing) {
    messages.Clear();
    Click(dialog.helpButton);
    EXPECT_TRUE(dialog.isVisible() && dialog.isEnabled());
    EXPECT_EQ(CountWindows("QDialog"), 1);
    EXPECT_THAT(messages.Debug(), IsEmpty());
}

TEST_F(StartFitTest, EnterInAFieldPressesNoButton) {
    Select({chain});
    Click(dialog.restraintfileCheckBox);
    messages.Clear();
    for (QWidget *field : std::initializer_list<QWidget *>{dialog.recursionSpinBox, dialog.rotstepComboBox,
                                                           dialog.keepComboBox, dialog.restraintfileEdit})
        PressKey(field, Qt::Key_Return);
    EXPECT_EQ(m_Target, nullptr);
    EXPECT_THAT(messages.Debug(), IsEmpty());
    EXPECT_TRUE(dialog.isVisible());
}

TEST_F(StartFitTest, AFitOpensItsResultsSortedByRank) {
    ChooseBoth();
    Type(dialog.keepComboBox, "12");
    Click(dialog.applyButton);
    ASSERT_TRUE(RDialog);
    EXPECT_EQ(top_size, 12);
    EXPECT_EQ(Solutions.size(), 12u);
    EXPECT_TRUE(RDialog->isVisible());
    EXPECT_FALSE(dialog.isEnabled());
    const QTreeWidget *view = RDialog->solutionsListView;
    ASSERT_EQ(view->topLevelItemCount(), 12);
    EXPECT_EQ(view->topLevelItem(0)->text(0), "01");
    EXPECT_EQ(view->topLevelItem(11)->text(0), "12");
    EXPECT_EQ(view->sortColumn(), 0);
    LeaveResults();
    EXPECT_TRUE(dialog.isEnabled());
}

TEST_F(StartFitTest, AFitThatCannotRunLeavesNoResults) {
    ChooseBoth();
    Type(dialog.rotstepComboBox, "0");
    Click(dialog.applyButton);
    EXPECT_TRUE(dialog.isEnabled());
    EXPECT_EQ(CountWindows("SolutionsList"), 0);
    EXPECT_EQ(Warnings().size(), 1u);
}

TEST_F(StartFitTest, ACancelledFitLeavesNoResults) {
    ChooseBoth();
    const Meanwhile cancel([] {
        const QWidget *progress = FindWindow("Progress");
        if (progress)
            Click(Find<QPushButton>(progress, "cancelButton"));
        return progress != nullptr;
    });
    Click(dialog.applyButton);
    EXPECT_TRUE(cancel.Done());
    EXPECT_TRUE(dialog.isEnabled());
    EXPECT_EQ(CountWindows("SolutionsList"), 0);
    EXPECT_EQ(CountWindows("Progress"), 0);
}

TEST_F(StartFitTest, IsDisabledWhileAFitRuns) {
    ChooseBoth();
    bool enabled = true, applied = true;
    const Meanwhile look([&] {
        if (!FindWindow("Progress"))
            return false;
        enabled = dialog.isEnabled();
        Click(dialog.applyButton);
        applied = CountWindows("Progress") > 1;
        return true;
    });
    Click(dialog.applyButton);
    EXPECT_TRUE(look.Done());
    EXPECT_FALSE(enabled);
    EXPECT_FALSE(applied);
}

TEST_F(StartFitTest, DoneDeletesTheResultsAndKeepsTheirAddress) {
    ChooseBoth();
    Click(dialog.applyButton);
    ASSERT_TRUE(RDialog);
    const QPointer<SolutionsList> results(RDialog);
    const SolutionsList *address = RDialog;
    LeaveResults();
    EXPECT_TRUE(results.isNull());
    EXPECT_EQ(RDialog, address);
    EXPECT_TRUE(dialog.isEnabled());
    dialog.reEnable();
    EXPECT_TRUE(dialog.isEnabled());
}

TEST_F(StartFitTest, WithoutResultsReEnablingOnlyEnables) {
    RDialog = nullptr;
    dialog.setEnabled(false);
    dialog.reEnable();
    EXPECT_TRUE(dialog.isEnabled());
}

TEST_F(StartFitTest, DoneByKeyDeletesTheResultsToo) {
    ChooseBoth();
    Click(dialog.applyButton);
    ASSERT_TRUE(RDialog);
    const QPointer<SolutionsList> results(RDialog);
    PressKey(RDialog->doneButton, Qt::Key_Space);
    Settle();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(results.isNull());
    EXPECT_TRUE(dialog.isEnabled());
}

TEST_F(StartFitTest, ResultsClosedByTheirFrameLeaveTheDialogDisabled) {
    ChooseBoth();
    Click(dialog.applyButton);
    ASSERT_TRUE(RDialog);
    const QPointer<SolutionsList> results(RDialog);
    CloseByFrame(RDialog);
    Settle();
    EXPECT_FALSE(dialog.isEnabled());
    ASSERT_FALSE(results.isNull());
    EXPECT_FALSE(results->isVisible());
    dialog.show();
    EXPECT_FALSE(dialog.isEnabled());
}

TEST_F(StartFitTest, CancelEmitsExitOncePerFit) {
    ChooseBoth();
    QSignalSpy exits(&dialog, &StartFit::exit);
    Click(dialog.cancelButton);
    EXPECT_EQ(exits.count(), 0);
    EXPECT_FALSE(dialog.isVisible());
    for (const int fits : {1, 2, 3}) {
        dialog.show();
        Click(dialog.applyButton);
        LeaveResults();
        exits.clear();
        Click(dialog.cancelButton);
        EXPECT_EQ(exits.count(), fits);
        EXPECT_FALSE(dialog.isVisible());
    }
}

TEST_F(StartFitTest, FailedFitsAddNoExit) {
    ChooseBoth();
    QSignalSpy exits(&dialog, &StartFit::exit);
    Type(dialog.rotstepComboBox, "0");
    Click(dialog.applyButton);
    Click(dialog.cancelButton);
    EXPECT_EQ(exits.count(), 0);
}

TEST_F(StartFitTest, LoadingOpensAnEmptyResultsDialogSortedByScore) {
    ChooseTarget();
    Type(dialog.keepComboBox, "77");
    Click(dialog.loadButton);
    ASSERT_TRUE(RDialog);
    EXPECT_TRUE(RDialog->isVisible());
    EXPECT_FALSE(dialog.isEnabled());
    const QTreeWidget *view = RDialog->solutionsListView;
    ASSERT_EQ(view->topLevelItemCount(), 1);
    EXPECT_EQ(view->topLevelItem(0)->text(0), "New Item");
    EXPECT_EQ(view->sortColumn(), 1);
    EXPECT_EQ(view->header()->sortIndicatorOrder(), Qt::DescendingOrder);
    EXPECT_EQ(top_size, 0) << "no settings are read for loading";
    LeaveResults();
    EXPECT_TRUE(dialog.isEnabled());
    QSignalSpy exits(&dialog, &StartFit::exit);
    Click(dialog.cancelButton);
    EXPECT_EQ(exits.count(), 0);
}

TEST_F(StartFitTest, RemovedTargetDoesNotStartAFit) {
    ChooseBoth();
    Remove(chain->GetParent()->GetParent());
    Click(dialog.applyButton);
    EXPECT_THAT(Warnings(), ElementsAre("The target is no longer in the model; the fit does not start."));
    EXPECT_TRUE(dialog.isEnabled());
}

TEST_F(StartFitTest, RemovedMapDoesNotStartAFit) {
    ChooseBoth();
    Remove(map);
    Click(dialog.applyButton);
    EXPECT_THAT(Warnings(), ElementsAre("The map is no longer in the model; the fit does not start."));
    EXPECT_TRUE(dialog.isEnabled());
}

TEST_F(StartFitTest, IsDeletedAtOnceWhenIdle) {
    const QPointer<StartFit> other(new StartFit);
    other->DeleteWhenIdle();
    EXPECT_TRUE(other.isNull());
}

TEST_F(StartFitTest, IsDeletedAfterTheFitThatIsRunning) {
    auto *other = new StartFit;
    const QPointer<StartFit> alive(other);
    other->GetConfig();
    other->show();
    ChooseBoth();
    other->updateApply();
    const Meanwhile retire([&] {
        if (!FindWindow("Progress"))
            return false;
        other->DeleteWhenIdle();
        EXPECT_FALSE(alive.isNull());
        return true;
    });
    Click(other->applyButton);
    Settle();
    EXPECT_TRUE(retire.Done());
    EXPECT_TRUE(alive.isNull());
    EXPECT_EQ(CountWindows("Progress"), 0) << "the fit was cancelled";
    EXPECT_EQ(CountWindows("SolutionsList"), 0);
}

TEST_F(StartFitTest, RetiredDuringTheLastAxisItShowsNoResults) {
    auto *other = new StartFit;
    const QPointer<StartFit> alive(other);
    other->GetConfig();
    ChooseBoth();
    Type(other->recursionSpinBox, "0");
    const Meanwhile retire([&] {
        const QWidget *progress = FindWindow("Progress");
        if (!progress || Find<QProgressBar>(progress, "progressBar")->value() < 6)
            return false;
        other->DeleteWhenIdle();
        return true;
    });
    other->Fit();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(retire.Done());
    EXPECT_TRUE(alive.isNull());
    EXPECT_EQ(CountWindows("SolutionsList"), 0);
}
