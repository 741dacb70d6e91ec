#include "Builder.h"
#include "SolutionsList.h"

#include "DialogTest.h"

#include "Collect.h"
#include "DataAdder.h"
#include "DataMaker.h"
#include "Space.h"
#include "Transform.h"

#include <QPushButton>
#include <QTreeWidget>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using VARNO::Atom;
using VARNO::Bond;
using VARNO::Compound;
using VARNO::Residue;
using VARNO::Space;

class Builder : public DialogTest {
protected:
    Builder() {
        m_Target = chain;
        Solutions = {Scored(1, 10), Scored(2, 20), Scored(3, 30)};
        top_size = 10;
        update_list(Solutions, &dialog);
        dialog.solutionsListView->setSortingEnabled(true);
        dialog.solutionsListView->sortByColumn(0, Qt::AscendingOrder);
        dialog.show();
        messages.Clear();
    }

    void SelectRanks(std::initializer_list<const char *> ranks) {
        for (const char *rank : ranks)
            ClickRow(dialog.solutionsListView, 0, rank);
    }
    void Build() { Click(dialog.buildButton); }

    /// The clumps beside the target's own, in model order.
    std::vector<Compound *> Clumps() const {
        std::vector<Compound *> clumps;
        for (auto it = Space::instance()->PartBegin(); it != Space::instance()->PartEnd(); ++it)
            if ((*it)->GetName().starts_with("MVX_"))
                clumps.push_back(*it);
        return clumps;
    }
    static std::vector<Compound *> Residues(const Compound *clump) {
        std::vector<Compound *> residues;
        VARNO::GetResidues(const_cast<Compound *>(clump), residues, true);
        return residues;
    }
    static std::vector<const Bond *> Bonds(const Compound *residue) {
        std::vector<const Bond *> bonds;
        for (auto atom = residue->ChildBegin(); atom != residue->ChildEnd(); ++atom)
            for (auto part = (*atom)->PartBegin(); part != (*atom)->PartEnd(); ++part)
                bonds.push_back(dynamic_cast<const Bond *>(*part));
        return bonds;
    }
    static float X(const Compound *residue) { return residue->FindChild("CA")->GetPosition()[0]; }

    Compound *chain = MakeChain("1abc", "A", 4);
    SolutionsList dialog;
};

TEST_F(Builder, CopiesTheTargetInThePoseOfTheRow) {
    SelectRanks({"01"});
    Build();
    ASSERT_THAT(Clumps(), SizeIs(1));
    const Compound *clump = Clumps().front();
    EXPECT_EQ(clump->GetName(), "MVX_1abc_1");
    EXPECT_EQ(clump->GetParent(), Space::instance());
    ASSERT_EQ(clump->ChildEnd() - clump->ChildBegin(), 1);
    const Compound *molecule = *clump->ChildBegin();
    EXPECT_EQ(molecule->GetName(), "A");
    ASSERT_EQ(molecule->ChildEnd() - molecule->ChildBegin(), 4);
    for (int i = 0; i < 4; ++i) {
        const auto *copy = dynamic_cast<const Residue *>(molecule->ChildBegin()[i]);
        ASSERT_TRUE(copy);
        EXPECT_EQ(copy->GetName(), "ALA");
        EXPECT_EQ(copy->GetSeqId(), std::to_string(i + 1));
        EXPECT_EQ(copy->ChildEnd() - copy->ChildBegin(), 3);
        EXPECT_FLOAT_EQ(X(copy), 30 + 3.8f * float(i)) << "rank 1 is the back of the list";
    }
    EXPECT_THAT(messages.Debug(), ElementsAre("Built solution 1."));
}

TEST_F(Builder, CopiesWhatAnAtomHas) {
    SelectRanks({"02"});
    Build();
    ASSERT_THAT(Clumps(), SizeIs(1));
    const auto residues = Residues(Clumps().front());
    ASSERT_THAT(residues, SizeIs(4));
    const auto *atom = dynamic_cast<const Atom *>(residues.front()->FindChild("CA"));
    ASSERT_TRUE(atom);
    EXPECT_EQ(atom->GetLabel(), "C");
    EXPECT_EQ(atom->GetModelNumber(), "1");
    EXPECT_EQ(atom->GetOrbital(), "sp3");
    EXPECT_EQ(atom->GetCharge(), 0.5f);
    EXPECT_EQ(atom->GetBFactor(), 100.0f);
    EXPECT_TRUE(atom->GetPosition().IsValid());
}

