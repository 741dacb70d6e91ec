#include "Desk.h"

#include "Collect.h"
#include "DataAdder.h"
#include "DataMaker.h"
#include "formats/files/FileError.h"
#include "place/PlaceJson.h"

#include <QComboBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLabel>
#include <QPushButton>
#include <QStandardPaths>
#include <QTreeWidget>

#include <gmock/gmock.h>

#include <sys/wait.h>
#include <unistd.h>

using namespace desktop;
using namespace VARNO;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class SessionTest : public Desk {
protected:
    /// An empty model, as after a new start.
    void StartAnew() {
        window.GetDocument().Clear();
        ASSERT_TRUE(window.GetDocument().Tops().empty());
    }
    void Save(const QString &file) {
        SaveSession(file.toStdString(), window.GetDocument(), window.View(), window.Places());
    }
    /// Of the displaced chain, whose second place is then chosen.
    void PlaceThreeCopies() {
        auto *model = Child<QComboBox>("placeModel");
        model->setFocus();
        PressKey(model, Qt::Key_End);
        ASSERT_EQ(model->currentText(), "1tii_D_displaced");
        Type(Child<QWidget>("placeCopies"), "3");
        Type(Child<QWidget>("placeResolution"), "8");
        Click(Child<QPushButton>("placeStart"));
        WaitUntil([this] { return Child<QPushButton>("placeStart")->isEnabled(); });
        ClickRow(Child<QTreeWidget>("places"), 0, "2");
    }
    std::vector<std::string> RowsOfPlaces() {
        std::vector<std::string> rows;
        const auto *places = Child<QTreeWidget>("places");
        for (int i = 0; i < places->topLevelItemCount(); ++i) {
            QStringList texts;
            for (int column = 0; column < places->columnCount(); ++column)
                texts << places->topLevelItem(i)->text(column);
            rows.push_back(texts.join(' ').toStdString());
        }
        return rows;
    }
    std::string ErrorOf(const std::string &text) {
        try {
            SavedSession(folder.Write("session.json", text));
        } catch (const formats::FileError &error) {
            return error.what();
        }
        return "none";
    }

    QString session = QString::fromStdString(folder.File("session.json"));
};

Compound *MakeBuilt() {
    const DataAdder<Space> batch(Space::instance());
    Compound *molecule = DataMaker::makeMolecule(DataMaker::makeClump("MVX 1/2"), "D");
    Compound *residue = DataMaker::makeGroup(molecule, "ALA", "1");
    DataMaker::makeAtom(residue, "C", "CA", "1", Vertex(1, 2, 3, true), 1, "", 0, 100);
    return molecule;
}

} // namespace

TEST_F(SessionTest, RestoresFilesAndHowTheyWereShown) {
    Open({Example("1tii_8A.mrc"), Example("1tii.pdb")});
    auto *map = static_cast<Grid *>(Top("1tii_8A"));
    const MapLook look{
        .level = 1.5, .colour = QColor("#102030"), .opacity = 0.7, .surface = false, .sliceAxis = 1};
    window.GetDocument().SetLook(map, look);
    const ChainLook chainLook{ChainLook::Style::BallAndStick, false, QColor("#405060")};
    window.GetDocument().SetLookOfChain(ChainOf("1tii", "D"), chainLook);
    window.GetDocument().SetShown({ChainOf("1tii", "E")}, false);
    {
        const FileDialogAnswer answer(session);
        Choose("saveSession");
    }
    StartAnew();
    {
        const FileDialogAnswer answer(session);
        Choose("openSession");
        WaitForFiles();
    }
    Document &document = window.GetDocument();
    EXPECT_EQ(document.LookOf(static_cast<Grid *>(Top("1tii_8A"))), look);
    EXPECT_EQ(document.LookOfChain(ChainOf("1tii", "D")), chainLook);
    EXPECT_EQ(document.LookOfChain(ChainOf("1tii", "F")), ChainLook());
    EXPECT_FALSE(document.IsShown(ChainOf("1tii", "E")));
    EXPECT_TRUE(document.IsShown(ChainOf("1tii", "F")));
}

