#include "ModelGuard.h"
#include "Scene.h"
#include "document/ModelTree.h"
#include "document/Nodes.h"

#include "DataAdder.h"
#include "DataMaker.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace desktop;
using namespace VARNO;

namespace {

class ModelTreeTest : public testing::Test {
protected:
    // Left to itself, the tester opens chains in the middle of other changes.
    ModelTreeTest() { tester.setUseFetchMore(false); }

    std::string TextAt(const QModelIndex &index) const {
        return tree.data(index, Qt::DisplayRole).toString().toStdString();
    }
    Qt::CheckState CheckOf(const Compound *node) {
        return Qt::CheckState(tree.data(tree.IndexOf(node), Qt::CheckStateRole).toInt());
    }

    ModelGuard guard;
    Document document;
    ModelTree tree{document};
    /// Fails the test where the model breaks a rule of the toolkit's.
    QAbstractItemModelTester tester{&tree, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

} // namespace

TEST_F(ModelTreeTest, ShowsFilesMoleculesAndChainsOfABatchAtOnce) {
    {
        const DataAdder<Space> batch(Space::instance());
        MakeChain("one", "A", 3);
    }
    ASSERT_EQ(tree.rowCount(), 1);
    const QModelIndex file = tree.index(0, 0), molecule = tree.index(0, 0, file),
                      chain = tree.index(0, 0, molecule);
    EXPECT_EQ(TextAt(file), "one");
    EXPECT_EQ(TextAt(chain), "chain A");
    EXPECT_EQ(TextAt(chain.siblingAtColumn(ModelTree::Content)), "3 residues");
}

TEST_F(ModelTreeTest, MakesResidueRowsWhenAChainIsOpened) {
    const Compound *chain = MakeChain("one", "A", 3);
    const QModelIndex index = tree.IndexOf(chain);
    EXPECT_EQ(tree.rowCount(index), 0);
    EXPECT_TRUE(tree.hasChildren(index));
    ASSERT_TRUE(tree.canFetchMore(index));
    tree.fetchMore(index);
    EXPECT_EQ(tree.rowCount(index), 3);
    EXPECT_EQ(TextAt(tree.index(1, 0, index)), "ALA2");
    EXPECT_FALSE(tree.hasChildren(tree.index(1, 0, index)));
}

TEST_F(ModelTreeTest, FindsTheRowOfAResidueWhoseChainIsClosed) {
    const Compound *chain = MakeChain("one", "A", 3);
    EXPECT_EQ(TextAt(tree.IndexOf(Below(chain)[2])), "ALA3");
}

TEST_F(ModelTreeTest, TakesRowsAwayAndPutsThemBackInTheirPlace) {
    MakeChain("one", "A", 3);
    Compound *second = MakeChain("two", "B", 3);
    MakeChain("three", "C", 3);
    document.Remove({TopOf(second)});
    EXPECT_EQ(tree.rowCount(), 2);
    document.UndoStack().undo();
    ASSERT_EQ(tree.rowCount(), 3);
    EXPECT_EQ(TextAt(tree.index(1, 0)), "two");
}

TEST_F(ModelTreeTest, AddsRowsBelowWhatIsThere) {
    Compound *chain = MakeChain("one", "A", 3);
    tree.fetchMore(tree.IndexOf(chain));
    DataMaker::makeGroup(chain, "GLY", "4");
    EXPECT_EQ(tree.rowCount(tree.IndexOf(chain)), 4);
    document.Remove({Below(chain)[0]});
    EXPECT_EQ(TextAt(tree.index(0, 0, tree.IndexOf(chain))), "ALA2");
}

TEST_F(ModelTreeTest, ShowsAndHidesAllOfAFileByItsCheckBox) {
    Compound *chain = MakeChain("one", "A", 3);
    DataMaker::makeChain(chain->GetParent(), "B", true);
    const QModelIndex file = tree.IndexOf(TopOf(chain));
    EXPECT_EQ(CheckOf(TopOf(chain)), Qt::Checked);
    tree.setData(tree.IndexOf(chain), Qt::Unchecked, Qt::CheckStateRole);
    EXPECT_FALSE(document.IsShown(chain));
    EXPECT_EQ(CheckOf(TopOf(chain)), Qt::PartiallyChecked);
    tree.setData(file, Qt::Unchecked, Qt::CheckStateRole);
    EXPECT_EQ(CheckOf(TopOf(chain)), Qt::Unchecked);
    tree.setData(file, Qt::Checked, Qt::CheckStateRole);
    EXPECT_TRUE(document.IsShown(chain));
}

TEST_F(ModelTreeTest, FindsTheNextNodeByAPartOfItsName) {
    Compound *first = MakeChain("one", "A", 3);
    MakeChain("two", "B", 3);
    EXPECT_EQ(tree.Find("ala2", nullptr), Below(first)[1]);
    EXPECT_EQ(PathOf(tree.Find("ala2", Below(first)[1])).toStdString(), "two, chain B, ALA2");
    EXPECT_EQ(tree.Find("tyr", nullptr), nullptr);
}
