#include "HostTest.h"

#include <QLabel>
#include <QTreeWidget>

#include <cstdlib>

using testing::SizeIs;

namespace {

/// The visible widgets that a dialog lays out itself.
std::vector<QWidget *> LaidOut(const QWidget *parent) {
    std::vector<QWidget *> widgets;
    for (QWidget *child : parent->findChildren<QWidget *>(Qt::FindDirectChildrenOnly))
        if (child->isVisible() && !child->isWindow())
            widgets.push_back(child);
    return widgets;
}

void ExpectReadable(const QWidget *parent) {
    const auto widgets = LaidOut(parent);
    for (std::size_t i = 0; i < widgets.size(); ++i) {
        const QWidget *widget = widgets[i];
        const std::string name = widget->objectName().toStdString();
        EXPECT_TRUE(parent->rect().contains(widget->geometry())) << name << " is clipped";
        EXPECT_GE(widget->width(), widget->minimumSizeHint().width()) << name;
        EXPECT_GE(widget->height(), widget->minimumSizeHint().height()) << name;
        if (const auto *label = qobject_cast<const QLabel *>(widget)) {
            EXPECT_TRUE(widget->width() >= widget->sizeHint().width() || label->toolTip() == label->text())
                << name << " is cut";
        }
        for (std::size_t j = i + 1; j < widgets.size(); ++j)
            EXPECT_FALSE(widget->geometry().intersects(widgets[j]->geometry()))
                << name << " overlaps " << widgets[j]->objectName().toStdString();
    }
}

} // namespace

/// How the dialogs look at work. With the environment variable MORVANEX_SCREENS their pictures are left in
/// the folder that it names.
class Screens : public HostTest {
protected:
    Screens() {
        plugin.Execute0();
        Choose(example);
    }

    static void Grab(QWidget *window, const std::string &name) {
        const char *pictures = std::getenv("MORVANEX_SCREENS");
        EXPECT_TRUE(!pictures || window->grab().save(QString("%1/%2.png").arg(pictures, name.c_str())));
    }

    /// At the size that it comes up with, and larger.
    static void Look(QWidget *window, const std::string &name) {
        Settle();
        ExpectReadable(window);
        Grab(window, name);
        const QSize size = window->size();
        window->resize(size + QSize(220, 160));
        Settle();
        ExpectReadable(window);
        Grab(window, name + "-large");
        window->resize(size);
    }

    Assembly example = ReadExample();
};

TEST_F(Screens, TheSetUpFilledIn) {
    Enter("recursionSpinBox", "3");
    Enter("transstepComboBox", "2.0");
    Enter("transstepsComboBox", "15");
    Press(FitDialog(), "restraintfileCheckBox");
    Enter("restraintfileEdit", "/home/ann/1tii/restraints.txt");
    Press(FitDialog(), "logfileCheckBox");
    Enter("logfileEdit", "/home/ann/1tii/poses.log");
    Look(FitDialog(), "set-up");
}

TEST_F(Screens, TheSetUpHasRoomForTheLargestCountsAndLongNames) {
    Choose("moleculeButton", {MakeChain("A_fragment_of_the_large_subunit_refined_against_two_maps", "A", 1)});
    Enter("recursionSpinBox", "99");
    Enter("transstepsComboBox", "100000");
    Settle();
    EXPECT_EQ(Shown(FitDialog(), "selectedTotalLabel"), "9223372036854775807");
    ExpectReadable(FitDialog());
}

TEST_F(Screens, AFitAtWork) {
    // A log makes the search slow enough for an estimate that is not nil.
    Enter("transstepsComboBox", "7");
    Press(FitDialog(), "logfileCheckBox");
    Enter("logfileEdit", Path("poses.log").c_str());
    const DuringAFit look(
        [] {
            Look(ProgressDialog(), "progress");
            Press(ProgressDialog(), "cancelButton");
        },
        33);
    EXPECT_FALSE(Apply());
    EXPECT_TRUE(look.Done());
}

TEST_F(Screens, TheResultsOfAFit) {
    EnterQuickSearch();
    Enter("keepComboBox", "100");
    Forget();
    ASSERT_TRUE(Apply());
    EXPECT_THAT(Rows(), SizeIs(100));
    SelectRank("001");
    SelectRank("003");
    ExpectReadable(Find<QWidget>(ResultsDialog(), "layout30"));
    Look(ResultsDialog(), "results");
}
