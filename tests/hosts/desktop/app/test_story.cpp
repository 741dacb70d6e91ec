#include "Desk.h"

#include "Collect.h"
#include "Config.h"
#include "view/SceneView.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>

#include <gmock/gmock.h>

using namespace desktop;
using namespace VARNO;
using testing::StartsWith;

namespace {

/// The whole way from the files to the saved model, by mouse and keys.
class StoryTest : public Desk {
protected:
    void OpenTheExample() {
        for (const char *file : {"1tii_8A.mrc", "1tii_D_displaced.pdb"}) {
            const FileDialogAnswer answer(Example(file));
            Choose("open");
            WaitForFiles();
            ASSERT_TRUE(answer.asked);
        }
    }

    /// How many pixels of the view show something.
    int CountDrawn() {
        WaitUntil([this] { return window.View().IsUpToDate(); });
        const QImage picture = window.View().Picture();
        const QRgb background = picture.pixel(0, 0);
        int count = 0;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                count += picture.pixel(x, y) != background;
        return count;
    }

    /// Saves the node by the menu, opens the file again, and compares the atoms.
    void SaveAndOpenAgain(Compound *node) {
        ClickNode(node);
        const QString file = QString::fromStdString(folder.File("saved.cif"));
        {
            const FileDialogAnswer answer(file);
            Choose("save");
        }
        Open({file});
        std::vector<Compound *> built, saved;
        GetAtoms(node, built, true);
        GetAtoms(Top("saved"), saved, true);
        ASSERT_EQ(saved.size(), built.size());
        ASSERT_GT(saved.size(), 700u);
        for (std::size_t i = 0; i < saved.size(); ++i) {
            EXPECT_EQ(saved[i]->GetName(), built[i]->GetName());
            for (unsigned axis = 0; axis < 3; ++axis)
                EXPECT_NEAR(double(saved[i]->GetPosition()[axis]), double(built[i]->GetPosition()[axis]),
                            6e-4);
        }
    }
};

} // namespace

TEST_F(StoryTest, OfPlacing) {
    OpenTheExample();
    EXPECT_GT(CountDrawn(), 1000);
    Choose("place");
    Click(Child<QPushButton>("placeStart"));
    WaitUntil([this] { return Child<QPushButton>("placeStart")->isEnabled(); });
    EXPECT_THAT(Child<QLabel>("placeVerdict")->text().toStdString(), StartsWith("Placed"));
    const QImage first = window.View().Picture();
    PressKey(Child<QTreeWidget>("places"), Qt::Key_Down);
    EXPECT_NE(window.View().Picture(), first);
    Click(Child<QPushButton>("placeKeep"));
    SaveAndOpenAgain(Top("1tii_D_displaced-2"));
}

TEST_F(StoryTest, OfThePlugIn) {
    // Every fit empties its log file: there is to be none in the working folder.
    Config::SetUserFile(folder.Write("varno.ini", "[Morvanex]\nOutput=\n"));
    OpenTheExample();
    Choose("Morvanex");
    QWidget *fit = FindNamedWindow("StartFit");
    ASSERT_TRUE(fit);
    ClickNode(ChainOf("1tii_D_displaced", "D"));
    Click(Find<QPushButton>(fit, "moleculeButton"));
    ClickNode(Top("1tii_8A"));
    Click(Find<QPushButton>(fit, "densButton"));
    Type(Find<QWidget>(fit, "recursionSpinBox"), "1");
    Type(Find<QWidget>(fit, "rotstepComboBox"), "30");
    Type(Find<QWidget>(fit, "transstepsComboBox"), "3");
    Type(Find<QWidget>(fit, "keepComboBox"), "20");
    Click(Find<QPushButton>(fit, "applyButton"));
    QWidget *results = FindNamedWindow("solutionsDialog");
    ASSERT_TRUE(results);
    const int before = CountDrawn();
    const Viewpoint viewpoint = window.View().GetViewpoint();
    ClickRow(Find<QTreeWidget>(results, "solutionsListView"), 0, "01");
    Click(Find<QPushButton>(results, "buildButton"));
    Compound *built = window.GetDocument().Tops().back();
    EXPECT_THAT(built->GetName(), StartsWith("MVX_"));
    EXPECT_NE(window.View().GetViewpoint().position, viewpoint.position);
    EXPECT_NE(CountDrawn(), before);
    Click(Find<QPushButton>(results, "doneButton"));
    Settle();
    SaveAndOpenAgain(built);
}
