#include "ModelGuard.h"
#include "Scene.h"
#include "Wait.h"
#include "document/Nodes.h"
#include "view/SceneView.h"

#include "DataAdder.h"
#include "DataMaker.h"

#include <QLabel>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QWheelEvent>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace desktop;
using namespace VARNO;

namespace {

/// A view in a window of its own, and what of it is not background.
class SceneViewTest : public testing::Test {
protected:
    SceneViewTest() {
        view.SetDark(true);
        view.resize(400, 300);
        view.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&view));
    }

    /// A chain in one batch, as files and plug-ins add theirs.
    static Compound *AddChain(const std::string &molecule, const std::string &identifier, int residues) {
        const DataAdder<Space> batch(Space::instance());
        return MakeChain(molecule, identifier, residues);
    }

    QImage Settled() {
        WaitUntil([this] { return view.IsUpToDate(); });
        return view.Picture();
    }
    /// Pixels of a picture that satisfy a condition.
    template <class Matches>
    int Count(Matches matches) {
        const QImage picture = Settled();
        int count = 0;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                count += matches(picture.pixelColor(x, y));
        return count;
    }
    /// The box around such pixels.
    template <class Matches>
    QRect PlaceOf(Matches matches) {
        const QImage picture = Settled();
        QRect box;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                if (matches(picture.pixelColor(x, y)))
                    box |= QRect(x, y, 1, 1);
        return box;
    }
    int CountDrawn() {
        return Count([](const QColor &colour) { return colour.value() > 45; });
    }
    static bool IsBlue(const QColor &c) { return c.blue() > c.red() + 40 && c.blue() > c.green() + 40; }
    /// The label of a distance.
    static bool IsLabel(const QColor &c) {
        return c.red() > 180 && c.green() > 110 && c.blue() > 40 && c.blue() < 110;
    }
    static bool IsRed(const QColor &c) { return c.red() > c.green() + 40 && c.red() > c.blue() + 40; }
    static bool IsYellow(const QColor &c) { return c.red() > c.blue() + 40 && c.green() > c.blue() + 40; }

    /// The widget that hears the mouse.
    QWidget *Canvas() { return view.findChild<QWidget *>({}, Qt::FindDirectChildrenOnly); }
    void Drag(Qt::MouseButton button, const QPoint &from, const QPoint &to, Qt::KeyboardModifiers keys = {}) {
        QTest::mousePress(Canvas(), button, keys, from);
        QMouseEvent move(QEvent::MouseMove, to, view.mapToGlobal(to), button, button, keys);
        QApplication::sendEvent(Canvas(), &move);
        QTest::mouseRelease(Canvas(), button, keys, to);
    }

    ModelGuard guard;
    Document document;
    SceneView view{document};
};

} // namespace

TEST_F(SceneViewTest, SaysWhatToDoWhileThereIsNothing) {
    const auto *hint = view.findChild<QLabel *>("sceneHint");
    EXPECT_TRUE(hint->isVisible());
    AddChain("one", "A", 10);
    EXPECT_FALSE(hint->isVisible());
}

TEST_F(SceneViewTest, DrawsAChainFromBlueToRed) {
    AddChain("one", "A", 10);
    view.FitToView();
    EXPECT_GT(Count(IsBlue), 50);
    EXPECT_GT(Count(IsRed), 50);
}

TEST_F(SceneViewTest, DrawsAChainInOneColour) {
    Compound *chain = AddChain("one", "A", 10);
    view.FitToView();
    document.SetLookOfChain(chain, {.rainbow = false, .colour = Qt::red});
    EXPECT_EQ(Count(IsBlue), 0);
    EXPECT_GT(Count(IsRed), 300);
}

TEST_F(SceneViewTest, DrawsAtomsAndBonds) {
    Compound *chain = AddChain("one", "A", 10);
    view.FitToView();
    const int tube = CountDrawn();
    document.SetLookOfChain(chain, {.style = ChainLook::Style::BallAndStick});
    const int balls = CountDrawn();
    EXPECT_GT(balls, 200);
    EXPECT_NE(balls, tube);
}

