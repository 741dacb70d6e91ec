#include "Desk.h"

#include "Atom.h"
#include "Collect.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>

#include <gmock/gmock.h>

#include <cmath>

using namespace desktop;
using namespace VARNO;
using testing::StartsWith;

namespace {

class PlacePanelTest : public Desk {
protected:
    PlacePanelTest() { Open({Example("1tii_8A.mrc"), Example("1tii_D_displaced.pdb")}); }

    QTreeWidget *Places() { return Child<QTreeWidget>("places"); }
    QPushButton *Button(const char *name) { return Child<QPushButton>(name); }
    std::string Verdict() { return Child<QLabel>("placeVerdict")->text().toStdString(); }

    void Search() {
        Click(Button("placeStart"));
        WaitUntil([this] { return Button("placeStart")->isEnabled(); });
    }
    std::size_t Tops() { return window.GetDocument().Tops().size(); }
};

/// Root mean square distance between the CA atoms of two chains, Å.
double RmsdOf(Compound *first, Compound *second) {
    std::vector<Compound *> a, b;
    GetResidues(first, a, true);
    GetResidues(second, b, true);
    EXPECT_EQ(a.size(), b.size());
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        sum += double((a[i]->GetPosition() - b[i]->GetPosition()).SquaredLength());
    return std::sqrt(sum / double(a.size()));
}

} // namespace

TEST_F(PlacePanelTest, FindsTheExamplesPlacesAndSaysHowSureTheyAre) {
    Search();
    EXPECT_THAT(Verdict(), StartsWith("Placed, with a probability above 0.999; 5 places are found"));
    ASSERT_GE(Places()->topLevelItemCount(), 5);
    EXPECT_EQ(Places()->topLevelItem(0)->text(1), "sure");
    EXPECT_EQ(Places()->currentItem(), Places()->topLevelItem(0));
}

TEST_F(PlacePanelTest, KeepsAPlaceInOneStepThatUndoTakesBack) {
    Search();
    // The example's chain D is one of the five copies.
    Open({Example("1tii.pdb")});
    double least = 1e9;
    for (int i = 0; i < 5; ++i) {
        Places()->setCurrentItem(Places()->topLevelItem(i));
        const std::size_t before = Tops();
        Click(Button("placeKeep"));
        ASSERT_EQ(Tops(), before + 1);
        const std::string name = "1tii_D_displaced-" + std::to_string(i + 1);
        least = std::min(least, RmsdOf(ChainOf(name, "D"), ChainOf("1tii", "D")));
    }
    EXPECT_LT(least, 1.5);
    Choose("undo");
    EXPECT_EQ(Tops(), 3u + 4u);
}

TEST_F(PlacePanelTest, StepsThroughThePlacesByTheArrowKeys) {
    Search();
    Places()->setFocus();
    PressKey(Places(), Qt::Key_Down);
    EXPECT_EQ(Places()->currentItem(), Places()->topLevelItem(1));
}

TEST_F(PlacePanelTest, KeepsNoMoreInSightThanItNeeds) {
    EXPECT_FALSE(Child<QWidget>("placeScope")->isVisible());
    Click(Child<QWidget>("placeMore"));
    EXPECT_TRUE(Child<QWidget>("placeScope")->isVisible());
    EXPECT_FALSE(Child<QWidget>("placeProgress")->isVisible());
    EXPECT_FALSE(Button("placeKeep")->isEnabled());
}

TEST_F(PlacePanelTest, StaysAliveAndIsCancelledWhileItSearches) {
    Open({Example("1tii.pdb")});
    auto *model = Child<QComboBox>("placeModel");
    model->setCurrentIndex(model->findText("1tii"));
    Click(Button("placeStart"));
    EXPECT_FALSE(Button("placeStart")->isEnabled());
    Click(Button("placeCancel"));
    WaitUntil([this] { return Button("placeStart")->isEnabled(); });
    EXPECT_THAT(Verdict(), StartsWith("Cancelled"));
}

TEST_F(PlacePanelTest, SearchesOnWhenMapAndModelAreRemovedAndWhenTheyComeBack) {
    Click(Button("placeStart"));
    window.GetDocument().Remove(window.GetDocument().Tops());
    window.GetDocument().UndoStack().clear();
    WaitUntil([this] { return Button("placeCancel")->isEnabled() == false; });
    EXPECT_THAT(Verdict(), StartsWith("Placed"));
    Click(Button("placeKeep"));
    EXPECT_EQ(Tops(), 1u);
    Open({Example("1tii_8A.mrc")});
    Search();
    EXPECT_THAT(Verdict(), StartsWith("Placed"));
}

TEST_F(PlacePanelTest, EndsWithTheWindowWhileItSearches) {
    Click(Button("placeStart"));
}
