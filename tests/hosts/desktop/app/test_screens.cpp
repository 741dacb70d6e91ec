#include "Desk.h"

#include "view/SceneView.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QPalette>
#include <QPushButton>
#include <QTreeWidget>

#include <tuple>

using namespace desktop;

namespace {

QPalette Dark() {
    QPalette palette(QColor(45, 45, 48), QColor(45, 45, 48));
    palette.setColor(QPalette::Base, QColor(30, 30, 32));
    palette.setColor(QPalette::Text, Qt::white);
    palette.setColor(QPalette::WindowText, Qt::white);
    palette.setColor(QPalette::ButtonText, Qt::white);
    return palette;
}

/// Whether the theme is dark, and the window's size.
using Look = std::tuple<bool, QSize>;

class Screens : public Desk, public testing::WithParamInterface<Look> {
protected:
    Screens() {
        if (std::get<0>(GetParam()))
            QApplication::setPalette(Dark());
        window.resize(std::get<1>(GetParam()));
        Settle();
    }
    ~Screens() override { QApplication::setPalette(m_palette); }

    /// Every text has the room that it asks for, inside of the window.
    void ExpectNothingClipped() {
        for (const QWidget *widget : window.findChildren<QWidget *>()) {
            const bool hasText = qobject_cast<const QAbstractButton *>(widget) ||
                                 qobject_cast<const QLabel *>(widget) ||
                                 qobject_cast<const QComboBox *>(widget);
            if (!hasText || !widget->isVisible() || widget->inherits("QDockWidgetTitleButton"))
                continue;
            const QSize needed = widget->minimumSizeHint();
            EXPECT_GE(widget->width(), needed.width()) << widget->objectName().toStdString();
            EXPECT_GE(widget->height(), needed.height()) << widget->objectName().toStdString();
            EXPECT_TRUE(window.rect().contains(QRect(widget->mapTo(&window, QPoint()), widget->size())))
                << widget->objectName().toStdString();
        }
        EXPECT_EQ(window.size(), std::get<1>(GetParam()));
    }
    /// Saved where MORVANEX_SCREENS names a folder.
    void Save(const QString &name) {
        WaitUntil([this] { return window.View().IsUpToDate(); });
        Settle();
        if (!qEnvironmentVariableIsSet("MORVANEX_SCREENS"))
            return;
        const auto [dark, size] = GetParam();
        const QString file = QString("%1/desktop-%2-%3-%4.png")
                                 .arg(qEnvironmentVariable("MORVANEX_SCREENS"), name, dark ? "dark" : "light")
                                 .arg(size.width());
        EXPECT_TRUE(window.grab().save(file)) << file.toStdString();
    }

private:
    QPalette m_palette = QApplication::palette();
};

} // namespace

TEST_P(Screens, ClipNothingBeforeAnythingIsOpen) {
    Save("empty");
    ExpectNothingClipped();
}

TEST_P(Screens, ClipNothingOfTheExample) {
    Open({Example("1tii_8A.mrc"), Example("1tii_D_displaced.pdb")});
    ClickNode(ChainOf("1tii_D_displaced", "D"));
    Save("example");
    ExpectNothingClipped();
}

TEST_P(Screens, ClipNothingOfThePlaces) {
    Open({Example("1tii_8A.mrc"), Example("1tii_D_displaced.pdb")});
    Click(Child<QPushButton>("placeStart"));
    WaitUntil([this] { return Child<QPushButton>("placeStart")->isEnabled(); });
    Click(Child<QPushButton>("placeKeep"));
    Save("places");
    ExpectNothingClipped();
    Click(Child<QWidget>("placeMore"));
    Save("more");
    ExpectNothingClipped();
}

INSTANTIATE_TEST_SUITE_P(EachLook, Screens,
                         testing::Combine(testing::Bool(),
                                          testing::Values(QSize(1024, 768), QSize(1800, 1200))),
                         [](const auto &look) {
                             return std::string(std::get<0>(look.param) ? "Dark" : "Light") +
                                    std::to_string(std::get<1>(look.param).width());
                         });
