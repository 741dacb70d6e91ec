#include "Desk.h"

#include "Collect.h"
#include "DataMaker.h"

#include <QClipboard>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPlainTextEdit>

#include <gmock/gmock.h>

using namespace desktop;
using namespace VARNO;
using testing::ElementsAre;
using testing::HasSubstr;

using MainWindowTest = Desk;

namespace {

std::vector<std::string> NamesOf(const Document::Nodes &nodes) {
    std::vector<std::string> names;
    for (const Compound *node : nodes)
        names.push_back(node->GetName());
    return names;
}

} // namespace

TEST_F(MainWindowTest, OpensTheFileThatItsDialogIsGiven) {
    const FileDialogAnswer answer(Example("1tii.pdb"));
    Choose("open");
    WaitForFiles();
    EXPECT_EQ(answer.name, "openDialog");
    EXPECT_THAT(NamesOf(window.GetDocument().Tops()), ElementsAre("1tii"));
}

TEST_F(MainWindowTest, OpensSeveralFilesThatAreDropped) {
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(Example("1tii_8A.mrc")), QUrl::fromLocalFile(Example("1tii.pdb"))});
    QDragEnterEvent enter({10, 10}, Qt::CopyAction, &files, Qt::LeftButton, {});
    QApplication::sendEvent(&window, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop({10, 10}, Qt::CopyAction, &files, Qt::LeftButton, {});
    QApplication::sendEvent(&window, &drop);
    WaitForFiles();
    EXPECT_THAT(NamesOf(window.GetDocument().Tops()), ElementsAre("1tii_8A", "1tii"));
    EXPECT_TRUE(window.GetDocument().IsShown(Top("1tii_8A")));
}

TEST_F(MainWindowTest, SaysInOneDialogWhichFilesCannotBeReadAndWhy) {
    const std::string noise = folder.Write("noise.pdb", "no structure\n");
    const BoxAnswer answer(QMessageBox::Ok);
    Open({QString::fromStdString(noise), Example("1tii.pdb"),
          QString::fromStdString(folder.File("absent.mrc"))});
    EXPECT_EQ(answer.name, "errorBox");
    EXPECT_THAT(answer.text, HasSubstr(noise + ": is neither PDB"));
    EXPECT_THAT(answer.text, HasSubstr(folder.File("absent.mrc") + ": cannot be read: No such file"));
    EXPECT_THAT(NamesOf(window.GetDocument().Tops()), ElementsAre("1tii"));
}

TEST_F(MainWindowTest, RemembersTheFilesThatWereOpenedLast) {
    Open({Example("1tii_8A.mrc"), Example("1tii.pdb")});
    window.GetDocument().Clear();
    auto *recent = Child<QMenu>("recentFiles");
    ASSERT_GE(recent->actions().size(), 2);
    EXPECT_EQ(recent->actions()[0]->text(), Example("1tii.pdb"));
    EXPECT_EQ(recent->actions()[1]->text(), Example("1tii_8A.mrc"));
    recent->actions()[1]->trigger();
    WaitForFiles();
    EXPECT_THAT(NamesOf(window.GetDocument().Tops()), ElementsAre("1tii_8A"));
}

TEST_F(MainWindowTest, SelectsForThePlugInsWhatIsClickedInTheTree) {
    Open({Example("1tii.pdb")});
    ClickNode(ChainOf("1tii", "D"));
    std::vector<Compound *> chains;
    GetPeptides(Space::instance(), chains, false);
    EXPECT_THAT(chains, ElementsAre(ChainOf("1tii", "D")));
    ClickNode(ChainOf("1tii", "F"), Qt::ControlModifier);
    EXPECT_EQ(window.GetDocument().Selection().size(), 2u);
}

TEST_F(MainWindowTest, RemovesTheSelectionAndUndoesThatByTheKeyboard) {
    Open({Example("1tii.pdb")});
    Compound *chain = ChainOf("1tii", "D");
    ClickNode(chain);
    Choose("remove");
    EXPECT_FALSE(chain->IsAttached());
    Choose("undo");
    EXPECT_TRUE(chain->IsAttached());
    EXPECT_TRUE(Rows()->IndexOf(chain).isValid());
}