TEST_F(SceneViewTest, DrawsTheSurfaceOfAMapAtItsLevel) {
    Grid *map = MakeMap("map", 41);
    document.SetShown({map}, true);
    view.FitToView();
    document.SetLook(map, {.level = 1, .opacity = 1});
    const int low = CountDrawn();
    document.SetLook(map, {.level = 6, .opacity = 1});
    const int high = CountDrawn();
    EXPECT_GT(high, 20);
    EXPECT_GT(low, 2 * high);
    document.SetLook(map, {.surface = false});
    EXPECT_EQ(CountDrawn(), 0);
}

TEST_F(SceneViewTest, DrawsASliceThroughAMap) {
    Grid *map = MakeMap("map", 41);
    document.SetShown({map}, true);
    view.FitToView();
    document.SetLook(map, {.surface = false, .sliceAxis = 2});
    EXPECT_GT(CountDrawn(), 100);
}

TEST_F(SceneViewTest, HidesAndRemovesAndPutsBack) {
    Compound *chain = AddChain("one", "A", 10);
    view.FitToView();
    EXPECT_GT(CountDrawn(), 100);
    document.SetShown({chain}, false);
    EXPECT_EQ(CountDrawn(), 0);
    document.SetShown({chain}, true);
    document.Remove({TopOf(chain)});
    EXPECT_EQ(CountDrawn(), 0);
    document.UndoStack().undo();
    EXPECT_GT(CountDrawn(), 100);
}

TEST_F(SceneViewTest, MarksTheSelectionInYellow) {
    Compound *chain = AddChain("one", "A", 10);
    document.SetLookOfChain(chain, {.rainbow = false, .colour = Qt::blue});
    view.FitToView();
    EXPECT_EQ(Count(IsYellow), 0);
    document.Select({Below(chain)[5]});
    const int residue = Count(IsYellow);
    document.Select({chain});
    EXPECT_GT(residue, 10);
    EXPECT_GT(Count(IsYellow), 2 * residue);
    document.Select({});
    EXPECT_EQ(Count(IsYellow), 0);
}

TEST_F(SceneViewTest, PicksTheResidueThatIsClicked) {
    Compound *chain = AddChain("one", "A", 11);
    view.FitTo({chain});
    QSignalSpy picked(&view, &SceneView::picked);
    QTest::mouseClick(Canvas(), Qt::LeftButton, {}, {200, 150});
    ASSERT_EQ(picked.count(), 1);
    // The chain lies along x: its middle is in the middle.
    EXPECT_EQ(picked[0][0].value<Compound *>(), Below(chain)[5]);
    QTest::mouseClick(Canvas(), Qt::LeftButton, Qt::ControlModifier, {200, 20});
    EXPECT_EQ(picked[1][0].value<Compound *>(), nullptr);
    EXPECT_TRUE(picked[1][1].toBool());
}

TEST_F(SceneViewTest, MeasuresTheDistanceOfTwoClicks) {
    Compound *chain = AddChain("one", "A", 11);
    view.FitTo({chain});
    view.SetPerspective(false);
    view.SetMeasuring(true);
    QSignalSpy measured(&view, &SceneView::measured), picked(&view, &SceneView::picked);
    QTest::mouseClick(Canvas(), Qt::LeftButton, {}, {200, 150});
    const double pixelsPerAngstrom = 150 / view.GetViewpoint().scale;
    QTest::mouseClick(Canvas(), Qt::LeftButton, {}, {int(200 + 2 * 3.8 * pixelsPerAngstrom), 150});
    ASSERT_EQ(measured.count(), 1);
    EXPECT_EQ(picked.count(), 0);
    auto *from = measured[0][0].value<Compound *>(), *to = measured[0][1].value<Compound *>();
    EXPECT_EQ(from, Below(chain)[5]);
    EXPECT_EQ(to, Below(chain)[7]);
    EXPECT_NEAR(measured[0][2].toDouble(), 7.6, 1e-4);
}

