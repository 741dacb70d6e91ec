#include "Desk.h"

#include "Collect.h"
#include "Config.h"

#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTreeWidget>

#include <gmock/gmock.h>

using namespace desktop;
using namespace VARNO;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

class PluginMenuTest : public Desk {
protected:
    PluginMenuTest() {
        Config::SetUserFile(
            folder.Write("varno.ini", "[Morvanex]\nOutput=\nAxis=1\nRotationStep=30\nTransNum=3\n"));
        Open({Example("1tii_8A.mrc"), Example("1tii_D_displaced.pdb")});
        Choose("Morvanex");
        Take("1tii_D_displaced", "moleculeButton");
        Take("1tii_8A", "densButton");
    }

    static QWidget *Fit() { return FindNamedWindow("StartFit"); }
    static QWidget *Results() { return FindNamedWindow("solutionsDialog"); }
    void Take(const std::string &top, const char *button) {
        ClickNode(Top(top));
        Click(Find<QPushButton>(Fit(), button));
    }
    static void Apply() { Click(Find<QPushButton>(Fit(), "applyButton")); }
    static void LeaveResults() {
        Click(Find<QPushButton>(Results(), "doneButton"));
        Settle();
    }
    std::string Messages() { return Child<QPlainTextEdit>("messages")->toPlainText().toStdString(); }
    QUndoStack &Undo() { return window.GetDocument().UndoStack(); }
};

} // namespace

TEST_F(PluginMenuTest, FitsAfterTargetAndMapWereRemovedAndPutBack) {
    window.GetDocument().Remove({Top("1tii_8A"), Top("1tii_D_displaced")});
    Apply();
    EXPECT_FALSE(Results());
    EXPECT_THAT(Messages(), HasSubstr("Warning: The target is no longer in the model"));
    Undo().undo();
    Apply();
    ASSERT_TRUE(Results());
    LeaveResults();
}

TEST_F(PluginMenuTest, RemovesWhatIsRemovedDuringAFitWhenItHasEnded) {
    Compound *target = Top("1tii_D_displaced"), *map = Top("1tii_8A");
    bool attachedMeanwhile = false;
    const Meanwhile removal([&] {
        const auto *bar = Find<QProgressBar>(FindNamedWindow("Progress"), "progressBar");
        if (!FindNamedWindow("Progress"))
            return false;
        (void)bar;
        window.GetDocument().Remove({target, map});
        attachedMeanwhile = target->IsAttached() && map->IsAttached();
        return true;
    });
    Apply();
    EXPECT_TRUE(removal.Done());
    EXPECT_TRUE(attachedMeanwhile);
    EXPECT_FALSE(target->IsAttached());
    EXPECT_FALSE(Rows()->IndexOf(target).isValid());
    if (Results())
        LeaveResults();
    Undo().undo();
    EXPECT_TRUE(target->IsAttached());
    Apply();
    ASSERT_TRUE(Results());
    LeaveResults();
}

TEST_F(PluginMenuTest, BuildsCopiesThatCanBeRemovedAndPutBack) {
    Apply();
    ASSERT_TRUE(Results());
    ClickRow(Find<QTreeWidget>(Results(), "solutionsListView"), 0, "01");
    Click(Find<QPushButton>(Results(), "buildButton"));
    Compound *built = window.GetDocument().Tops().back();
    EXPECT_THAT(built->GetName(), StartsWith("MVX_"));
    EXPECT_TRUE(Rows()->IndexOf(built).isValid());
    window.GetDocument().Remove({built});
    Click(Find<QPushButton>(Results(), "buildButton"));
    Undo().undo();
    EXPECT_TRUE(built->IsAttached());
    LeaveResults();
}

TEST_F(PluginMenuTest, IsCleanedUpWhenTheWindowClosesInTheMiddleOfAFit) {
    const Meanwhile closing([&] {
        if (!FindNamedWindow("Progress"))
            return false;
        EXPECT_TRUE(window.close());
        return true;
    });
    Apply();
    EXPECT_TRUE(closing.Done());
    EXPECT_FALSE(Fit());
    EXPECT_FALSE(Results());
}
