#include "StartFit.h"

#include "DialogTest.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>

#include <limits>

using testing::ElementsAre;

class Configuration : public DialogTest {
protected:
    std::vector<std::string> Entries(const QComboBox *box) {
        std::vector<std::string> entries;
        for (int i = 0; i < box->count(); ++i)
            entries.push_back(box->itemText(i).toStdString());
        return entries;
    }

    StartFit dialog;
};

TEST_F(Configuration, ShippedSettingsFillParametersAndControls) {
    dialog.GetConfig();
    EXPECT_EQ(Axis, 2);
    EXPECT_EQ(gammaStep, 0.17453292519943295);
    EXPECT_EQ(TCount, 5);
    EXPECT_EQ(Step, 5.0);
    EXPECT_EQ(dialog.recursionSpinBox->value(), 2);
    EXPECT_EQ(dialog.rotstepComboBox->currentText(), "10.0");
    EXPECT_EQ(dialog.rotstepComboBox->currentIndex(), 2);
    EXPECT_EQ(dialog.transstepComboBox->currentText(), "5.0");
    EXPECT_EQ(dialog.transstepsComboBox->currentText(), "5");
    EXPECT_EQ(dialog.keepComboBox->currentText(), "100");
    EXPECT_EQ(dialog.logfileEdit->text(), "morvanex.log");
}

TEST_F(Configuration, OutputAndTopListAffectTheControlsOnly) {
    dialog.GetConfig();
    EXPECT_EQ(top_size, 0);
    EXPECT_TRUE(em_fname.isNull());
    EXPECT_TRUE(re_fname.isNull());
    EXPECT_FALSE(logging || restraints);
}

TEST_F(Configuration, RestraintsFileIsTheResultsListOfTheUsersDirectory) {
    Configure("Output=/var/log/poses.log\n");
    dialog.GetConfig();
    EXPECT_EQ(dialog.logfileEdit->text(), "/var/log/poses.log");
    EXPECT_EQ(dialog.restraintfileEdit->text().toStdString(), VARNO::Config::GetPersonalDir() + "/morvx.lst");
}

TEST_F(Configuration, CombosHaveTheirFixedEntries) {
    dialog.GetConfig();
    EXPECT_THAT(Entries(dialog.rotstepComboBox), ElementsAre("1.0", "5.0", "10.0", "15.0"));
    EXPECT_THAT(Entries(dialog.transstepComboBox), ElementsAre("1.0", "5.0", "10.0", "15.0"));
    EXPECT_THAT(Entries(dialog.transstepsComboBox), ElementsAre("3", "4", "5", "10", "15"));
    EXPECT_THAT(Entries(dialog.keepComboBox), ElementsAre("10", "100", "1000", "5000"));
}

TEST_F(Configuration, TextThatIsNoEntryStandsInTheFieldAlone) {
    Configure("RotationStep=10\nTransStep=7.5\nTopList=250\n");
    dialog.GetConfig();
    EXPECT_EQ(gammaStep, 0.17453292519943295);
    EXPECT_EQ(dialog.rotstepComboBox->currentText(), "10");
    EXPECT_EQ(dialog.transstepComboBox->currentText(), "7.5");
    EXPECT_EQ(dialog.keepComboBox->currentText(), "250");
    EXPECT_EQ(dialog.rotstepComboBox->count(), 4);
    EXPECT_EQ(dialog.rotstepComboBox->findText("10"), -1);
    dialog.GetSettings();
    EXPECT_EQ(gammaStep, 0.17453292519943295);
    EXPECT_EQ(Step, 7.5);
    EXPECT_EQ(top_size, 250);
}

TEST_F(Configuration, TextThatIsAnEntrySelectsIt) {
    Configure("RotationStep=15.0\nTransStep=1.0\nTransNum=10\nTopList=5000\n");
    dialog.GetConfig();
    EXPECT_EQ(dialog.rotstepComboBox->currentIndex(), 3);
    EXPECT_EQ(dialog.transstepComboBox->currentIndex(), 0);
    EXPECT_EQ(dialog.transstepsComboBox->currentIndex(), 3);
    EXPECT_EQ(dialog.keepComboBox->currentIndex(), 3);
}

