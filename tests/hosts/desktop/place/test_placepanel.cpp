#include "Desk.h"

#include "Atom.h"
#include "Collect.h"
#include "formats/maps/MapFile.h"
#include "hosts/common/PlaceOutput.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QThreadPool>
#include <QTreeWidget>

#include <gmock/gmock.h>

#include <cmath>

using namespace desktop;
using namespace VARNO;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
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
    std::vector<std::string> ColumnOf(int column) {
        std::vector<std::string> texts;
        for (int i = 0; i < Places()->topLevelItemCount(); ++i)
            texts.push_back(Places()->topLevelItem(i)->text(column).toStdString());
        return texts;
    }
    /// Chooses an entry of a combo box by the keyboard.
    void ChooseEntry(const char *name, const QString &entry) {
        auto *choice = Child<QComboBox>(name);
        ASSERT_GE(choice->findText(entry), 0) << entry.toStdString();
        PressKey(choice, Qt::Key_Home);
        for (int i = 0; i < choice->count() && choice->currentText() != entry; ++i)
            PressKey(choice, Qt::Key_Down);
        ASSERT_EQ(choice->currentText(), entry);
    }
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
    EXPECT_EQ(Places()->topLevelItem(0)->text(2), "sure");
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

TEST_F(PlacePanelTest, PlacesCopiesTogetherAndKeepsThemInOneStepThatUndoTakesBack) {
    Type(Child<QWidget>("placeCopies"), "3");
    Search();
    EXPECT_THAT(Verdict(), StartsWith("3 copies placed. 1tii_D_displaced: 3 of 3 copies placed."));
    EXPECT_THAT(ColumnOf(0), ElementsAre("1", "2", "3"));
    EXPECT_THAT(ColumnOf(2), Each("sure"));
    EXPECT_EQ(Places()->selectedItems().size(), 3);
    EXPECT_EQ(Button("placeKeep")->text(), "&Keep these 3 places");
    const std::size_t before = Tops();
    Click(Button("placeKeep"));
    ASSERT_EQ(Tops(), before + 3);
    EXPECT_TRUE(ChainOf("1tii_D_displaced-1", "D"));
    EXPECT_TRUE(ChainOf("1tii_D_displaced-2", "D2"));
    EXPECT_TRUE(ChainOf("1tii_D_displaced-3", "D3"));
    Choose("undo");
    EXPECT_EQ(Tops(), before);
}

TEST_F(PlacePanelTest, PlacesSeveralModelsTogetherAndTellsThemApart) {
    Open({Example("1tii.pdb")});
    Click(Child<QWidget>("placeAddModel"));
    ChooseEntry("placeModel", "1tii_D_displaced");
    ChooseEntry("placeModel2", "1tii, chain A");
    Type(Child<QWidget>("placeCopies"), "0");
    Search();
    EXPECT_THAT(Verdict(),
                StartsWith("6 copies placed, of 2 of 2 models. 1tii_D_displaced: 5 copies placed; "));
    EXPECT_THAT(Verdict(), HasSubstr("1tii-A: 1 copy placed."));
    EXPECT_FALSE(Places()->isColumnHidden(1));
    EXPECT_THAT(ColumnOf(0), ElementsAre("1", "2", "3", "4", "5", "1"));
    EXPECT_EQ(ColumnOf(1)[4], "1tii_D_displaced");
    EXPECT_EQ(ColumnOf(1)[5], "1tii-A");
    ClickRow(Places(), 1, "1tii-A");
    Click(Button("placeKeep"));
    // The chain of the file stands where it belongs.
    EXPECT_LT(RmsdOf(ChainOf("1tii-A-1", "A"), ChainOf("1tii", "A")), 1.0);
}

TEST_F(PlacePanelTest, LeavesOutAModelThatWasAdded) {
    Click(Child<QWidget>("placeAddModel"));
    EXPECT_TRUE(Child<QWidget>("placeRemoveModel")->isVisible());
    Click(Child<QWidget>("placeRemoveModel"));
    Settle();
    EXPECT_FALSE(window.findChild<QWidget *>("placeModel2"));
    EXPECT_FALSE(Child<QWidget>("placeRemoveModel")->isVisible());
}

TEST_F(PlacePanelTest, FindsTheCopiesThatASymmetryRelates) {
    Click(Child<QWidget>("placeMore"));
    Type(Child<QWidget>("placeSymmetry"), "C5");
    Search();
    EXPECT_THAT(Verdict(), StartsWith("Symmetry: C5, of the map: "));
    EXPECT_THAT(Verdict(), HasSubstr("Placed, with a probability above 0.999; 5 places are found"));
    EXPECT_EQ(Places()->selectedItems().size(), 5);
    Click(Button("placeKeep"));
    EXPECT_EQ(Tops(), 7u);
}

TEST_F(PlacePanelTest, TellsTheHandAndAddsTheMirroredMapWhereThatIsTheRightOne) {
    auto *original = static_cast<Grid *>(Top("1tii_8A"));
    const std::string wrong = folder.File("wrong.mrc");
    formats::WriteMap(wrong, *hosts::Mirrored(*original, "wrong"), "wrong hand");
    Open({QString::fromStdString(wrong)});
    ChooseEntry("placeMap", "wrong");
    Click(Child<QWidget>("placeMore"));
    Click(Child<QWidget>("placeHands"));
    Search();
    EXPECT_THAT(Verdict(), StartsWith("The map is mirrored (with a probability above 0.999)"));
    auto *mirrored = static_cast<Grid *>(Top("wrong-mirrored"));
    EXPECT_TRUE(std::ranges::equal(mirrored->Values(), original->Values()));
    EXPECT_TRUE(window.GetDocument().IsShown(mirrored));
    EXPECT_FALSE(window.GetDocument().IsShown(Top("wrong")));
    Choose("undo");
    EXPECT_FALSE(mirrored->IsAttached());
}

