#include "DataMaker.h"
#include "Listener.h"
#include "ModelGuard.h"
#include "Space.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace VARNO;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class SpaceTest : public testing::Test {
protected:
    static Compound *MakeGrid(Compound *parent) {
        return DataMaker::makeGrid(parent, "grid", 2, 2, 2, 0, 0, 0, 1, 1, 1, 90, 90, 90);
    }
    static std::size_t ValuesOf(const Compound *grid) {
        return dynamic_cast<const Grid *>(grid)->Values().size();
    }

    ModelGuard guard;
    Space *space = Space::instance();
    Compound *clump = DataMaker::makeClump("clump");
    Compound *molecule = DataMaker::makeMolecule(clump, "molecule");
    Compound *residue = DataMaker::makeGroup(molecule, "ALA", "1");
    Compound *kept = DataMaker::makeClump("kept");
    Listener listener;
};

} // namespace

TEST_F(SpaceTest, IsOne) {
    EXPECT_EQ(Space::instance(), space);
    EXPECT_EQ(space->GetLabel(), "Space");
    EXPECT_EQ(space->GetName(), "Space");
}

TEST_F(SpaceTest, TakesANodeAndAllBelowItOutOfTheTree) {
    space->Remove(clump);
    EXPECT_THAT(std::vector<Compound *>(space->PartBegin(), space->PartEnd()), ElementsAre(kept));
    EXPECT_EQ(clump->GetParent(), nullptr);
    for (const Compound *node : {clump, molecule, residue})
        EXPECT_FALSE(node->IsAttached()) << node->GetLabel();
    EXPECT_TRUE(kept->IsAttached());
}

TEST_F(SpaceTest, TakesOutANodeDeepInTheTree) {
    space->Remove(residue);
    EXPECT_FALSE(residue->IsAttached());
    EXPECT_TRUE(molecule->IsAttached());
    EXPECT_EQ(molecule->ChildBegin(), molecule->ChildEnd());
}

TEST_F(SpaceTest, KeepsRemovedNodesAliveWithWhatIsBelowThem) {
    space->Remove(clump);
    EXPECT_EQ(clump->GetLabel(), "clump");
    EXPECT_EQ(*clump->ChildBegin(), molecule);
    EXPECT_EQ(residue->GetParent(), molecule);
    EXPECT_EQ(residue->GetLabel(), "ALA1");
}

TEST_F(SpaceTest, TellsOfARemovalOnceAfterTheTreeHasChanged) {
    class Looker : public Listener {
    public:
        void Notify(const DataPointBase &notice) override {
            Listener::Notify(notice);
            attached = notice.GetNodes().front()->IsAttached();
        }
        bool attached = true;
    } looker;
    space->Remove(clump);
    ASSERT_EQ(looker.notices.size(), 1u);
    EXPECT_EQ(looker.notices[0].action, Publisher::Removal);
    EXPECT_THAT(looker.notices[0].nodes, ElementsAre(clump));
    EXPECT_FALSE(looker.attached);
}

TEST_F(SpaceTest, LeavesAloneWhatIsNotBelowTheRoot) {
    space->Remove(clump);
    listener.notices.clear();
    for (Compound *node : {clump, residue, static_cast<Compound *>(space), static_cast<Compound *>(nullptr)})
        space->Remove(node);
    EXPECT_THAT(listener.notices, IsEmpty());
    EXPECT_EQ(residue->GetParent(), molecule);
    EXPECT_TRUE(space->IsAttached());
}

TEST_F(SpaceTest, FreesTheValuesOfRemovedGrids) {
    Compound *alone = MakeGrid(space), *below = MakeGrid(clump), *other = MakeGrid(kept);
    space->Remove(alone);
    space->Remove(clump);
    for (const Compound *grid : {alone, below}) {
        EXPECT_EQ(ValuesOf(grid), 0u);
        EXPECT_EQ(dynamic_cast<const Grid *>(grid)->Dimensions(), (Vector<unsigned, 3>(0, 0, 0)));
        EXPECT_EQ(grid->GetLabel(), "grid");
    }
    EXPECT_EQ(ValuesOf(other), 8u);
}