TEST_F(Builder, AppliesRotationBeforeTranslationWithoutCentring) {
    SolutionScore pose = Scored(1, 5);
    pose.rotation.Set(3.141592653589793 / 2, VARNO::Vertex(0, 0, 1, false));
    const VARNO::DataAdder<Space> batch(Space::instance());
    BuildSolution(pose, 7);
    ASSERT_THAT(Clumps(), SizeIs(1));
    const auto residues = Residues(Clumps().front());
    ASSERT_THAT(residues, SizeIs(4));
    const VARNO::Vertex moved = residues[1]->FindChild("CA")->GetPosition();
    const VARNO::Vertex expected =
        VARNO::Transform(pose.rotation, pose.translation) * VARNO::Vertex(3.8f, 0, 0, true);
    EXPECT_EQ(moved, expected);
    EXPECT_NEAR(moved[0], 5, 1e-5);
    EXPECT_NEAR(moved[1], 3.8, 1e-5);
    EXPECT_EQ(Clumps().front()->GetName(), "MVX_1abc_7");
}

TEST_F(Builder, JoinsConsecutiveResiduesFromCToN) {
    SelectRanks({"01"});
    Build();
    ASSERT_THAT(Clumps(), SizeIs(1));
    const auto residues = Residues(Clumps().front());
    ASSERT_THAT(residues, SizeIs(4));
    for (std::size_t i = 0; i + 1 < residues.size(); ++i) {
        const auto bonds = Bonds(residues[i]);
        ASSERT_THAT(bonds, SizeIs(1));
        EXPECT_EQ(bonds.front()->GetFirst(), residues[i]->FindChild("C"));
        EXPECT_EQ(bonds.front()->GetSecond(), residues[i + 1]->FindChild("N"));
        EXPECT_EQ(bonds.front()->GetKind(), 'N');
    }
    EXPECT_THAT(Bonds(residues.back()), IsEmpty());
}

TEST_F(Builder, ResiduesWithoutTheirAtomsStayUnbonded) {
    Compound *bare = VARNO::DataMaker::makeGroup(chain, "UNK", "5");
    VARNO::DataMaker::makeAtom(bare, "C", "CA", "1", VARNO::Vertex(1, 1, 1, true), 1, "", 0, 0);
    VARNO::DataMaker::makeAtom(bare, "C", "C", "1", VARNO::Vertex(2, 1, 1, true), 1, "", 0, 0);
    Compound *last = VARNO::DataMaker::makeGroup(chain, "ALA", "6");
    VARNO::DataMaker::makeAtom(last, "N", "N", "1", VARNO::Vertex(3, 1, 1, true), 1, "", 0, 0);
    SelectRanks({"01"});
    Build();
    ASSERT_THAT(Clumps(), SizeIs(1));
    const auto residues = Residues(Clumps().front());
    ASSERT_THAT(residues, SizeIs(6));
    EXPECT_THAT(Bonds(residues[3]), IsEmpty()) << "the next one has no N";
    EXPECT_THAT(Bonds(residues[4]), SizeIs(1));
}

TEST_F(Builder, EntriesThatAreNoResiduesArePassedByAndTheirNeighboursBonded) {
    VARNO::DataMaker::makeAtom(chain, "ZN", "ZN", "1", VARNO::Vertex(5, 5, 5, true), 1, "", 2, 0);
    Compound *last = VARNO::DataMaker::makeGroup(chain, "ALA", "5");
    VARNO::DataMaker::makeAtom(last, "N", "N", "1", VARNO::Vertex(3, 1, 1, true), 1, "", 0, 0);
    SelectRanks({"01"});
    Build();
    ASSERT_THAT(Clumps(), SizeIs(1));
    const Compound *molecule = *Clumps().front()->ChildBegin();
    ASSERT_EQ(molecule->ChildEnd() - molecule->ChildBegin(), 5);
    const auto residues = Residues(Clumps().front());
    ASSERT_THAT(residues, SizeIs(5));
    ASSERT_THAT(Bonds(residues[3]), SizeIs(1));
    EXPECT_EQ(Bonds(residues[3]).front()->GetSecond(), residues[4]->FindChild("N"));
}

TEST_F(Builder, SelectedRowsAreBuiltInDisplayOrder) {
    SelectRanks({"03", "01", "02"});
    Build();
    ASSERT_THAT(Clumps(), SizeIs(3));
    EXPECT_THAT(messages.Debug(), ElementsAre("Built solution 1.", "Built solution 2.", "Built solution 3."));
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(Clumps()[i]->GetName(), "MVX_1abc_" + std::to_string(i + 1));
        const auto residues = Residues(Clumps()[i]);
        ASSERT_THAT(residues, SizeIs(4));
        EXPECT_FLOAT_EQ(X(residues.front()), 30.0f - 10.0f * float(i));
    }
}

