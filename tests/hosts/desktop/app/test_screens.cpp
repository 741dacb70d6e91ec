#include "Desk.h"

#include "Config.h"
#include "view/SceneView.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDockWidget>
#include <QLabel>
#include <QPainter>
#include <QPalette>
#include <QPushButton>
#include <QTreeWidget>

#include <tuple>

using namespace desktop;
using namespace VARNO;

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
        const QString file = QString("%1/desktop-%2-%3-%4-%5.png")
                                 .arg(qEnvironmentVariable("MORVANEX_SCREENS"), name, dark ? "dark" : "light")
                                 .arg(size.width())
                                 .arg(100 * window.devicePixelRatio());
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

TEST_P(Screens, ClipNothingOfAnAssembly) {
    Open({Example("1tii_8A.mrc"), Example("1tii_D_displaced.pdb"), Example("1tii.pdb")});
    Click(Child<QWidget>("placeMore"));
    Click(Child<QWidget>("placeAddModel"));
    auto *second = Child<QComboBox>("placeModel2");
    second->setCurrentIndex(second->findText("1tii, chain A"));
    Type(Child<QWidget>("placeCopies"), "0");
    Click(Child<QPushButton>("placeStart"));
    WaitUntil([this] { return Child<QPushButton>("placeStart")->isEnabled(); });
    Save("assembly");
    ExpectNothingClipped();
}

INSTANTIATE_TEST_SUITE_P(EachLook, Screens,
                         testing::Combine(testing::Bool(),
                                          testing::Values(QSize(1024, 768), QSize(1800, 1200))),
                         [](const auto &look) {
                             return std::string(std::get<0>(look.param) ? "Dark" : "Light") +
                                    std::to_string(std::get<1>(look.param).width());
                         });

/// The pictures of the documentation.
class Pictures : public Desk {
protected:
    void Save(const QImage &picture, const char *name) {
        EXPECT_FALSE(picture.isNull());
        const QString screens = qEnvironmentVariable("MORVANEX_SCREENS");
        EXPECT_TRUE(screens.isEmpty() || picture.save(screens + '/' + name));
    }
    void Draw() {
        Finish(); // the window has its size then, and the map its surface
        window.View().FitToView();
        Finish();
    }
    void Finish() {
        WaitUntil([this] { return window.View().IsUpToDate(); });
        Settle();
    }
    /// Looks from nearer by that part of the way.
    void ComeNearer(double share) {
        Viewpoint viewpoint = window.View().GetViewpoint();
        for (std::size_t axis = 0; axis < 3; ++axis)
            viewpoint.position[axis] += share * (viewpoint.focus[axis] - viewpoint.position[axis]);
        window.View().SetViewpoint(viewpoint);
        Finish();
    }
    void OpenTheExample() {
        window.resize(1280, 800);
        Open({Example("1tii_8A.mrc"), Example("1tii_D_displaced.pdb")});
        Draw();
    }
    /// The window with dialogs that stand before it.
    QImage WindowWith(const std::vector<std::pair<QWidget *, QPoint>> &dialogs) {
        QImage picture = window.grab().toImage();
        QPainter painter(&picture);
        for (const auto &[dialog, at] : dialogs) {
            painter.drawPixmap(at, dialog->grab());
            painter.drawRect(QRect(at, dialog->size()));
        }
        return picture;
    }
};

TEST_F(Pictures, OfTheToxinInItsDensity) {
    Open({Example("1tii_8A.mrc"), Example("1tii.pdb")});
    window.resize(1000, 760);
    for (QDockWidget *dock : window.findChildren<QDockWidget *>())
        dock->hide();
    Draw();
    ComeNearer(0.4);
    Save(window.View().Picture(), "desktop-density.png");
}

TEST_F(Pictures, OfThePlaces) {
    OpenTheExample();
    window.GetDocument().SetShown({Top("1tii_D_displaced")}, false);
    Click(Child<QPushButton>("placeStart"));
    WaitUntil([this] { return Child<QPushButton>("placeStart")->isEnabled(); });
    for (int i = 0; i < 4; ++i) {
        Child<QTreeWidget>("places")->setCurrentItem(Child<QTreeWidget>("places")->topLevelItem(i));
        Click(Child<QPushButton>("placeKeep"));
    }
    PressKey(Child<QTreeWidget>("places"), Qt::Key_Down);
    Draw();
    Save(window.grab().toImage(), "desktop-places.png");
}

TEST_F(Pictures, OfTheTutorialsWayWithPlace) {
    OpenTheExample();
    Save(window.grab().toImage(), "tutorial-opened.png");
    Type(Child<QWidget>("placeCopies"), "0");
    Click(Child<QPushButton>("placeStart"));
    WaitUntil([this] { return Child<QPushButton>("placeStart")->isEnabled(); });
    Finish();
    Save(window.grab().toImage(), "tutorial-placed.png");
    Click(Child<QPushButton>("placeKeep"));
    window.GetDocument().SetShown({Top("1tii_D_displaced")}, false);
    Draw();
    ComeNearer(0.1);
    Save(window.View().Picture(), "tutorial-kept.png");
}

TEST_F(Pictures, OfTheTutorialsWayWithThePlugIn) {
    Config::SetUserFile(folder.Write("varno.ini", "[Morvanex]\nOutput=\n"));
    OpenTheExample();
    Choose("Morvanex");
    QWidget *fit = FindNamedWindow("StartFit");
    ASSERT_TRUE(fit);
    ClickNode(ChainOf("1tii_D_displaced", "D"));
    Click(Find<QPushButton>(fit, "moleculeButton"));
    ClickNode(Top("1tii_8A"));
    Click(Find<QPushButton>(fit, "densButton"));
    Type(Find<QWidget>(fit, "recursionSpinBox"), "3");
    Type(Find<QWidget>(fit, "rotstepComboBox"), "20");
    Type(Find<QWidget>(fit, "transstepsComboBox"), "9");
    Type(Find<QWidget>(fit, "transstepComboBox"), "4");
    Save(WindowWith({{fit, {330, 120}}}), "tutorial-set-up.png");
    Click(Find<QPushButton>(fit, "applyButton"));
    QWidget *results = FindNamedWindow("solutionsDialog");
    ASSERT_TRUE(results);
    ClickRow(Find<QTreeWidget>(results, "solutionsListView"), 0, "001");
    Click(Find<QPushButton>(results, "buildButton"));
    window.GetDocument().SetShown({Top("1tii_D_displaced")}, false);
    Draw();
    Save(WindowWith({{results, {4, 310}}}), "tutorial-results.png");
    Click(Find<QPushButton>(results, "doneButton"));
    Settle();
}
