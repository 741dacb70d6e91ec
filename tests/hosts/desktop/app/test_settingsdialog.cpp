#include "Gui.h"
#include "TemporaryFolder.h"
#include "app/SettingsDialog.h"

#include "Config.h"

#include <QDialogButtonBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace desktop;
using testing::HasSubstr;
using VARNO::Config;

namespace {

class SettingsDialogTest : public testing::Test {
protected:
    SettingsDialogTest() {
        Config::SetUserFile(
            folder.Write("varno.ini", "[Other]\nkey=a,b\\c\n[Morvanex]\n; a comment\nAxis = 3\n"));
        dialog.emplace(nullptr);
        dialog->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&*dialog));
    }

    QLineEdit *Field(const char *key) { return Find<QLineEdit>(&*dialog, key); }
    void Press(QDialogButtonBox::StandardButton button) {
        Click(Find<QDialogButtonBox>(&*dialog, "settingsButtons")->button(button));
    }

    TemporaryFolder folder;
    std::optional<SettingsDialog> dialog;
};

} // namespace

TEST_F(SettingsDialogTest, ShowsTheUsersValuesAndTheDefaults) {
    EXPECT_EQ(Field("Axis")->text(), "3");
    EXPECT_EQ(Field("RotationStep")->text(), "");
    EXPECT_EQ(Field("RotationStep")->placeholderText(), "10.0");
}

TEST_F(SettingsDialogTest, WritesWhatIsTypedAndLeavesAllElse) {
    Type(Field("Axis"), "");
    Type(Field("TransStep"), "2.5");
    Type(Field("Output"), "a,b.log");
    Press(QDialogButtonBox::Ok);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(ReadFile(folder.File("varno.ini")),
              "[Other]\nkey=a,b\\c\n[Morvanex]\nTransStep=2.5\nOutput=a,b.log\n; a comment\n");
    EXPECT_EQ(Config::GetSetting("Morvanex", "Output").ToString(), "a,b.log");
    EXPECT_EQ(Config::GetSetting("Morvanex", "Axis").ToInt(), 2);
}

TEST_F(SettingsDialogTest, RefusesWhatIsNoValueAndSaysWhich) {
    Type(Field("Axis"), "2.5");
    Type(Field("RotationStep"), "0");
    std::string text;
    const Meanwhile answer([&] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box || !box->isVisible())
            return false;
        text = box->text().toStdString();
        Click(box->button(QMessageBox::Ok));
        return true;
    });
    Press(QDialogButtonBox::Ok);
    EXPECT_EQ(text, "Axis: \"2.5\" is no whole number\nRotationStep: \"0\" is less than 0.01");
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_THAT(ReadFile(folder.File("varno.ini")), HasSubstr("Axis = 3"));
}

TEST_F(SettingsDialogTest, ChangesNothingWhenItIsCancelled) {
    Type(Field("Axis"), "5");
    Press(QDialogButtonBox::Cancel);
    EXPECT_THAT(ReadFile(folder.File("varno.ini")), HasSubstr("Axis = 3"));
}
