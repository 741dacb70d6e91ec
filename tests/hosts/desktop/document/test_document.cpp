#include "ModelGuard.h"
#include "Scene.h"
#include "document/Document.h"
#include "document/Nodes.h"

#include "Collect.h"
#include "DataAdder.h"
#include "DataMaker.h"

#include <QSignalSpy>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace desktop;
using namespace VARNO;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class DocumentTest : public testing::Test {
protected:
    static std::vector<Compound *> SelectedChains() {
        std::vector<Compound *> chains;
        GetPeptides(Space::instance(), chains, false);
        return chains;
    }

    ModelGuard guard;
    Document document;
};

} // namespace

TEST_F(DocumentTest, ShowsPlugInsWhatIsSelected) {
    Compound *first = MakeChain("one", "A", 3), *second = MakeChain("two", "B", 3);
    document.Select({second});
    EXPECT_THAT(SelectedChains(), ElementsAre(second));
    EXPECT_FALSE(first->HasSelected());
    document.Select({});
    EXPECT_THAT(SelectedChains(), IsEmpty());
}

TEST_F(DocumentTest, SelectsTheChainsOfASelectedFile) {
    Compound *chain = MakeChain("one", "A", 3);
    document.Select({TopOf(chain)});
    EXPECT_THAT(SelectedChains(), ElementsAre(chain));
    EXPECT_THAT(document.Selection(), ElementsAre(TopOf(chain)));
    document.Select({Below(chain).front()});
    EXPECT_THAT(SelectedChains(), IsEmpty());
    EXPECT_TRUE(chain->HasSelected());
}

TEST_F(DocumentTest, UndoesAndRedoesARemovalWithTheMapsValues) {
    Grid *map = MakeMap("map");
    Compound *chain = MakeChain("one", "A", 3);
    document.Remove({map, chain, Below(chain).front()});
    EXPECT_FALSE(map->IsAttached());
    EXPECT_FALSE(chain->IsAttached());
    EXPECT_EQ(Below(chain).size(), 3u);
    document.UndoStack().undo();
    EXPECT_TRUE(map->IsAttached());
    EXPECT_TRUE(chain->IsAttached());
    EXPECT_FALSE(map->Values().empty());
    document.UndoStack().redo();
    EXPECT_FALSE(chain->IsAttached());
}

TEST_F(DocumentTest, GivesUpTheValuesOfAMapThatNoUndoBringsBack) {
    Grid *map = MakeMap("map");
    document.Remove({map});
    EXPECT_FALSE(map->Values().empty());
    document.UndoStack().clear();
    EXPECT_TRUE(map->Values().empty());
}

TEST_F(DocumentTest, DropsWhatIsRemovedFromTheSelection) {
    Compound *first = MakeChain("one", "A", 3), *second = MakeChain("two", "B", 3);
    document.Select({first, second});
    document.Remove({TopOf(first)});
    EXPECT_THAT(document.Selection(), ElementsAre(second));
    EXPECT_FALSE(first->IsSelected());
}

TEST_F(DocumentTest, CallsOffARemovalThatWaitedForAFit) {
    Compound *chain = MakeChain("one", "A", 3);
    {
        const RemovalHold fit;
        document.Remove({chain});
        EXPECT_TRUE(chain->IsAttached());
        document.UndoStack().undo();
    }
    EXPECT_TRUE(chain->IsAttached());
}

TEST_F(DocumentTest, TellsOfABatchOnce) {
    QSignalSpy added(&document, &Document::added);
    {
        const DataAdder<Space> batch(Space::instance());
        MakeChain("one", "A", 3);
        MakeMap("map");
    }
    ASSERT_EQ(added.count(), 1);
    EXPECT_EQ(added[0][0].value<Document::Nodes>().size(), 2u);
}

TEST_F(DocumentTest, MakesOneStepThatUndoTakesBack) {
    Compound *made = nullptr;
    EXPECT_TRUE(document.Make("make", [&] { made = MakeChain("one", "A", 3); }));
    EXPECT_EQ(document.UndoStack().undoText(), "make");
    document.UndoStack().undo();
    EXPECT_FALSE(made->IsAttached());
    document.UndoStack().redo();
    EXPECT_TRUE(made->IsAttached());
}

TEST_F(DocumentTest, MakesNothingWhileTheModelIsReadOnly) {
    Space::instance()->SetReadOnly(true);
    EXPECT_FALSE(document.Make("make", [] { MakeChain("one", "A", 3); }));
    EXPECT_THAT(document.Tops(), IsEmpty());
    EXPECT_EQ(document.UndoStack().count(), 0);
}

TEST_F(DocumentTest, HidesAPlugInsMapAtFirst) {
    Grid *map = MakeMap("GridFix");
    Compound *chain = MakeChain("one", "A", 3);
    EXPECT_FALSE(document.IsShown(map));
    EXPECT_TRUE(document.IsShown(chain));
    EXPECT_GT(document.StatisticsOf(map).deviation, 0);
}

TEST_F(DocumentTest, KnowsThatAFileHoldsAMoleculeAgainWhenARemovalIsUndone) {
    Compound *chain = MakeChain("one", "A", 3), *top = TopOf(chain);
    document.SetSaved(top, "one.cif");
    document.Remove({Below(chain)[0]});
    document.Remove({Below(chain)[1], Below(chain)[0]});
    EXPECT_THAT(document.Unsaved(), ElementsAre(top));
    document.UndoStack().undo();
    EXPECT_THAT(document.Unsaved(), ElementsAre(top));
    document.UndoStack().undo();
    EXPECT_THAT(document.Unsaved(), IsEmpty());
    EXPECT_EQ(document.FileOf(top), "one.cif");
    document.UndoStack().redo();
    EXPECT_THAT(document.Unsaved(), ElementsAre(top));
}

TEST_F(DocumentTest, KnowsThatUndoingARemovalLeavesTheFileThatWasSavedAfterIt) {
    Compound *chain = MakeChain("one", "A", 3), *top = TopOf(chain);
    document.SetSaved(top, "one.cif");
    document.Remove({Below(chain)[0]});
    document.SetSaved(top, "two.cif");
    EXPECT_THAT(document.Unsaved(), IsEmpty());
    document.UndoStack().undo();
    EXPECT_THAT(document.Unsaved(), ElementsAre(top));
    document.UndoStack().redo();
    EXPECT_EQ(document.FileOf(top), "two.cif");
}

TEST_F(DocumentTest, KnowsWhichMoleculesNoFileHolds) {
    Compound *built = TopOf(MakeChain("built", "A", 3));
    MakeMap("map");
    EXPECT_THAT(document.Unsaved(), ElementsAre(built));
    document.SetSaved(built, "built.cif");
    EXPECT_THAT(document.Unsaved(), IsEmpty());
}