TEST_F(Configuration, ConfiguredTextReplacesWhatTheUserTyped) {
    dialog.GetConfig();
    dialog.rotstepComboBox->setEditText("3");
    dialog.GetConfig();
    EXPECT_EQ(dialog.rotstepComboBox->currentText(), "10.0");
}

TEST_F(Configuration, DepthBeyondTheSpinBoxIsKeptUntilTheFirstFit) {
    Configure("Axis=120\n");
    dialog.GetConfig();
    EXPECT_EQ(dialog.recursionSpinBox->value(), 99);
    EXPECT_EQ(Axis, 120);
    dialog.GetSettings();
    EXPECT_EQ(Axis, 99);
}

TEST_F(Configuration, MalformedSettingsReadAsZeroAndShowAsTheyStand) {
    Configure("Axis=deep\nRotationStep=ten\nTransNum=2.5\nTransStep=\n");
    dialog.GetConfig();
    EXPECT_EQ(Axis, 0);
    EXPECT_EQ(gammaStep, 0.0);
    EXPECT_EQ(TCount, 0);
    EXPECT_EQ(Step, 0.0);
    EXPECT_EQ(dialog.rotstepComboBox->currentText(), "ten");
    EXPECT_EQ(dialog.transstepsComboBox->currentText(), "2.5");
    EXPECT_EQ(dialog.transstepComboBox->currentText(), "");
}

TEST_F(Configuration, ConfiguredStepsAreReadInSinglePrecision) {
    Configure("RotationStep=0.1\nTransStep=0.1\n");
    dialog.GetConfig();
    EXPECT_EQ(gammaStep, double(0.1f) * 3.141592653589793 / 180.0);
    EXPECT_EQ(Step, double(0.1f));
}

TEST_F(Configuration, TypedStepsAreReadInDoublePrecision) {
    dialog.GetConfig();
    Type(dialog.rotstepComboBox, "0.1");
    Type(dialog.transstepComboBox, "0.1");
    dialog.GetSettings();
    EXPECT_EQ(gammaStep, 0.1 * 3.141592653589793 / 180.0);
    EXPECT_EQ(Step, 0.1);
}

TEST_F(Configuration, ATranslationCountWithADecimalPointReadsAsZero) {
    Configure("TransNum=5.0\n");
    dialog.GetConfig();
    EXPECT_EQ(TCount, 0);
    EXPECT_EQ(dialog.transstepsComboBox->currentText(), "5.0");
    EXPECT_EQ(TextOf(dialog.selectedTotalLabel), "0");
    TCount = 7;
    dialog.GetSettings();
    EXPECT_EQ(TCount, 0);
}

TEST_F(Configuration, SettingsAreWhatTheUserTyped) {
    dialog.GetConfig();
    dialog.show();
    Type(dialog.recursionSpinBox, "3");
    Type(dialog.rotstepComboBox, "7.5");
    Type(dialog.transstepComboBox, "2.25");
    Type(dialog.transstepsComboBox, "4");
    Type(dialog.keepComboBox, "42");
    Click(dialog.logfileCheckBox);
    Type(dialog.logfileEdit, "/tmp/poses.log");
    Click(dialog.restraintfileCheckBox);
    Type(dialog.restraintfileEdit, "/tmp/restraints.txt");
    dialog.GetSettings();
    EXPECT_EQ(Axis, 3);
    EXPECT_EQ(gammaStep, 7.5 * 3.141592653589793 / 180.0);
    EXPECT_EQ(Step, 2.25);
    EXPECT_EQ(TCount, 4);
    EXPECT_EQ(top_size, 42);
    EXPECT_TRUE(logging);
    EXPECT_EQ(em_fname, "/tmp/poses.log");
    EXPECT_TRUE(restraints);
    EXPECT_EQ(re_fname, "/tmp/restraints.txt");
}