TEST_F(PlacePanelTest, RefusesInTheCommandsSentencesWhatExcludesOneAnother) {
    struct Case {
        const char *scope, *symmetry;
        bool hands;
        const char *copies, *sentence;
    };
    const char *whole = "in the whole map", *near = "near where it is, in every turn",
               *refine = "refine where it is";
    Click(Child<QWidget>("placeMore"));
    for (
        const auto &[scope, symmetry, hands, copies, sentence] : {
            Case{refine, "none", true, "1",
                 "“refine where it is” and “the mirrored map too” exclude one another"},
            Case{refine, "C5", false, "1", "“refine where it is” and “Symmetry” exclude one another"},
            Case{whole, "C5", true, "1", "“the mirrored map too” and “Symmetry” exclude one another"},
            Case{near, "none", false, "2",
                 "“near where it is, in every turn” is of the places of one model, and not for copies or "
                 "several models"},
            Case{refine, "none", false, "0",
                 "“refine where it is” is of the places of one model, and not for copies or several models"},
            Case{
                whole, "none", true, "2",
                "“the mirrored map too” is of the places of one model, and not for copies or several models"},
            Case{whole, "C5", false, "2",
                 "“Symmetry” is of the places of one model, and not for copies or several models"},
            Case{
                whole, "X7", false, "1",
                "“Symmetry”: X7 is not auto, Cn or Dn with n from 2 to 60, T, O, I, H or H:RISE,TWIST in Å and "
                "degrees"},
        }) {
        ChooseEntry("placeScope", scope);
        Type(Child<QWidget>("placeSymmetry"), symmetry);
        if (Child<QAbstractButton>("placeHands")->isChecked() != hands)
            Click(Child<QWidget>("placeHands"));
        Type(Child<QWidget>("placeCopies"), copies);
        Click(Button("placeStart"));
        EXPECT_EQ(Verdict(), std::string("No search: ") + sentence + '.');
        EXPECT_TRUE(Button("placeStart")->isEnabled());
        EXPECT_FALSE(Button("placeKeep")->isEnabled());
    }
}

TEST_F(PlacePanelTest, RefusesAModelThatIsGivenTwice) {
    Click(Child<QWidget>("placeAddModel"));
    Click(Button("placeStart"));
    EXPECT_EQ(Verdict(),
              "No search: “Model”: 1tii_D_displaced is given twice; ask for two copies of it instead.");
}

TEST_F(PlacePanelTest, SaysThatNoResidueIsSureEnough) {
    Click(Child<QWidget>("placeMore"));
    Click(Child<QWidget>("placeLeaveOut"));
    Type(Child<QWidget>("placeMinPlddt"), "100");
    Click(Button("placeStart"));
    EXPECT_EQ(Verdict(),
              "No search: 1tii_D_displaced: chains D: no residue reaches the confidence asked for.");
}

TEST_F(PlacePanelTest, StepsThroughThePlacesByTheArrowKeys) {
    Search();
    Places()->setFocus();
    PressKey(Places(), Qt::Key_Down);
    EXPECT_EQ(Places()->currentItem(), Places()->topLevelItem(1));
}

TEST_F(PlacePanelTest, KeepsNoMoreInSightThanItNeeds) {
    for (const char *name : {"placeMap", "placeModel", "placeCopies", "placeResolution"})
        EXPECT_TRUE(Child<QWidget>(name)->isVisible()) << name;
    for (const char *name : {"placeScope", "placeSymmetry", "placeHands", "placeInvert", "placeRemoveModel"})
        EXPECT_FALSE(Child<QWidget>(name)->isVisible()) << name;
    Click(Child<QWidget>("placeMore"));
    for (const char *name : {"placeScope", "placeSymmetry", "placeHands", "placeInvert"})
        EXPECT_TRUE(Child<QWidget>(name)->isVisible()) << name;
    EXPECT_FALSE(Child<QWidget>("placeProgress")->isVisible());
    EXPECT_FALSE(Button("placeKeep")->isEnabled());
}

TEST_F(PlacePanelTest, StaysAliveAndIsCancelledWhileItSearches) {
    Open({Example("1tii.pdb")});
    auto *model = Child<QComboBox>("placeModel");
    model->setCurrentIndex(model->findText("1tii"));
    // As on a machine with one processor.
    QThreadPool &shared = *QThreadPool::globalInstance();
    const int threads = shared.maxThreadCount();
    shared.setMaxThreadCount(1);
    Click(Button("placeStart"));
    EXPECT_FALSE(Button("placeStart")->isEnabled());
    Click(Button("placeCancel"));
    WaitUntil([this] { return Button("placeStart")->isEnabled(); });
    shared.setMaxThreadCount(threads);
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

TEST_F(PlacePanelTest, PlacesCopiesOfAModelThatLeavesMeanwhile) {
    Type(Child<QWidget>("placeCopies"), "2");
    Click(Button("placeStart"));
    window.GetDocument().Remove(window.GetDocument().Tops());
    window.GetDocument().UndoStack().clear();
    WaitUntil([this] { return Button("placeCancel")->isEnabled() == false; });
    EXPECT_THAT(Verdict(), StartsWith("2 copies placed"));
    Click(Button("placeKeep"));
    EXPECT_EQ(Tops(), 2u);
    Choose("undo");
    EXPECT_EQ(Tops(), 0u);
}

TEST_F(PlacePanelTest, EndsWithTheWindowWhileItSearches) {
    Click(Button("placeStart"));
}
