#include "DataAdder.h"
#include "DataMaker.h"
#include "Listener.h"
#include "ModelGuard.h"
#include "Space.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace VARNO;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class DataMakerTest : public testing::Test {
protected:
    ModelGuard guard;
    Space *space = Space::instance();

    Compound *LastOfRoot() const { return *(space->PartEnd() - 1); }
};

} // namespace

TEST_F(DataMakerTest, MakesAClumpBelowTheRoot) {
    Compound *clump = DataMaker::makeClump("MVX_1abc_3");
    EXPECT_TRUE(dynamic_cast<Clump *>(clump));
    EXPECT_EQ(LastOfRoot(), clump);
    EXPECT_EQ(clump->GetLabel(), "MVX_1abc_3");
}

TEST_F(DataMakerTest, MakesAMoleculeBelowItsParent) {
    Compound *clump = DataMaker::makeClump("clump");
    Compound *molecule = DataMaker::makeMolecule(clump, "A");
    EXPECT_TRUE(dynamic_cast<Molecule *>(molecule));
    EXPECT_EQ(molecule->GetParent(), clump);
    EXPECT_EQ(molecule->GetName(), "A");
}

TEST_F(DataMakerTest, TakesANullParentForTheRoot) {
    EXPECT_EQ(DataMaker::makeMolecule(nullptr, "A")->GetParent(), space);
    EXPECT_EQ(DataMaker::makeGrid(nullptr, "g", 1, 1, 1, 0, 0, 0, 1, 1, 1, 90, 90, 90)->GetParent(), space);
}

TEST_F(DataMakerTest, MakesAResidueOfAGroup) {
    Compound *molecule = DataMaker::makeMolecule(DataMaker::makeClump("clump"), "A");
    auto *residue = dynamic_cast<Residue *>(DataMaker::makeGroup(molecule, "TRP", "-1B"));
    ASSERT_TRUE(residue);
    EXPECT_EQ(residue->GetName(), "TRP");
    EXPECT_EQ(residue->GetSeqId(), "-1B");
    EXPECT_EQ(residue->GetCode(), 'W');
}

TEST_F(DataMakerTest, KeepsWhatAnAtomIsMadeOf) {
    Compound *residue = DataMaker::makeGroup(DataMaker::makeClump("clump"), "ALA", "1");
    auto *atom = dynamic_cast<Atom *>(
        DataMaker::makeAtom(residue, "O", "OXT", "7", Vertex(1.5f, -2, 3, true), 99, "sp3", -1, 100));
    ASSERT_TRUE(atom);
    EXPECT_EQ(atom->GetLabel(), "O");
    EXPECT_EQ(atom->GetName(), "OXT");
    EXPECT_EQ(atom->GetModelNumber(), "7");
    EXPECT_EQ(atom->GetPosition(), Vertex(1.5f, -2, 3, true));
    EXPECT_TRUE(atom->GetPosition().IsValid());
    EXPECT_EQ(atom->GetOrbital(), "sp3");
    EXPECT_EQ(atom->GetCharge(), -1);
    EXPECT_EQ(atom->GetBFactor(), 100);
}

TEST_F(DataMakerTest, KeepsTheValidityOfAnAtomsPosition) {
    Compound *residue = DataMaker::makeGroup(DataMaker::makeClump("clump"), "ALA", "1");
    const Vertex nowhere(1, 2, 3, false);
    EXPECT_FALSE(DataMaker::makeAtom(residue, "C", "CA", "1", nowhere, 1, "", 0, 0)->GetPosition().IsValid());
}

TEST_F(DataMakerTest, BondsTwoAtoms) {
    Compound *residue = DataMaker::makeGroup(DataMaker::makeClump("clump"), "ALA", "1");
    Compound *c = DataMaker::makeAtom(residue, "C", "C", "1", {}, 1, "", 0, 0);
    Compound *n = DataMaker::makeAtom(residue, "N", "N", "1", {}, 1, "", 0, 0);
    auto *bond = dynamic_cast<Bond *>(DataMaker::makeBond(c, n, 'N'));
    ASSERT_TRUE(bond);
    EXPECT_EQ(bond->GetFirst(), c);
    EXPECT_EQ(bond->GetSecond(), n);
    EXPECT_EQ(bond->GetKind(), 'N');
    EXPECT_EQ(bond->GetParent(), c);
}