TEST_F(MainWindowTest, FindsAResidueAndSelectsIt) {
    Open({Example("1tii.pdb")});
    auto *search = Child<QLineEdit>("modelSearch");
    Type(search, "chain d");
    PressKey(search, Qt::Key_Return);
    EXPECT_THAT(window.GetDocument().Selection(), ElementsAre(ChainOf("1tii", "D")));
}

TEST_F(MainWindowTest, ShowsCopiesAndClearsWhatWasSaid) {
    qWarning("a warning of a plug-in");
    qDebug("a note");
    auto *messages = Child<QPlainTextEdit>("messages");
    const std::string text = messages->toPlainText().toStdString();
    EXPECT_THAT(text, testing::ContainsRegex("..:..:..  Warning: a warning of a plug-in"));
    EXPECT_THAT(text, testing::ContainsRegex("..:..:..  Note: a note"));
    Click(Child<QWidget>("copyMessages"));
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), text);
    Click(Child<QWidget>("clearMessages"));
    EXPECT_TRUE(messages->toPlainText().isEmpty());
}

TEST_F(MainWindowTest, ShowsTheWarningsOfAReader) {
    const std::string file = folder.Write(
        "x.pdb", "ATOM      1  CA AALA A   1       0.000   0.000   0.000  1.00 20.00           C\n"
                 "ATOM      2  CA BALA A   1       1.000   0.000   0.000  1.00 20.00           C\n");
    Open({QString::fromStdString(file)});
    EXPECT_THAT(Child<QPlainTextEdit>("messages")->toPlainText().toStdString(),
                HasSubstr(file + ": 1 atom of other alternate locations left out"));
}

TEST_F(MainWindowTest, AsksBeforeItLosesAMoleculeThatNoFileHolds) {
    Open({Example("1tii.pdb")});
    EXPECT_TRUE(window.close());
    window.show();
    DataMaker::makeMolecule(DataMaker::makeClump("built"), "built");
    {
        const BoxAnswer answer(QMessageBox::Cancel);
        EXPECT_FALSE(window.close());
        EXPECT_EQ(answer.name, "unsavedBox");
        EXPECT_THAT(answer.text, HasSubstr("built"));
    }
    const BoxAnswer answer(QMessageBox::Discard);
    EXPECT_TRUE(window.close());
}

TEST_F(MainWindowTest, SavesTheSelectedChainAndOpensItAgain) {
    Open({Example("1tii.pdb")});
    ClickNode(ChainOf("1tii", "D"));
    const std::string file = folder.File("D.cif");
    const FileDialogAnswer answer(QString::fromStdString(file));
    Choose("save");
    ASSERT_EQ(answer.name, "saveDialog");
    Open({QString::fromStdString(file)});
    std::vector<Compound *> saved, atoms;
    GetAtoms(Top("D"), saved, true);
    GetAtoms(ChainOf("1tii", "D"), atoms, true);
    ASSERT_EQ(saved.size(), atoms.size());
    for (std::size_t i = 0; i < atoms.size(); ++i)
        EXPECT_EQ(saved[i]->GetPosition(), atoms[i]->GetPosition());
}

TEST_F(MainWindowTest, SaysWhyAFileCannotBeWritten) {
    Open({Example("1tii.pdb")});
    const FileDialogAnswer file(QString::fromStdString(folder.File("absent/D.cif")));
    const BoxAnswer answer(QMessageBox::Ok);
    Choose("save");
    EXPECT_THAT(answer.text, HasSubstr("absent"));
}

TEST_F(MainWindowTest, HasAHintWhereThereIsNothingYet) {
    EXPECT_TRUE(Child<QLabel>("sceneHint")->isVisible());
    EXPECT_THAT(Child<QLabel>("placeVerdict")->text().toStdString(),
                HasSubstr("Open a map and a model first"));
    EXPECT_FALSE(Child<QWidget>("placeStart")->isEnabled());
}
