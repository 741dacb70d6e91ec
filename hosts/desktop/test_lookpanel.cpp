#include "Desk.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QPushButton>
#include <QSlider>

#include <gmock/gmock.h>

using namespace desktop;
using namespace VARNO;
using testing::StartsWith;

namespace {

class LookPanelTest : public Desk {
protected:
    LookPanelTest() { Open({Example("1tii_8A.mrc"), Example("1tii.pdb")}); }

    MapLook Look() { return window.GetDocument().LookOf(static_cast<Grid *>(Top("1tii_8A"))); }
    ChainLook LookOf(const std::string &chain) {
        return window.GetDocument().LookOfChain(ChainOf("1tii", chain));
    }
};

} // namespace

TEST_F(LookPanelTest, SetsTheLevelByNumberAndBySlider) {
    Type(Child<QDoubleSpinBox>("level"), "4");
    PressKey(Child<QDoubleSpinBox>("level"), Qt::Key_Return);
    EXPECT_DOUBLE_EQ(Look().level, 4);
    EXPECT_EQ(Child<QSlider>("levelSlider")->value(), 80);
    Child<QSlider>("levelSlider")->setValue(30);
    EXPECT_DOUBLE_EQ(Look().level, 1.5);
    EXPECT_DOUBLE_EQ(Child<QDoubleSpinBox>("level")->value(), 1.5);
}

TEST_F(LookPanelTest, TellsTheLevelInTheMapsOwnUnitToo) {
    const formats::MapStatistics statistics =
        window.GetDocument().StatisticsOf(static_cast<Grid *>(Top("1tii_8A")));
    Child<QSlider>("levelSlider")->setValue(0);
    EXPECT_THAT(Child<QLabel>("levelValue")->text().toStdString(),
                StartsWith(QString::number(statistics.mean, 'g', 4).toStdString() + "  (map: "));
}

TEST_F(LookPanelTest, SetsOpacitySurfaceAndSlice) {
    Child<QSlider>("opacity")->setValue(70);
    EXPECT_DOUBLE_EQ(Look().opacity, 0.7);
    Click(Child<QCheckBox>("surface"));
    EXPECT_FALSE(Look().surface);
    EXPECT_FALSE(Child<QSlider>("slice")->isEnabled());
    Child<QComboBox>("sliceAxis")->setCurrentIndex(3);
    EXPECT_EQ(Look().sliceAxis, 2);
    Child<QSlider>("slice")->setValue(250);
    EXPECT_DOUBLE_EQ(Look().slice, 0.25);
}

TEST_F(LookPanelTest, SetsTheColourThatIsChosen) {
    const Meanwhile answer([] {
        auto *dialog = qobject_cast<QColorDialog *>(QApplication::activeModalWidget());
        if (!dialog)
            return false;
        dialog->setCurrentColor(Qt::magenta);
        dialog->accept();
        return true;
    });
    Click(Child<QPushButton>("mapColour"));
    EXPECT_EQ(Look().colour, QColor(Qt::magenta));
}

TEST_F(LookPanelTest, ChangesTheSelectedChainsAloneAndAllWhereNoneIs) {
    ClickNode(ChainOf("1tii", "D"));
    Child<QComboBox>("chainStyle")->setCurrentIndex(1);
    EXPECT_EQ(LookOf("D").style, ChainLook::Style::BallAndStick);
    EXPECT_EQ(LookOf("E").style, ChainLook::Style::Tube);
    Choose("selectNothing");
    Child<QComboBox>("chainColouring")->setCurrentIndex(1);
    EXPECT_FALSE(LookOf("D").rainbow);
    EXPECT_FALSE(LookOf("E").rainbow);
    EXPECT_EQ(LookOf("E").style, ChainLook::Style::Tube);
}

TEST_F(LookPanelTest, TurnsToTheMapThatIsSelected) {
    Open({Example("1tii_8A.mrc")});
    auto *second = static_cast<Grid *>(window.GetDocument().Tops().back());
    ClickNode(second);
    Child<QSlider>("opacity")->setValue(90);
    EXPECT_DOUBLE_EQ(window.GetDocument().LookOf(second).opacity, 0.9);
    EXPECT_NE(Look().opacity, 0.9);
    EXPECT_NE(Look().colour, window.GetDocument().LookOf(second).colour);
}