TEST_F(SessionTest, RestoresWhatNoFileHoldsAndStillAsksToSaveIt) {
    MakeBuilt();
    Save(session);
    StartAnew();
    window.Restore(session);
    WaitForFiles();
    std::vector<Compound *> atoms;
    GetAtoms(Top("MVX_1_2"), atoms, true);
    ASSERT_EQ(atoms.size(), 1u);
    EXPECT_EQ(atoms[0]->GetPosition(), (Vertex(1, 2, 3, true)));
    EXPECT_EQ(window.GetDocument().Unsaved().size(), 1u);
}

TEST_F(SessionTest, RestoresAFileWithoutTheChainsThatWereRemoved) {
    Open({Example("1tii.pdb")});
    window.GetDocument().Remove({ChainOf("1tii", "D")});
    EXPECT_EQ(window.GetDocument().Unsaved().size(), 1u);
    Save(session);
    StartAnew();
    window.Restore(session);
    WaitForFiles();
    EXPECT_EQ(ChainOf("1tii", "D"), nullptr);
    EXPECT_NE(ChainOf("1tii", "E"), nullptr);
}

TEST_F(SessionTest, KeepsTwoOfOneFileApart) {
    Open({Example("1tii.pdb"), Example("1tii.pdb")});
    const Document &document = window.GetDocument();
    window.GetDocument().SetShown({document.Tops()[1]}, false);
    Save(session);
    StartAnew();
    window.Restore(session);
    WaitForFiles();
    EXPECT_TRUE(document.IsShown(Drawn(document.Tops()[0])[0]));
    EXPECT_FALSE(document.IsShown(Drawn(document.Tops()[1])[0]));
}

TEST_F(SessionTest, RestoresWhatPlaceWasAskedForAndFound) {
    Open({Example("1tii.pdb"), Example("1tii_8A.mrc"), Example("1tii_D_displaced.pdb")});
    PlaceThreeCopies();
    const std::vector<std::string> rows = RowsOfPlaces();
    const std::string verdict = Child<QLabel>("placeVerdict")->text().toStdString();
    {
        const FileDialogAnswer answer(session);
        Choose("saveSession");
    }
    StartAnew();
    window.Restore(session);
    WaitForFiles();
    EXPECT_EQ(Child<QComboBox>("placeModel")->currentText(), "1tii_D_displaced");
    EXPECT_EQ(Child<QSpinBox>("placeCopies")->value(), 3);
    EXPECT_EQ(Child<QDoubleSpinBox>("placeResolution")->value(), 8);
    EXPECT_EQ(Child<QLabel>("placeVerdict")->text().toStdString(), verdict);
    EXPECT_THAT(RowsOfPlaces(), ElementsAreArray(rows));
    auto *places = Child<QTreeWidget>("places");
    EXPECT_EQ(places->selectedItems().size(), 1);
    EXPECT_TRUE(places->topLevelItem(1)->isSelected());
    Click(Child<QPushButton>("placeKeep"));
    EXPECT_TRUE(ChainOf("1tii_D_displaced-2", "D2"));
}

TEST_F(SessionTest, RestoresNoPlacesOfAModelThatHasLeft) {
    Open({Example("1tii_8A.mrc"), Example("1tii_D_displaced.pdb")});
    PlaceThreeCopies();
    window.GetDocument().Remove({Top("1tii_D_displaced")});
    Save(session);
    StartAnew();
    Child<QTreeWidget>("places")->clear();
    window.Restore(session);
    WaitForFiles();
    EXPECT_TRUE(Top("1tii_8A"));
    EXPECT_THAT(RowsOfPlaces(), IsEmpty());
}