TEST_F(DataMakerTest, MakesAGridOfZeros) {
    auto *grid = dynamic_cast<Grid *>(
        DataMaker::makeGrid(space, "GridFix", 2, 3, 4, -1, -2, -3, 2, 2.5f, 3, 90, 91, 92));
    ASSERT_TRUE(grid);
    EXPECT_EQ(LastOfRoot(), grid);
    EXPECT_EQ(grid->GetName(), "GridFix");
    EXPECT_EQ(grid->Dimensions(), (Vector<unsigned, 3>(2, 3, 4)));
    EXPECT_EQ(grid->Origin(), (Vector<float, 3>(-1, -2, -3)));
    EXPECT_EQ(grid->Spacing(), (Vector<float, 3>(2, 2.5f, 3)));
    EXPECT_EQ(grid->Angles(), (Vector<float, 3>(90, 91, 92)));
    EXPECT_THAT(grid->Values(), Each(0.0f));
}

TEST_F(DataMakerTest, AddsAGridThatWasFilledBefore) {
    Listener listener;
    auto filled = std::make_unique<Grid>("map", Vector<unsigned, 3>(1, 1, 2), Vector<float, 3>(),
                                         Vector<float, 3>(1, 1, 1), Vector<float, 3>(90, 90, 90));
    filled->SetValue(0, 0, 1, 7);
    Grid *grid = DataMaker::addGrid(nullptr, std::move(filled));
    EXPECT_EQ(LastOfRoot(), grid);
    EXPECT_THAT(grid->Values(), ElementsAre(0, 7));
    ASSERT_EQ(listener.notices.size(), 1u);
    EXPECT_THAT(listener.notices[0].nodes, ElementsAre(grid));
}

TEST_F(DataMakerTest, LeavesTheModelAsItWasWhenAGridDoesNotFit) {
    Listener listener;
    EXPECT_THROW(DataMaker::makeGrid(space, "g", ~0u, ~0u, ~0u, 0, 0, 0, 1, 1, 1, 90, 90, 90),
                 std::bad_alloc);
    EXPECT_EQ(space->PartBegin(), space->PartEnd());
    EXPECT_THAT(listener.notices, IsEmpty());
}

TEST_F(DataMakerTest, AnnouncesEachNodeOnItsOwnOutsideABatch) {
    Listener listener;
    Compound *clump = DataMaker::makeClump("clump");
    Compound *molecule = DataMaker::makeMolecule(clump, "A");
    ASSERT_EQ(listener.notices.size(), 2u);
    EXPECT_THAT(listener.notices[0].nodes, ElementsAre(clump));
    EXPECT_THAT(listener.notices[1].nodes, ElementsAre(molecule));
    EXPECT_EQ(listener.notices[1].action, Publisher::Addition);
}

TEST_F(DataMakerTest, SaysNothingOfNodesBelowARemovedOne) {
    Compound *clump = DataMaker::makeClump("clump");
    space->Remove(clump);
    Listener listener;
    EXPECT_EQ(DataMaker::makeMolecule(clump, "A")->GetParent(), clump);
    EXPECT_THAT(listener.notices, IsEmpty());
}

TEST_F(DataMakerTest, AddsAClumpThatWasFilledOutsideOfTheTree) {
    Listener listener;
    auto clump = std::make_unique<Clump>("clump");
    Compound *molecule = DataMaker::makeMolecule(clump.get(), "A");
    Compound *residue = DataMaker::makeGroup(molecule, "ALA", "1");
    EXPECT_THAT(listener.notices, IsEmpty());
    {
        const DataAdder<Space> batch(space);
        Clump *added = DataMaker::addClump(std::move(clump));
        EXPECT_EQ(LastOfRoot(), added);
    }
    EXPECT_TRUE(residue->IsAttached());
    ASSERT_EQ(listener.notices.size(), 1u);
    EXPECT_THAT(listener.notices[0].nodes, ElementsAre(LastOfRoot(), molecule, residue));
}