TEST_F(Configuration, TypingIsNotCompletedToAnEntry) {
    dialog.GetConfig();
    dialog.show();
    Type(dialog.keepComboBox, "1");
    Type(dialog.transstepsComboBox, "1");
    dialog.GetSettings();
    EXPECT_EQ(top_size, 1);
    EXPECT_EQ(TCount, 1);
}

TEST_F(Configuration, FileNamesAreCopiedWhetherOrNotTheyAreUsed) {
    dialog.GetConfig();
    dialog.GetSettings();
    EXPECT_FALSE(logging || restraints);
    EXPECT_EQ(em_fname, "morvanex.log");
    EXPECT_EQ(re_fname.toStdString(), VARNO::Config::GetPersonalDir() + "/morvx.lst");
}

TEST_F(Configuration, TextThatDoesNotConvertReadsAsZero) {
    dialog.GetConfig();
    for (QComboBox *box :
         {dialog.rotstepComboBox, dialog.transstepComboBox, dialog.transstepsComboBox, dialog.keepComboBox})
        Type(box, "many");
    dialog.GetSettings();
    EXPECT_EQ(gammaStep, 0.0);
    EXPECT_EQ(Step, 0.0);
    EXPECT_EQ(TCount, 0);
    EXPECT_EQ(top_size, 0);
}

TEST_F(Configuration, ShowsTheCountsOfAxesAndPoses) {
    struct Row {
        const char *depth, *degrees, *translations, *axes, *total;
    };
    dialog.GetConfig();
    for (const Row &row : {Row{"0", "10.0", "5", "6", "27000"}, Row{"1", "15.0", "3", "21", "13608"},
                           Row{"2", "5.0", "10", "81", "5832000"}, Row{"0", "10", "4", "6", "13824"},
                           Row{"0", "7", "1", "6", "308"}}) {
        Type(dialog.recursionSpinBox, row.depth);
        Type(dialog.rotstepComboBox, row.degrees);
        Type(dialog.transstepsComboBox, row.translations);
        EXPECT_EQ(TextOf(dialog.selectedAxlesLabel), row.axes);
        EXPECT_EQ(TextOf(dialog.selectedTotalLabel), row.total);
    }
}

TEST_F(Configuration, CountsWriteNoParameter) {
    dialog.GetConfig();
    Type(dialog.recursionSpinBox, "4");
    Type(dialog.transstepsComboBox, "15");
    EXPECT_EQ(Axis, 2);
    EXPECT_EQ(TCount, 5);
}

TEST_F(Configuration, CountsFollowEachOfTheirControlsAndNoOther) {
    dialog.GetConfig();
    dialog.selectedTotalLabel->setText("unchanged");
    Type(dialog.transstepComboBox, "3");
    Type(dialog.keepComboBox, "3");
    EXPECT_EQ(TextOf(dialog.selectedTotalLabel), "unchanged");
    for (const auto &change : std::initializer_list<std::function<void()>>{
             [&] { dialog.recursionSpinBox->stepUp(); }, [&] { Type(dialog.rotstepComboBox, "20"); },
             [&] { dialog.rotstepComboBox->setCurrentIndex(0); },
             [&] { Type(dialog.transstepsComboBox, "7"); }}) {
        dialog.selectedTotalLabel->setText("unchanged");
        change();
        EXPECT_NE(TextOf(dialog.selectedTotalLabel), "unchanged");
    }
}

TEST_F(Configuration, CountsSaturate) {
    dialog.GetConfig();
    Type(dialog.recursionSpinBox, "99");
    EXPECT_EQ(TextOf(dialog.selectedAxlesLabel), std::to_string(std::numeric_limits<int>::max()));
    Type(dialog.transstepsComboBox, "100000");
    EXPECT_EQ(TextOf(dialog.selectedTotalLabel), std::to_string(std::numeric_limits<std::int64_t>::max()));
    Type(dialog.rotstepComboBox, "0");
    EXPECT_EQ(TextOf(dialog.selectedTotalLabel), std::to_string(std::numeric_limits<std::int64_t>::max()));
    Type(dialog.transstepsComboBox, "none");
    EXPECT_EQ(TextOf(dialog.selectedTotalLabel), "0");
}