TEST_F(SessionTest, TakesNoListOfPlacesThatIsNone) {
    Open({Example("1tii.pdb")});
    auto *chain = ChainOf("1tii", "D");
    const NodeOfJson nodeOf = [&](const QJsonValue &name) { return name == "D" ? chain : nullptr; };
    const auto listOf = [&](const QByteArray &places) {
        return AnswerOf(
            QJsonDocument::fromJson(
                R"({"models": [{"name": "D", "chains": ["D"], "copies": null}], "places": [)" + places + "]}")
                .object(),
            nodeOf);
    };
    ASSERT_TRUE(listOf(R"({"model": 0, "number": 1, "chainNames": ["D"]})"));
    EXPECT_FALSE(listOf("1"));
    EXPECT_FALSE(listOf(R"({"model": 1, "chainNames": ["D"]})"));
    EXPECT_FALSE(listOf(R"({"model": -1, "chainNames": ["D"]})"));
    EXPECT_FALSE(listOf(R"({"model": 0, "chainNames": ["D", "E"]})"));
    EXPECT_FALSE(AnswerOf({}, nodeOf));
    const QJsonArray absent{QJsonObject{{"name", "E"}, {"chains", QJsonArray{"E"}}}};
    EXPECT_FALSE(AnswerOf({{"models", absent}}, nodeOf));
}

TEST_F(SessionTest, SaysWhyAFileIsNoSession) {
    EXPECT_THAT(ErrorOf("{"), HasSubstr("session.json: byte 1: "));
    EXPECT_THAT(ErrorOf("{}"), HasSubstr("session.json: \"format\": is no session"));
    EXPECT_THAT(ErrorOf(R"({"format":"varno session","version":2})"), HasSubstr("later version: 2"));
    const BoxAnswer answer(QMessageBox::Ok);
    window.Restore(QString::fromStdString(folder.File("absent.json")));
    EXPECT_THAT(answer.text, HasSubstr("absent.json: cannot be read: No such file"));
}

TEST_F(SessionTest, TakesOddValuesOfASessionForWhatTheyCanBe) {
    SavedSession odd(folder.Write("session.json", R"({"format":"varno session","version":1,
        "entries":[{"file":")" + Example("1tii_8A.mrc").toStdString() +
                                                      R"(",
        "drawn":[{"level":"x","opacity":7,"sliceAxis":9,"slice":-1}, 3]}], "viewpoint": [1]})"));
    Open(odd.Files());
    odd.Apply(Top("1tii_8A"), window.GetDocument());
    const MapLook look = window.GetDocument().LookOf(static_cast<Grid *>(Top("1tii_8A")));
    EXPECT_EQ(look.level, MapLook().level);
    EXPECT_EQ(look.opacity, 1);
    EXPECT_EQ(look.sliceAxis, 2);
    EXPECT_EQ(look.slice, 0);
}

TEST_F(SessionTest, IsSavedWithinAMinuteAndGoesWhenTheApplicationEnds) {
    const QString folderOfSessions =
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/varno";
    const QString own =
        folderOfSessions + QString("/autosave-%1.json").arg(QCoreApplication::applicationPid());
    Autosave autosave(window.GetDocument(), window.View(), window.Places(), 10);
    MakeBuilt();
    WaitUntil([&] { return QFile::exists(own); });
    // Its process lives: nothing to be restored.
    EXPECT_TRUE(Autosave::LeftBehind().isEmpty());
    autosave.Finish();
    EXPECT_FALSE(QFile::exists(own));
    EXPECT_FALSE(QDir(own + ".files").exists());
}

TEST_F(SessionTest, IsOfferedWhereAnApplicationHasDied) {
    const pid_t dead = fork();
    if (dead == 0)
        _exit(0);
    waitpid(dead, nullptr, 0);
    const QString folderOfSessions =
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/varno";
    ASSERT_TRUE(QDir().mkpath(folderOfSessions));
    const QString left = folderOfSessions + QString("/autosave-%1.json").arg(dead);
    MakeBuilt();
    Save(left);
    StartAnew();
    {
        const BoxAnswer answer(QMessageBox::Yes);
        window.OfferToRestore();
        EXPECT_EQ(answer.name, "restoreBox");
        WaitForFiles();
    }
    EXPECT_EQ(window.GetDocument().Tops().size(), 1u);
    EXPECT_FALSE(QFile::exists(left));
    EXPECT_TRUE(Autosave::LeftBehind().isEmpty());
}
