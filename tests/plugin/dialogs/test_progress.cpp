#include "Progress.h"

#include "DialogTest.h"

#include <QBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

using testing::ElementsAre;
using testing::IsEmpty;

class ProgressTest : public DialogTest {};

TEST_F(ProgressTest, HasItsNamesAndTexts) {
    const Progress dialog;
    EXPECT_EQ(dialog.objectName(), "Progress");
    EXPECT_EQ(dialog.windowTitle(), "Morvanex is working...");
    EXPECT_FALSE(dialog.isModal());
    EXPECT_EQ(TextOf(Find<QLabel>(&dialog, "textLabel")), "Fitting in progress... ETA");
    EXPECT_EQ(TextOf(Find<QLabel>(&dialog, "etaLabel")), "N/A");
    EXPECT_EQ(TextOf(Find<QPushButton>(&dialog, "cancelButton")), "Cancel");
    EXPECT_TRUE(Find<QProgressBar>(&dialog, "progressBar"));
    EXPECT_EQ(Progress(nullptr, "mine").objectName(), "mine");
    EXPECT_TRUE(Progress(nullptr, nullptr, true).isModal());
}

TEST_F(ProgressTest, HasTwoSlotsInOrderAndNoSignal) {
    EXPECT_THAT(MethodsOf(Progress::staticMetaObject, QMetaMethod::Slot),
                ElementsAre("languageChange()", "Cancel()"));
    EXPECT_THAT(MethodsOf(Progress::staticMetaObject, QMetaMethod::Signal), IsEmpty());
}

TEST_F(ProgressTest, IsLaidOutInOneColumn) {
    Progress dialog;
    EXPECT_EQ(dialog.size(), QSize(344, 114).expandedTo(dialog.minimumSizeHint()));
    const auto *outer = qobject_cast<QHBoxLayout *>(dialog.layout());
    ASSERT_TRUE(outer);
    EXPECT_EQ(outer->objectName(), "ProgressLayout");
    EXPECT_EQ(outer->contentsMargins(), QMargins(11, 11, 11, 11));
    const auto *column = dialog.findChild<QVBoxLayout *>("layout24");
    ASSERT_TRUE(column);
    EXPECT_EQ(outer->itemAt(0)->layout(), column);
    EXPECT_EQ(column->itemAt(0)->layout(), dialog.findChild<QHBoxLayout *>("layout21"));
    EXPECT_EQ(column->itemAt(1)->widget(), dialog.progressBar);
    EXPECT_EQ(column->itemAt(2)->layout(), dialog.findChild<QHBoxLayout *>("layout22"));
    for (const QLayout *layout : std::initializer_list<const QLayout *>{column, outer})
        EXPECT_EQ(layout->spacing(), 6);
    EXPECT_EQ(dialog.cancelButton->sizePolicy().horizontalPolicy(), QSizePolicy::Fixed);
    EXPECT_EQ(dialog.cancelButton->sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
}

TEST_F(ProgressTest, TheButtonStandsBetweenTwoSpacers) {
    const Progress dialog;
    const auto *row = dialog.findChild<QHBoxLayout *>("layout22");
    ASSERT_TRUE(row && row->count() == 3);
    EXPECT_EQ(row->itemAt(1)->widget(), dialog.cancelButton);
    for (const auto &[place, width] : {std::pair(0, 140), std::pair(2, 150)}) {
        ASSERT_TRUE(row->itemAt(place)->spacerItem());
        EXPECT_EQ(row->itemAt(place)->sizeHint(), QSize(width, 20));
        EXPECT_EQ(row->itemAt(place)->spacerItem()->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    }
}

TEST_F(ProgressTest, CancelOnlyNotesThatItWasPressed) {
    Progress dialog;
    dialog.show();
    EXPECT_FALSE(dialog.cancelled);
    for (int press = 0; press < 3; ++press) {
        Click(dialog.cancelButton);
        EXPECT_TRUE(dialog.cancelled);
        EXPECT_TRUE(dialog.isVisible());
    }
}

TEST_F(ProgressTest, ClosingItByItsFrameCancelsNothing) {
    Progress dialog;
    dialog.show();
    CloseByFrame(&dialog);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_FALSE(dialog.cancelled);
}
