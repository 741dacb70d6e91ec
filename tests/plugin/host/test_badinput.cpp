#include "HostTest.h"

#include "TestData.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

/// What a user can type, or pick in a file dialog, by mistake.
class BadInput : public HostTest {
protected:
    BadInput() {
        plugin.Execute0();
        Choose(example);
        EnterQuickSearch();
    }

    void RefusesWith(const std::string &beginning) {
        EXPECT_FALSE(Apply());
        EXPECT_THAT(Warnings(), ElementsAre(StartsWith(beginning)));
        EXPECT_TRUE(FitDialog()->isEnabled());
        EXPECT_EQ(CountMaps("GridFix"), 0) << "nothing is touched";
    }

    Assembly example = ReadExample();
};

TEST_F(BadInput, RotationStepThatIsNoAngle) {
    for (const char *text : {"0", "ten", "", "-10", "nan", "inf"}) {
        messages.Clear();
        Enter("rotstepComboBox", text);
        RefusesWith("The rotation step is ");
    }
}

TEST_F(BadInput, RotationStepTooSmallToGetAnywhere) {
    for (const auto &[text, beginning] :
         {std::pair("1e-9", "The fit would try "),
          std::pair("1e-300", "The rotation step of 1e-300 degrees is too small")}) {
        messages.Clear();
        Enter("rotstepComboBox", text);
        RefusesWith(beginning);
    }
}

TEST_F(BadInput, NinetyNineLevelsOfRecursion) {
    Enter("recursionSpinBox", "99");
    RefusesWith("The fit would try ");
}

TEST_F(BadInput, MoreTranslationsThanAFitCanTry) {
    for (const char *text : {"100000", "2147483647"}) {
        messages.Clear();
        Enter("transstepsComboBox", text);
        RefusesWith("The fit would try ");
    }
}

TEST_F(BadInput, TranslationsThatAreNoNumberCountAsOne) {
    Enter("transstepsComboBox", "many");
    Forget();
    EXPECT_TRUE(Apply());
    EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(BadInput, KeepCountsBelowOneKeepNothing) {
    for (const char *text : {"-5", "many", "", "0"}) {
        Enter("keepComboBox", text);
        Forget();
        ASSERT_TRUE(Apply());
        EXPECT_THAT(Rows(), IsEmpty());
        LeaveResults();
    }
    EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(BadInput, ALogThatCannotBeWrittenIsLost) {
    Press(FitDialog(), "logfileCheckBox");
    for (const std::string &file : {Path("absent/poses.log"), folder.Path(), std::string()}) {
        Enter("logfileEdit", file.c_str());
        ASSERT_TRUE(Apply());
        EXPECT_THAT(Rows(), SizeIs(20));
        LeaveResults();
    }
}

TEST_F(BadInput, RestraintsThatCannotBeReadAreNone) {
    ASSERT_TRUE(Apply());
    Save(Path("morvx.lst"));
    LeaveResults();
    Press(FitDialog(), "restraintfileCheckBox");
    for (const std::string &file :
         {Path("absent.txt"), folder.Path(), Path("morvx.lst"), SourceFolder() + "/examples/1tii_8A.mrc"}) {
        messages.Clear();
        Enter("restraintfileEdit", file.c_str());
        ASSERT_TRUE(Apply());
        EXPECT_THAT(messages.Debug(), testing::Contains("Extra scores 1"));
        LeaveResults();
    }
}

TEST_F(BadInput, AResultsFileOfAnotherFormatIsReadAsFarAsItGoes) {
    ASSERT_TRUE(Apply());
    for (const char *file : {"1tii_8A.mrc", "1tii.pdb", "fit.sh"})
        Load(SourceFolder() + "/examples/" + file);
    Load(folder.Write("cif", "data_1TII\n_entry.id 1TII\n"));
    EXPECT_THAT(Rows(), IsEmpty());
    ASSERT_THAT(Warnings(), Not(IsEmpty()));
    EXPECT_THAT(Warnings().back(), testing::HasSubstr("skipped 2 lines with fewer than eight words"));
}

/// Picks something in the file dialog that comes up, which does not take it, and then gives up.
class PickThenCancel {
public:
    explicit PickThenCancel(const std::string &path)
        : m_meanwhile([this, path] {
            auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
            if (!dialog || !dialog->isVisible())
                return false;
            auto *buttons = Find<QDialogButtonBox>(dialog, "buttonBox");
            if (picked) {
                Click(buttons->button(QDialogButtonBox::Cancel));
                return true;
            }
            auto *edit = Find<QLineEdit>(dialog, "fileNameEdit");
            edit->setCompleter(nullptr);
            Type(edit, path.c_str());
            Click(buttons->buttons().front());
            picked = true;
            return false;
        }) {}

    bool picked = false;

private:
    Meanwhile m_meanwhile;
};

TEST_F(BadInput, AFolderIsNoResultsFileNorIsWhatIsNotThere) {
    ASSERT_TRUE(Apply());
    for (const auto &[button, path] :
         {std::pair("saveButton", folder.Path()), std::pair("loadButton", folder.Path()),
          std::pair("loadButton", Path("absent.txt"))}) {
        const PickThenCancel answer(path);
        Press(ResultsDialog(), button);
        EXPECT_TRUE(answer.picked);
    }
    EXPECT_THAT(Rows(), IsEmpty()) << "loading was cancelled";
    EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(BadInput, ResultsInAFolderThatDoesNotExistAreNotSaved) {
    ASSERT_TRUE(Apply());
    Save(Path("absent/results.txt"));
    EXPECT_THAT(Warnings(), ElementsAre(StartsWith(Path("absent/results.txt"))));
    EXPECT_THAT(Rows(), SizeIs(20));
}

TEST_F(BadInput, BuildingThePlaceholderBuildsNothing) {
    Forget();
    Press(FitDialog(), "loadButton");
    EXPECT_THAT(Rows(), ElementsAre(Row{"New Item", ""}));
    SelectRank("New Item");
    Press(ResultsDialog(), "buildButton");
    EXPECT_THAT(BuiltClumps(), IsEmpty());
    EXPECT_THAT(Warnings(), ElementsAre(StartsWith("There is no solution of rank")));
}
