#include "DataMaker.h"
#include "ModelGuard.h"
#include "Space.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace VARNO;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<Compound *> Children(const Compound *node) {
    return {node->ChildBegin(), node->ChildEnd()};
}
std::vector<Compound *> Parts(const Compound *node) {
    return {node->PartBegin(), node->PartEnd()};
}

/// clump -> molecule -> chain A -> two residues -> one atom each.
class CompoundTest : public testing::Test {
protected:
    static Compound *MakeAtom(Compound *residue) {
        return DataMaker::makeAtom(residue, "C", "CA", "1", Vertex(1, 2, 3, true), 1, "", 0, 20);
    }

    ModelGuard guard;
    Compound *clump = DataMaker::makeClump("1abc");
    Compound *molecule = DataMaker::makeMolecule(clump, "1abc");
    Compound *chain = DataMaker::makeChain(molecule, "A", true);
    Compound *first = DataMaker::makeGroup(chain, "ALA", "1");
    Compound *second = DataMaker::makeGroup(chain, "GLY", "2");
    Compound *atom = MakeAtom(first);
    Compound *other = MakeAtom(second);
};

/// A node that answers nothing of its own.
class Plain : public Compound {};

} // namespace

TEST_F(CompoundTest, KnowsItsParent) {
    EXPECT_EQ(atom->GetParent(), first);
    EXPECT_EQ(first->GetParent(), chain);
    EXPECT_EQ(clump->GetParent(), Space::instance());
    EXPECT_EQ(Space::instance()->GetParent(), nullptr);
}

TEST_F(CompoundTest, ShowsWhatIsBelowACompositeAsChildrenOnly) {
    EXPECT_THAT(Children(chain), ElementsAre(first, second));
    EXPECT_THAT(Parts(chain), IsEmpty());
    EXPECT_THAT(Children(first), ElementsAre(atom));
}

TEST_F(CompoundTest, ShowsWhatIsBelowAnyOtherNodeAsPartsOnly) {
    EXPECT_THAT(Parts(Space::instance()), ElementsAre(clump));
    EXPECT_THAT(Children(Space::instance()), IsEmpty());
    Compound *bond = DataMaker::makeBond(atom, other, 'N');
    EXPECT_THAT(Parts(atom), ElementsAre(bond));
    EXPECT_THAT(Children(atom), IsEmpty());
    EXPECT_THAT(Parts(other), IsEmpty());
}

TEST_F(CompoundTest, IsComposite) {
    for (const Compound *node : {clump, molecule, chain, first})
        EXPECT_TRUE(dynamic_cast<const Composite *>(node)) << node->GetLabel();
    EXPECT_FALSE(dynamic_cast<const Composite *>(atom));
    EXPECT_FALSE(dynamic_cast<const Composite *>(static_cast<Compound *>(Space::instance())));
}

TEST_F(CompoundTest, SelectsOneNodeAlone) {
    chain->SetSelected(true);
    EXPECT_TRUE(chain->IsSelected());
    EXPECT_FALSE(molecule->IsSelected());
    EXPECT_FALSE(first->IsSelected());
    chain->SetSelected(false);
    EXPECT_FALSE(chain->IsSelected());
}

TEST_F(CompoundTest, HoldsASelectionWhereItOrAnythingBelowIsSelected) {
    EXPECT_FALSE(Space::instance()->HasSelected());
    atom->SetSelected(true);
    for (const Compound *node : {clump, molecule, chain, first, atom})
        EXPECT_TRUE(node->HasSelected()) << node->GetLabel();
    EXPECT_TRUE(Space::instance()->HasSelected());
    EXPECT_FALSE(second->HasSelected());
}