TEST_F(SceneViewTest, WritesTheDistanceAtTheMiddleOfItsLine) {
    Compound *chain = AddChain("one", "A", 11);
    document.SetLookOfChain(chain, {.rainbow = false, .colour = Qt::blue});
    view.FitTo({chain});
    view.SetPerspective(false);
    view.SetMeasuring(true);
    ASSERT_EQ(Count(IsLabel), 0);
    const double pixelsPerAngstrom = 150 / view.GetViewpoint().scale;
    const int second = int(200 + 4 * 3.8 * pixelsPerAngstrom);
    QTest::mouseClick(Canvas(), Qt::LeftButton, {}, {200, 150});
    QTest::mouseClick(Canvas(), Qt::LeftButton, {}, {second, 150});
    const QRect label = PlaceOf(IsLabel);
    EXPECT_NEAR(label.center().x(), (200 + second) / 2, 4);
    EXPECT_NEAR(label.center().y(), 150, 4);
    EXPECT_GE(label.height(), 8);
    EXPECT_GE(label.width(), 30);
    view.SetMeasuring(false);
    EXPECT_EQ(Count(IsLabel), 0);
}

TEST_F(SceneViewTest, RotatesMovesAndZoomsByTheMouseWithoutSelecting) {
    AddChain("one", "A", 11);
    view.FitToView();
    QSignalSpy picked(&view, &SceneView::picked);
    const Viewpoint start = view.GetViewpoint();
    Drag(Qt::LeftButton, {100, 100}, {160, 120});
    const Viewpoint turned = view.GetViewpoint();
    EXPECT_NE(turned.position, start.position);
    EXPECT_EQ(turned.focus, start.focus);
    Drag(Qt::MiddleButton, {100, 100}, {160, 120});
    EXPECT_NE(view.GetViewpoint().focus, start.focus);
    Drag(Qt::RightButton, {100, 100}, {100, 40});
    EXPECT_LT(view.GetViewpoint().scale, start.scale);
    QWheelEvent wheel({100, 100}, view.mapToGlobal(QPointF(100, 100)), {}, {0, -240}, {}, {},
                      Qt::NoScrollPhase, false);
    const double scale = view.GetViewpoint().scale;
    QApplication::sendEvent(Canvas(), &wheel);
    EXPECT_GT(view.GetViewpoint().scale, scale);
    EXPECT_EQ(picked.count(), 0);
}

TEST_F(SceneViewTest, SeesTheSameFromTheSameViewpoint) {
    AddChain("one", "A", 11);
    view.FitToView();
    const Viewpoint viewpoint = view.GetViewpoint();
    const QImage picture = Settled();
    Drag(Qt::LeftButton, {100, 100}, {200, 150});
    EXPECT_NE(Settled(), picture);
    view.SetViewpoint(viewpoint);
    EXPECT_EQ(Settled(), picture);
}

TEST_F(SceneViewTest, LooksWithoutPerspectiveToo) {
    AddChain("one", "A", 11);
    view.FitToView();
    view.SetPerspective(false);
    EXPECT_FALSE(view.IsPerspective());
    EXPECT_GT(CountDrawn(), 100);
}

TEST_F(SceneViewTest, DrawsAChainAtAnotherPlaceUntilThatIsTakenBack) {
    Compound *chain = AddChain("one", "A", 11);
    view.FitToView();
    const QImage without = Settled();
    view.ShowGhosts({{{chain}, {1, 0, 0, 0, 0, 1, 0, 5, 0, 0, 1, 0, 0, 0, 0, 1}}});
    EXPECT_NE(Settled(), without);
    view.ShowGhosts({});
    EXPECT_EQ(Settled(), without);
}

TEST_F(SceneViewTest, OutlivesAMapThatLeavesWhileItsSurfaceIsMade) {
    Grid *map = MakeMap("map", 151);
    document.SetShown({map}, true);
    document.Remove({map});
    document.UndoStack().clear();
    EXPECT_EQ(CountDrawn(), 0);
}

TEST_F(SceneViewTest, ShowsResiduesThatAreAddedToAChain) {
    Compound *chain = AddChain("one", "A", 3);
    view.FitToView();
    const int before = CountDrawn();
    auto batch = std::make_optional<DataAdder<Space>>(Space::instance());
    Compound *residue = DataMaker::makeGroup(chain, "ALA", "4");
    DataMaker::makeAtom(residue, "C", "CA", "1", Vertex(11.4f, 0, 0, true), 1, "", 0, 0);
    batch.reset();
    EXPECT_GT(CountDrawn(), before);
}
