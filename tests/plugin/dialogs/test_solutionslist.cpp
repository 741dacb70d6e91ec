#include "SolutionsList.h"

#include "DialogTest.h"

#include <QBoxLayout>
#include <QFileDialog>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTreeWidget>

#include <filesystem>

#include <sys/stat.h>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace {

const std::string comment = "# w Rx Ry Rz Tx Ty Tz score [extra scores...]\n";
const std::string lineOf41 = "  1.00   0.00   0.00   0.00  12.50   0.00   0.00    41.208\n";
const std::string lineOf7 = "  1.00   0.00   0.00   0.00   1.00   0.00   0.00     7.000\n";

} // namespace

class SolutionsListTest : public DialogTest {
protected:
    SolutionsListTest() { dialog.show(); }

    std::vector<std::string> Column(int column) const {
        std::vector<std::string> texts;
        for (int row = 0; row < dialog.solutionsListView->topLevelItemCount(); ++row)
            texts.push_back(dialog.solutionsListView->topLevelItem(row)->text(column).toStdString());
        return texts;
    }
    void SortBy(int column, Qt::SortOrder order) {
        dialog.solutionsListView->setSortingEnabled(true);
        dialog.solutionsListView->sortByColumn(column, order);
    }
    void FillWith(int count) {
        for (int i = 1; i <= count; ++i)
            Solutions.push_back(Scored(i));
        update_list(Solutions, &dialog);
    }

    void Load(const std::string &path) { ClickAndAnswer(dialog.loadButton, QString::fromStdString(path)); }
    void Save(const std::string &path) { ClickAndAnswer(dialog.saveButton, QString::fromStdString(path)); }
    static void ClickAndAnswer(QPushButton *button, const QString &path) {
        const FileDialogAnswer answer(path);
        Click(button);
        EXPECT_TRUE(answer.asked);
    }

    SolutionsList dialog;
};

TEST_F(SolutionsListTest, HasItsSlotsInOrderAndOneSignal) {
    EXPECT_THAT(MethodsOf(SolutionsList::staticMetaObject, QMetaMethod::Slot),
                ElementsAre("languageChange()", "build()", "done()", "load()", "save()"));
    EXPECT_THAT(MethodsOf(SolutionsList::staticMetaObject, QMetaMethod::Signal), ElementsAre("isDone()"));
}

TEST_F(SolutionsListTest, HasItsNamesAndTexts) {
    EXPECT_EQ(dialog.objectName(), "solutionsDialog");
    EXPECT_EQ(dialog.windowTitle(), "Morvanex Results");
    EXPECT_FALSE(dialog.isModal());
    EXPECT_EQ(SolutionsList(nullptr, "mine").objectName(), "mine");
    EXPECT_EQ(TextOf(Find<QLabel>(&dialog, "titleLabel")), "Morvanex results");
    for (const auto &[name, text] :
         std::initializer_list<std::pair<const char *, const char *>>{{"buildButton", "Build"},
                                                                      {"loadButton", "Load"},
                                                                      {"saveButton", "Save"},
                                                                      {"doneButton", "Done"}}) {
        EXPECT_EQ(TextOf(Find<QPushButton>(&dialog, name)), text);
        EXPECT_TRUE(Find<QPushButton>(&dialog, name)->isEnabled());
    }
    const auto *view = Find<QTreeWidget>(&dialog, "solutionsListView");
    EXPECT_EQ(view->headerItem()->text(0), "Rank");
    EXPECT_EQ(view->headerItem()->text(1), "Score");
    EXPECT_EQ(view->columnCount(), 2);
    EXPECT_FALSE(view->rootIsDecorated());
}

TEST_F(SolutionsListTest, BeginsWithAPlaceholderRow) {
    EXPECT_THAT(Column(0), ElementsAre("New Item"));
    EXPECT_THAT(Column(1), ElementsAre(""));
}