TEST_F(Builder, NumbersCountTheRowsAsDisplayed) {
    dialog.solutionsListView->sortByColumn(0, Qt::DescendingOrder);
    SelectRanks({"01"});
    Build();
    ASSERT_THAT(Clumps(), SizeIs(1));
    EXPECT_EQ(Clumps().front()->GetName(), "MVX_1abc_3");
    const auto residues = Residues(Clumps().front());
    ASSERT_THAT(residues, SizeIs(4));
    EXPECT_FLOAT_EQ(X(residues.front()), 30.0f);
}

TEST_F(Builder, NothingSelectedAddsNothing) {
    Build();
    EXPECT_THAT(Clumps(), IsEmpty());
    EXPECT_THAT(messages.Debug(), IsEmpty());
    EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(Builder, PressingTwiceAddsTwoOfTheSameName) {
    SelectRanks({"02"});
    Build();
    Build();
    ASSERT_THAT(Clumps(), SizeIs(2));
    EXPECT_EQ(Clumps()[0]->GetName(), Clumps()[1]->GetName());
    EXPECT_EQ(dialog.solutionsListView->topLevelItemCount(), 3);
}

TEST_F(Builder, OnePressIsOneChange) {
    struct Listener : VARNO::Subscriber {
        std::vector<std::size_t> notices;
        void Notify(const VARNO::DataPointBase &notice) override {
            notices.push_back(notice.GetNodes().size());
        }
    } listener;
    Space::instance()->Changes().Subscribe(&listener);
    SelectRanks({"01", "02"});
    Build();
    Space::instance()->Changes().Unsubscribe(&listener);
    // Per copy: a clump, a molecule, 4 residues, 12 atoms, 3 bonds.
    EXPECT_THAT(listener.notices, ElementsAre(2 * 21));
}

TEST_F(Builder, NothingIsAddedWhereAddingIsRefused) {
    Space::instance()->SetReadOnly(true);
    SelectRanks({"01"});
    Build();
    EXPECT_THAT(Clumps(), IsEmpty());
}

TEST_F(Builder, RanksOutsideTheListBuildNothingAndAreSaid) {
    SelectRanks({"03"});
    Solutions.pop_back();
    Build();
    EXPECT_THAT(Clumps(), IsEmpty());
    EXPECT_THAT(Warnings(),
                ElementsAre("There is no solution of rank \"03\" among the 2; nothing is built."));
}

TEST_F(Builder, PlaceholderRowBuildsNothing) {
    SolutionsList empty;
    empty.show();
    ClickRow(empty.solutionsListView, 0, "New Item");
    Click(empty.buildButton);
    EXPECT_THAT(Clumps(), IsEmpty());
    EXPECT_THAT(Warnings(),
                ElementsAre("There is no solution of rank \"New Item\" among the 3; nothing is built."));
}

TEST_F(Builder, WithoutATargetNothingIsBuilt) {
    SelectRanks({"01", "02"});
    m_Target = nullptr;
    Build();
    EXPECT_THAT(Clumps(), IsEmpty());
    EXPECT_THAT(Warnings(), ElementsAre("No target is chosen; nothing is built."));
}

TEST_F(Builder, RemovedTargetBuildsNothing) {
    SelectRanks({"01"});
    Remove(chain);
    Build();
    EXPECT_THAT(Clumps(), IsEmpty());
    EXPECT_THAT(Warnings(), ElementsAre("The target is no longer in the model; nothing is built."));
}

TEST_F(Builder, BuildsTheTargetOfTheMoment) {
    SelectRanks({"01"});
    m_Target = MakeChain("2xyz", "B", 2);
    Build();
    ASSERT_THAT(Clumps(), SizeIs(1));
    EXPECT_EQ(Clumps().front()->GetName(), "MVX_2xyz_1");
    EXPECT_THAT(Residues(Clumps().front()), SizeIs(2));
}

TEST_F(Builder, ABuiltCopyCanBeTheTarget) {
    SelectRanks({"01"});
    Build();
    ASSERT_THAT(Clumps(), SizeIs(1));
    m_Target = *Clumps().front()->ChildBegin();
    Build();
    ASSERT_THAT(Clumps(), SizeIs(2));
    EXPECT_EQ(Clumps()[1]->GetName(), "MVX_MVX_1abc_1_1");
    const auto residues = Residues(Clumps()[1]);
    ASSERT_THAT(residues, SizeIs(4));
    EXPECT_FLOAT_EQ(X(residues.front()), 60.0f);
}