TEST_F(CompoundTest, FindsTheFirstChildOfAName) {
    Compound *nitrogen = DataMaker::makeAtom(first, "N", "N", "1", {}, 1, "", 0, 0);
    Compound *again = MakeAtom(first);
    EXPECT_EQ(first->FindChild("CA"), atom);
    EXPECT_NE(first->FindChild("CA"), again);
    EXPECT_EQ(first->FindChild("N"), nitrogen);
    EXPECT_EQ(first->FindChild("C"), nullptr) << "C is the atom's label, not its name";
    EXPECT_EQ(first->FindChild(""), nullptr);
    EXPECT_EQ(chain->FindChild("GLY"), second);
    EXPECT_EQ(chain->FindChild("GLY2"), nullptr);
    EXPECT_EQ(atom->FindChild("CA"), nullptr);
}

TEST_F(CompoundTest, IsAttachedBelowTheRoot) {
    EXPECT_TRUE(Space::instance()->IsAttached());
    EXPECT_TRUE(clump->IsAttached());
    EXPECT_TRUE(atom->IsAttached());
    EXPECT_FALSE(Plain().IsAttached());
}

TEST_F(CompoundTest, CanBeCompletedWithoutChangingIt) {
    first->Complete();
    EXPECT_THAT(Children(first), ElementsAre(atom));
}

TEST(Compound, AnswersNothingWhereItsKindHasNothingToSay) {
    const Plain plain;
    EXPECT_EQ(plain.GetLabel(), "");
    EXPECT_EQ(plain.GetName(), "");
    EXPECT_EQ(plain.GetCode(), ' ');
    EXPECT_FALSE(plain.GetPosition().IsValid());
    EXPECT_EQ(plain.FindChild(""), nullptr);
}

TEST_F(CompoundTest, NamesAClumpAndAMoleculeOfAFile) {
    for (const Compound *node : {clump, molecule}) {
        EXPECT_EQ(node->GetLabel(), "1abc");
        EXPECT_EQ(node->GetName(), "1abc");
        EXPECT_EQ(node->GetCode(), ' ');
        EXPECT_FALSE(node->GetPosition().IsValid());
    }
}

TEST_F(CompoundTest, NamesAChainByItsIdentifier) {
    const Compound *longer = DataMaker::makeChain(molecule, "BC", true);
    EXPECT_EQ(longer->GetLabel(), "BC");
    EXPECT_EQ(longer->GetName(), "BC");
    EXPECT_EQ(longer->GetCode(), 'B');
    EXPECT_EQ(DataMaker::makeChain(molecule, " ", true)->GetCode(), ' ');
    EXPECT_EQ(DataMaker::makeChain(molecule, "", true)->GetCode(), ' ');
}

TEST_F(CompoundTest, TellsAPolymerFromLigandsAndWaters) {
    EXPECT_TRUE(dynamic_cast<Chain *>(chain)->IsPolymer());
    EXPECT_FALSE(dynamic_cast<Chain *>(DataMaker::makeChain(molecule, "W", false))->IsPolymer());
}

TEST_F(CompoundTest, CodesABuiltMoleculeByTheFirstCharacterOfItsName) {
    Compound *built = DataMaker::makeMolecule(clump, "Bx");
    EXPECT_EQ(built->GetCode(), ' ') << "it holds no residues yet";
    DataMaker::makeGroup(built, "ALA", "1");
    EXPECT_EQ(built->GetCode(), 'B');
    Compound *unnamed = DataMaker::makeMolecule(clump, "");
    DataMaker::makeGroup(unnamed, "ALA", "1");
    EXPECT_EQ(unnamed->GetCode(), ' ');
}

TEST_F(CompoundTest, NamesAnAtomByElementAndName) {
    const Compound *calcium = DataMaker::makeAtom(first, "CA", "CA", "1", {}, 1, "", 2, 0);
    EXPECT_EQ(atom->GetLabel(), "C");
    EXPECT_EQ(atom->GetName(), "CA");
    EXPECT_EQ(calcium->GetLabel(), "CA");
    EXPECT_EQ(calcium->GetName(), "CA");
    EXPECT_EQ(atom->GetCode(), ' ');
}