TEST_F(SolutionsListTest, ContentKeepsItsPlaceAndSize) {
    EXPECT_EQ(SolutionsList().size(), QSize(421, 469).expandedTo(dialog.minimumSizeHint()));
    EXPECT_EQ(dialog.layout(), nullptr);
    EXPECT_EQ(dialog.sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    EXPECT_EQ(dialog.sizePolicy().verticalPolicy(), QSizePolicy::Expanding);
    const auto *content = Find<QWidget>(&dialog, "layout30");
    dialog.resize(700, 700);
    Settle();
    EXPECT_EQ(content->geometry(), QRect(12, 12, 400, 442));
    EXPECT_EQ(content->layout()->contentsMargins(), QMargins(11, 11, 11, 11));
    EXPECT_EQ(content->layout()->itemAt(0)->layout(), dialog.findChild<QVBoxLayout *>("layout2"));
    EXPECT_EQ(content->layout()->itemAt(1)->layout(), dialog.findChild<QVBoxLayout *>("layout28"));
}

TEST_F(SolutionsListTest, ClicksSelectRowsIndependently) {
    FillWith(3);
    ClickRow(dialog.solutionsListView, 0, "1");
    ClickRow(dialog.solutionsListView, 0, "3");
    EXPECT_THAT(dialog.solutionsListView->selectedItems(), SizeIs(2));
    ClickRow(dialog.solutionsListView, 0, "1");
    ASSERT_THAT(dialog.solutionsListView->selectedItems(), SizeIs(1));
    EXPECT_EQ(dialog.solutionsListView->selectedItems().front()->text(0), "3");
}

TEST_F(SolutionsListTest, RanksRunFromTheBackOfTheList) {
    top_size = 10;
    FillWith(3);
    EXPECT_THAT(Column(0), ElementsAre("03", "02", "01"));
    EXPECT_THAT(Column(1), ElementsAre("1", "2", "3"));
}

TEST_F(SolutionsListTest, RanksArePaddedToTheWidthOfTheKeepCount) {
    for (const auto &[keep, rank] :
         std::initializer_list<std::pair<int, const char *>>{{0, "1"}, {9, "1"}, {10, "01"}, {100, "001"}}) {
        Solutions = {Scored(1)};
        top_size = keep;
        update_list(Solutions, &dialog);
        EXPECT_THAT(Column(0), ElementsAre(rank));
    }
}

TEST_F(SolutionsListTest, ScoresAreInGeneralFormat) {
    Solutions = {Scored(1234567), Scored(0.00001), Scored(41.208), Scored(-1.5), Scored(0), Scored(100000)};
    update_list(Solutions, &dialog);
    EXPECT_THAT(Column(1), ElementsAre("1.23457e+06", "1e-05", "41.208", "-1.5", "0", "100000"));
}

TEST_F(SolutionsListTest, EmptyListLeavesNoRow) {
    update_list(Solutions, &dialog);
    EXPECT_THAT(Column(0), IsEmpty());
}

TEST_F(SolutionsListTest, UnpaddedRanksSortAsText) {
    FillWith(11);
    SortBy(0, Qt::AscendingOrder);
    EXPECT_THAT(Column(0), ElementsAre("1", "10", "11", "2", "3", "4", "5", "6", "7", "8", "9"));
}

TEST_F(SolutionsListTest, RanksBeyondTheKeepCountAreWrittenWhole) {
    top_size = 50;
    FillWith(150);
    SortBy(0, Qt::AscendingOrder);
    const auto ranks = Column(0);
    ASSERT_THAT(ranks, SizeIs(150));
    EXPECT_THAT(std::vector(ranks.begin() + 8, ranks.begin() + 13),
                ElementsAre("09", "10", "100", "101", "102"));
}

TEST_F(SolutionsListTest, RowsAddedLaterAreSortedToo) {
    SortBy(1, Qt::DescendingOrder);
    Solutions = {Scored(3), Scored(9), Scored(20)};
    update_list(Solutions, &dialog);
    EXPECT_THAT(Column(1), ElementsAre("9", "3", "20")) << "as texts";
    EXPECT_TRUE(dialog.solutionsListView->isSortingEnabled());
}

TEST_F(SolutionsListTest, HeaderClickSortsByThatColumn) {
    SortBy(0, Qt::AscendingOrder);
    FillWith(3);
    const QHeaderView *header = dialog.solutionsListView->header();
    EXPECT_TRUE(header->sectionsClickable());
    SortBy(1, Qt::AscendingOrder);
    EXPECT_THAT(Column(0), ElementsAre("3", "2", "1"));
}

TEST_F(SolutionsListTest, SavesTheCommentAndOneLinePerSolution) {
    SolutionScore solution = Scored(41.208, 12.5);
    Solutions = {Scored(7, 1), solution};
    messages.Clear();
    Save(folder.File("results.txt"));
    EXPECT_EQ(ReadFile(folder.File("results.txt")), comment + lineOf7 + lineOf41);
    EXPECT_THAT(messages.Debug(), ElementsAre(folder.File("results.txt")));
    EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(SolutionsListTest, SavesTheCommentAloneForAnEmptyList) {
    Save(folder.File("results.txt"));
    EXPECT_EQ(ReadFile(folder.File("results.txt")), comment);
}

TEST_F(SolutionsListTest, SavingReplacesAFileWithoutAsking) {
    folder.Write("results.txt", std::string(10000, 'x'));
    Solutions = {Scored(7, 1)};
    Save(folder.File("results.txt"));
    EXPECT_EQ(ReadFile(folder.File("results.txt")), comment + lineOf7);
}

TEST_F(SolutionsListTest, SaveDialogHasItsNameAndStaysAlive) {
    for (const int count : {1, 2}) {
        const FileDialogAnswer answer{QString()};
        Click(dialog.saveButton);
        EXPECT_EQ(answer.name, "file dialog");
        EXPECT_TRUE(answer.modal);
        EXPECT_FALSE(answer.native);
        EXPECT_FALSE(answer.confirmsOverwrite);
        EXPECT_THAT(dialog.findChildren<QFileDialog *>("file dialog"), SizeIs(count));
    }
}

TEST_F(SolutionsListTest, NoListOfCompletionsOutlivesTheSaveDialog) {
    const std::string path = folder.Write("results.txt", "");
    folder.Write("results.txt.old", "");
    const Meanwhile answer([&path] {
        auto *edit = Find<QLineEdit>(QApplication::activeModalWidget(), "fileNameEdit");
        if (!edit)
            return false;
        Paste(edit, QString::fromStdString(path));
        PressKey(edit, Qt::Key_Return);
        return true;
    });
    Solutions = {Scored(7, 1)};
    Click(dialog.saveButton);
    ASSERT_TRUE(answer.Done());
    EXPECT_EQ(ReadFile(path), comment + lineOf7);
    QTest::qWait(200);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    QSignalSpy done(&dialog, &SolutionsList::isDone);
    Click(dialog.doneButton);
    EXPECT_EQ(done.count(), 1);
}

TEST_F(SolutionsListTest, CancelledSaveWritesNothingAndTellsTheEmptyName) {
    messages.Clear();
    ClickAndAnswer(dialog.saveButton, QString());
    EXPECT_THAT(messages.Debug(), ElementsAre(""));
    EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(SolutionsListTest, SaveThatCannotBeWrittenShowsNothing) {
    Solutions = {Scored(7, 1)};
    Save(folder.File("absent/results.txt"));
    EXPECT_EQ(CountWindows("QMessageBox"), 0);
    EXPECT_THAT(Warnings(), ElementsAre(StartsWith(folder.File("absent/results.txt") + ": ")));
    EXPECT_THAT(Solutions, SizeIs(1));
}

TEST_F(SolutionsListTest, LoadsWhatWasSavedInTheSameOrder) {
    top_size = 100;
    SolutionScore exact = Scored(41.208, 12.5), rounded = Scored(7.00049, 0.004f);
    rounded.extraScores = {10.416, 7.034};
    Solutions = {rounded, exact};
    update_list(Solutions, &dialog);
    Save(folder.File("results.txt"));
    Load(folder.File("results.txt"));
    ASSERT_THAT(Solutions, SizeIs(2));
    EXPECT_EQ(Solutions.front().translation[0], 0.0f);
    EXPECT_EQ(Solutions.front().score, 7.0);
    EXPECT_THAT(Solutions.front().extraScores, ElementsAre(double(10.42f), double(7.03f)));
    EXPECT_EQ(Solutions.back().translation[0], 12.5f);
    EXPECT_THAT(Column(0), ElementsAre("002", "001"));
    EXPECT_THAT(Column(1), ElementsAre("7", "41.208"));
}

TEST_F(SolutionsListTest, LoadsWhatWasSavedHoweverLargeItIs) {
    SolutionScore wide = Scored(7);
    wide.extraScores.assign(2000, 1e30);
    Solutions.assign(1000, wide);
    Save(folder.File("results.txt"));
    EXPECT_GT(std::filesystem::file_size(folder.File("results.txt")), 64u << 20);
    Load(folder.File("results.txt"));
    EXPECT_THAT(Warnings(), IsEmpty());
    ASSERT_THAT(Solutions, SizeIs(1000));
    EXPECT_THAT(Solutions.back().extraScores, SizeIs(2000));
    EXPECT_THAT(Column(1), testing::AllOf(SizeIs(1000), testing::Each("7")));
}

TEST_F(SolutionsListTest, LoadDialogHasItsNameAndPlace) {
    const FileDialogAnswer answer{QString()};
    Click(dialog.loadButton);
    EXPECT_EQ(answer.name, "open file dialogLoad Morvanex result list");
    EXPECT_EQ(answer.title, QFileDialog().windowTitle());
    EXPECT_EQ(answer.directory, "/home");
    EXPECT_THAT(answer.filters, ElementsAre(QString("Morvanex (*)")));
    EXPECT_FALSE(answer.native);
    EXPECT_THAT(dialog.findChildren<QFileDialog *>(), IsEmpty());
}

TEST_F(SolutionsListTest, CancelledLoadEmptiesTheList) {
    FillWith(3);
    ClickAndAnswer(dialog.loadButton, QString());
    EXPECT_THAT(Solutions, IsEmpty());
    EXPECT_THAT(Column(0), IsEmpty());
    EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(SolutionsListTest, LoadReplacesThePlaceholder) {
    Load(folder.Write("results.txt", comment + lineOf41));
    EXPECT_THAT(Column(1), ElementsAre("41.208"));
}

TEST_F(SolutionsListTest, CommentsAreSkippedAnywhere) {
    Load(folder.Write("results.txt", "# one\n" + lineOf7 + "#two\n" + lineOf41 + "# three"));
    EXPECT_THAT(Column(1), ElementsAre("7", "41.208"));
    EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(SolutionsListTest, EmptyLinesEndNothingAndAreSkipped) {
    const std::string file = folder.Write("results.txt", comment + "\n" + lineOf7 + "\n" + lineOf41 + "\n");
    Load(file);
    EXPECT_THAT(Column(1), ElementsAre("7", "41.208"));
    EXPECT_THAT(
        Warnings(),
        ElementsAre(file + ": skipped 3 lines with fewer than eight words, the first of them line 2"));
}

TEST_F(SolutionsListTest, UnreadableNumbersReadAsZero) {
    Load(folder.Write("results.txt", "one two three four five six seven eight\n"));
    ASSERT_THAT(Solutions, SizeIs(1));
    EXPECT_EQ(Solutions.front().score, 0.0);
    EXPECT_THAT(Column(1), ElementsAre("0"));
}

TEST_F(SolutionsListTest, AFileOfAnotherFormatHoldsNothing) {
    Load(folder.Write("model.pdb", "HEADER    HYDROLASE\nEND\n"));
    EXPECT_THAT(Solutions, IsEmpty());
    EXPECT_THAT(Column(0), IsEmpty());
}

TEST_F(SolutionsListTest, AFileThatCannotBeReadEmptiesTheList) {
    FillWith(3);
    const std::string pipe = folder.File("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    Load(pipe);
    EXPECT_THAT(Solutions, IsEmpty());
    EXPECT_THAT(Column(0), IsEmpty());
    EXPECT_EQ(CountWindows("QMessageBox"), 0);
    EXPECT_THAT(Warnings(), ElementsAre(pipe + ": not a regular file"));
}

TEST_F(SolutionsListTest, TwoLoadsShowTheSecond) {
    Load(folder.Write("one.txt", lineOf41));
    Load(folder.Write("two.txt", lineOf7 + lineOf7));
    EXPECT_THAT(Column(1), ElementsAre("7", "7"));
    EXPECT_THAT(Solutions, SizeIs(2));
}

TEST_F(SolutionsListTest, DoneHidesTheDialogFirst) {
    bool visible = true;
    QSignalSpy done(&dialog, &SolutionsList::isDone);
    QObject::connect(&dialog, &SolutionsList::isDone, [&] { visible = dialog.isVisible(); });
    Click(dialog.doneButton);
    EXPECT_EQ(done.count(), 1);
    EXPECT_FALSE(visible);
}

TEST_F(SolutionsListTest, ClosingItByItsFrameIsNotDone) {
    QSignalSpy done(&dialog, &SolutionsList::isDone);
    CloseByFrame(&dialog);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(done.count(), 0);
}

TEST_F(SolutionsListTest, MayBeDeletedWhileItsFileDialogIsOpen) {
    for (const char *button : {"saveButton", "loadButton"}) {
        auto *doomed = new SolutionsList;
        doomed->show();
        const Meanwhile end([&] {
            if (!QApplication::activeModalWidget())
                return false;
            delete doomed;
            return true;
        });
        Solutions = {Scored(7, 1)};
        Click(Find<QPushButton>(doomed, button));
        EXPECT_TRUE(end.Done());
    }
    EXPECT_THAT(Solutions, IsEmpty());
}
