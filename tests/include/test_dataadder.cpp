#include "DataAdder.h"
#include "DataMaker.h"
#include "Listener.h"
#include "Messages.h"
#include "ModelGuard.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace VARNO;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class DataAdderTest : public testing::Test {
protected:
    ModelGuard guard;
    Space *space = Space::instance();
    Listener listener;
};

} // namespace

TEST_F(DataAdderTest, TellsOfAllAdditionsInOneNoticeWhenItEnds) {
    Compound *clump, *molecule, *residue;
    {
        DataAdder<Space> batch(space);
        ASSERT_TRUE(batch.MayAdd());
        clump = DataMaker::makeClump("clump");
        molecule = DataMaker::makeMolecule(clump, "molecule");
        residue = DataMaker::makeGroup(molecule, "ALA", "1");
        EXPECT_THAT(listener.notices, IsEmpty());
    }
    ASSERT_EQ(listener.notices.size(), 1u);
    EXPECT_EQ(listener.notices[0].action, Publisher::Addition);
    EXPECT_THAT(listener.notices[0].nodes, ElementsAre(clump, molecule, residue));
}

TEST_F(DataAdderTest, TellsNobodyWhereNothingWasAdded) {
    { DataAdder<Space> batch(space); }
    EXPECT_THAT(listener.notices, IsEmpty());
}

TEST_F(DataAdderTest, CarriesTheActionStateOfAdditionsAndNoOrigin) {
    DataAdder<Compound> batch(space);
    EXPECT_EQ(int(batch.GetActionState()), 1);
    EXPECT_EQ(batch.GetOrigin(), nullptr);
}

TEST_F(DataAdderTest, RefusesWhileAnotherBatchIsOpenWhichGoesOn) {
    DataAdder<Space> first(space);
    {
        DataAdder<Space> second(space);
        EXPECT_FALSE(second.MayAdd());
        EXPECT_NE(int(second.GetActionState()), 1);
    }
    DataMaker::makeClump("clump");
    EXPECT_THAT(listener.notices, IsEmpty()) << "the refused batch has closed the open one";
    EXPECT_FALSE(DataAdder<Compound>(space).MayAdd());
}

TEST_F(DataAdderTest, LetsTheNextBatchInWhenOneHasEnded) {
    { DataAdder<Space> first(space); }
    EXPECT_TRUE(DataAdder<Space>(space).MayAdd());
}

TEST_F(DataAdderTest, RefusesWhileTheRootIsReadOnly) {
    space->SetReadOnly(true);
    EXPECT_FALSE(DataAdder<Space>(space).MayAdd());
    space->SetReadOnly(false);
    EXPECT_TRUE(DataAdder<Space>(space).MayAdd());
}

TEST_F(DataAdderTest, ReportsANullReceiverInTheToolkitsWordsAndRefuses) {
    Messages messages;
    EXPECT_FALSE(DataAdder<Compound>(nullptr).MayAdd());
    EXPECT_THAT(messages.Warnings(), ElementsAre("In file ../../include/DataAdder, line 78: Out of memory"));
    EXPECT_TRUE(DataAdder<Compound>(space).MayAdd());
}

TEST_F(DataAdderTest, SaysNothingOfAReceiverThatIsThere) {
    Messages messages;
    { DataAdder<Compound> batch(space); }
    EXPECT_THAT(messages.Warnings(), IsEmpty());
}

TEST_F(DataAdderTest, LeavesOutWhatWasRemovedBeforeItEnded) {
    Compound *kept;
    {
        DataAdder<Space> batch(space);
        Compound *gone = DataMaker::makeClump("gone");
        DataMaker::makeMolecule(gone, "below");
        kept = DataMaker::makeClump("kept");
        space->Remove(gone);
    }
    ASSERT_EQ(listener.notices.size(), 2u);
    EXPECT_EQ(listener.notices[0].action, Publisher::Removal);
    EXPECT_EQ(listener.notices[1].action, Publisher::Addition);
    EXPECT_THAT(listener.notices[1].nodes, ElementsAre(kept));
}
