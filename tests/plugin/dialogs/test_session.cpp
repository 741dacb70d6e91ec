#include "Session.h"

#include "StartFit.h"

#include "DialogTest.h"

#include <QComboBox>
#include <QPointer>
#include <QPushButton>
#include <QSpinBox>

using testing::ElementsAre;

class Session : public DialogTest {
protected:
    static QPointer<StartFit> Dialog() { return qobject_cast<StartFit *>(FindWindow("StartFit", false)); }
};

TEST_F(Session, ShowsADialogWithTheConfiguredParameters) {
    Configure("Axis=3\n");
    const Morvanex session;
    const auto dialog = Dialog();
    ASSERT_TRUE(dialog);
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_FALSE(dialog->isModal());
    EXPECT_EQ(dialog->parent(), nullptr);
    EXPECT_EQ(dialog->objectName(), "StartFit");
    EXPECT_EQ(dialog->recursionSpinBox->value(), 3);
    EXPECT_EQ(Axis, 3);
}

TEST_F(Session, HasNoMetaObjectAndNoNameOfItsOwn) {
    const Morvanex session;
    EXPECT_STREQ(session.metaObject()->className(), "QObject");
    EXPECT_EQ(session.parent(), nullptr);
    EXPECT_TRUE(session.objectName().isEmpty());
}

TEST_F(Session, ReplayShowsTheDialogAsTheUserLeftIt) {
    Morvanex session;
    Type(Dialog()->rotstepComboBox, "12");
    Click(Dialog()->cancelButton);
    EXPECT_FALSE(Dialog()->isVisible());
    Configure("RotationStep=3\n");
    session.replay();
    EXPECT_TRUE(Dialog()->isVisible());
    EXPECT_EQ(Dialog()->rotstepComboBox->currentText(), "12");
    EXPECT_EQ(CountWindows("StartFit"), 1);
}

TEST_F(Session, ReplayBringsAMinimisedDialogBackToItsSize) {
    Morvanex session;
    Settle();
    for (const Qt::WindowStates before : {Qt::WindowNoState, Qt::WindowMaximized}) {
        SetWindowState(Dialog(), before);
        SetWindowState(Dialog(), before | Qt::WindowMinimized);
        ASSERT_TRUE(Dialog()->isMinimized());
        session.replay();
        EXPECT_TRUE(Dialog()->isVisible());
        EXPECT_FALSE(Dialog()->isMinimized());
        EXPECT_EQ(Dialog()->isMaximized(), before == Qt::WindowMaximized);
    }
}

TEST_F(Session, EndDeletesTheDialogAndSaysSo) {
    auto session = std::make_unique<Morvanex>();
    const auto dialog = Dialog();
    messages.Clear();
    session.reset();
    EXPECT_TRUE(dialog.isNull());
    EXPECT_THAT(messages.Debug(), ElementsAre("Morvanex has left the building."));
}

TEST_F(Session, ParametersAndSolutionsOutliveIt) {
    auto session = std::make_unique<Morvanex>();
    Axis = 4;
    Solutions = {Scored(1)};
    session.reset();
    EXPECT_EQ(Axis, 4);
    EXPECT_EQ(Solutions.size(), 1u);
}

TEST_F(Session, EndsFromInsideASignalOfItsDialog) {
    auto session = std::make_unique<Morvanex>();
    const auto dialog = Dialog();
    QObject::connect(dialog->cancelButton, &QPushButton::clicked, [&] { session.reset(); });
    Click(dialog->cancelButton);
    EXPECT_TRUE(dialog.isNull());
}