TEST_F(SpaceTest, WaitsWithRemovalsWhileTheyAreHeld) {
    Compound *grid = MakeGrid(space);
    listener.notices.clear();
    {
        const RemovalHold hold;
        space->Remove(clump);
        space->Remove(grid);
        EXPECT_TRUE(residue->IsAttached());
        EXPECT_EQ(ValuesOf(grid), 8u);
        EXPECT_THAT(listener.notices, IsEmpty());
    }
    EXPECT_FALSE(residue->IsAttached());
    EXPECT_EQ(ValuesOf(grid), 0u);
    ASSERT_EQ(listener.notices.size(), 2u);
    EXPECT_THAT(listener.notices[0].nodes, ElementsAre(clump));
    EXPECT_THAT(listener.notices[1].nodes, ElementsAre(grid));
}

TEST_F(SpaceTest, WaitsForTheLastOfSeveralHolds) {
    const auto outer = std::make_unique<RemovalHold>();
    {
        const RemovalHold inner;
        space->Remove(clump);
    }
    EXPECT_TRUE(clump->IsAttached());
}

TEST_F(SpaceTest, RemovesOnceWhatWasAskedForTwiceWhileHeld) {
    {
        const RemovalHold hold;
        space->Remove(residue);
        space->Remove(clump);
        space->Remove(residue);
        space->Remove(clump);
    }
    EXPECT_EQ(listener.notices.size(), 2u);
    EXPECT_FALSE(clump->IsAttached());
}

TEST_F(SpaceTest, RemovesAtOnceWhenNoHoldIsLeft) {
    { const RemovalHold hold; }
    space->Remove(clump);
    EXPECT_FALSE(clump->IsAttached());
}

TEST_F(SpaceTest, RemovesWhileABatchIsOpenAndTellsAtOnce) {
    DataPointBase batch(nullptr, Publisher::Addition);
    ASSERT_TRUE(space->Changes().Open(&batch));
    space->Remove(clump);
    EXPECT_EQ(listener.notices.size(), 1u);
    space->Changes().Close(&batch);
    EXPECT_EQ(listener.notices.size(), 1u);
}

TEST_F(SpaceTest, PutsBackWhatWasTakenOutInItsFormerPlaceWithItsValues) {
    Compound *grid = MakeGrid(clump);
    space->TakeOut(clump);
    EXPECT_FALSE(residue->IsAttached());
    EXPECT_EQ(ValuesOf(grid), 8u);
    listener.notices.clear();
    EXPECT_TRUE(space->PutBack(clump));
    EXPECT_THAT(std::vector<Compound *>(space->PartBegin(), space->PartEnd()), ElementsAre(clump, kept));
    EXPECT_TRUE(residue->IsAttached());
    ASSERT_EQ(listener.notices.size(), 1u);
    EXPECT_EQ(listener.notices[0].action, Publisher::Addition);
    EXPECT_THAT(listener.notices[0].nodes, ElementsAre(clump));
}

TEST_F(SpaceTest, PutsBackAtTheEndWhereTheFormerPlaceIsGone) {
    space->TakeOut(kept);
    space->Remove(clump);
    EXPECT_TRUE(space->PutBack(kept));
    EXPECT_THAT(std::vector<Compound *>(space->PartBegin(), space->PartEnd()), ElementsAre(kept));
}

TEST_F(SpaceTest, PutsBackNothingElse) {
    space->Remove(clump);
    space->TakeOut(kept);
    space->Forget(kept);
    for (Compound *node : {clump, kept, residue, static_cast<Compound *>(nullptr)})
        EXPECT_FALSE(space->PutBack(node));
    EXPECT_EQ(space->PartBegin(), space->PartEnd());
}

TEST_F(SpaceTest, PutsNothingBackBelowAParentThatHasLeft) {
    space->TakeOut(residue);
    space->TakeOut(clump);
    EXPECT_FALSE(space->PutBack(residue));
    EXPECT_TRUE(space->PutBack(clump));
    EXPECT_TRUE(space->PutBack(residue));
    EXPECT_TRUE(residue->IsAttached());
}

TEST_F(SpaceTest, CallsOffARemovalThatWaits) {
    {
        const RemovalHold hold;
        space->TakeOut(clump);
        EXPECT_TRUE(space->PutBack(clump));
    }
    EXPECT_TRUE(clump->IsAttached());
    EXPECT_THAT(listener.notices, IsEmpty());
}

TEST_F(SpaceTest, FreesTheValuesOfGridsThatAreForgotten) {
    Compound *grid = MakeGrid(clump);
    space->TakeOut(clump);
    space->Forget(clump);
    EXPECT_EQ(ValuesOf(grid), 0u);
    EXPECT_EQ(clump->GetLabel(), "clump");
}
