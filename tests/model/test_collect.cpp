#include "Collect.h"
#include "DataMaker.h"
#include "ModelGuard.h"
#include "Space.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace VARNO;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Nodes = std::vector<Compound *>;
using Collector = void (*)(Compound *, Nodes &, bool);

Nodes Collected(Collector collect, Compound *start, bool all) {
    Nodes out;
    collect(start, out, all);
    return out;
}

Nodes Grids(Compound *start, bool all, bool intoParts) {
    Nodes out;
    GetItems<Grid>(start, out, all, nullptr, intoParts);
    return out;
}

Compound *MakeGrid(Compound *parent) {
    return DataMaker::makeGrid(parent, "grid", 1, 1, 1, 0, 0, 0, 1, 1, 1, 90, 90, 90);
}

Compound *MakeAtom(Compound *residue, const char *name) {
    return DataMaker::makeAtom(residue, "C", name, "1", Vertex(0, 0, 0, true), 1, "", 0, 0);
}

/// Two chains of a file, one of them not a polymer, and one built molecule.
class CollectTest : public testing::Test {
protected:
    ModelGuard guard;
    Compound *root = Space::instance();
    Compound *clump = DataMaker::makeClump("1abc");
    Compound *molecule = DataMaker::makeMolecule(clump, "1abc");
    Compound *chain = DataMaker::makeChain(molecule, "A", true);
    Compound *waters = DataMaker::makeChain(molecule, "W", false);
    Compound *first = DataMaker::makeGroup(chain, "ALA", "1");
    Compound *second = DataMaker::makeGroup(chain, "GLY", "2");
    Compound *water = DataMaker::makeGroup(waters, "HOH", "101");
    Compound *ca = MakeAtom(first, "CA"), *cb = MakeAtom(first, "CB");
    Compound *oxygen = MakeAtom(water, "O");
    Compound *built = DataMaker::makeMolecule(DataMaker::makeClump("built"), "A");
    Compound *copy = DataMaker::makeGroup(built, "ALA", "1");
};

/// A node with entries of the test's own, null ones among them, that counts how often it is looked at.
class Branch : public Composite {
public:
    explicit Branch(unsigned &looks)
        : Composite("branch")
        , m_looks(looks) {}

    Iterator ChildBegin() const override {
        ++m_looks;
        return entries.begin();
    }
    Iterator ChildEnd() const override { return entries.end(); }
    bool IsSelected() const override {
        ++m_looks;
        return Composite::IsSelected();
    }
    bool HasSelected() const override {
        ++m_looks;
        return holdsSelection;
    }

    Nodes entries;
    bool holdsSelection = true;

private:
    unsigned &m_looks;
};

class CountedAtom : public Atom {
public:
    explicit CountedAtom(unsigned &looks)
        : Atom({})
        , m_looks(looks) {}

    bool IsSelected() const override {
        ++m_looks;
        return Atom::IsSelected();
    }
    bool HasSelected() const override {
        ++m_looks;
        return Atom::HasSelected();
    }

private:
    unsigned &m_looks;
};

} // namespace

TEST_F(CollectTest, TakesEveryNodeOfTheKindInModelOrder) {
    EXPECT_THAT(Collected(GetAtoms, root, true), ElementsAre(ca, cb, oxygen));
    EXPECT_THAT(Collected(GetResidues, root, true), ElementsAre(first, second, water, copy));
    EXPECT_THAT(Collected(GetGroups, root, true), ElementsAre(first, second, water, copy));
    EXPECT_THAT(Collected(GetGroups, chain, true), ElementsAre(first, second));
}

TEST_F(CollectTest, TakesPolymerChainsAndBuiltMoleculesForPeptides) {
    EXPECT_THAT(Collected(GetPeptides, root, true), ElementsAre(chain, built));
}

TEST_F(CollectTest, TakesTheNucleicAcidChainForAPeptide) {
    Compound *rna = DataMaker::makeChain(molecule, "R", true);
    DataMaker::makeGroup(rna, "U", "1");
    EXPECT_THAT(Collected(GetPeptides, molecule, true), ElementsAre(chain, rna));
}

TEST_F(CollectTest, TakesOnlySelectedNodesWithoutAll) {
    EXPECT_THAT(Collected(GetPeptides, root, false), IsEmpty());
    built->SetSelected(true);
    waters->SetSelected(true);
    EXPECT_THAT(Collected(GetPeptides, root, false), ElementsAre(built));
    chain->SetSelected(true);
    EXPECT_THAT(Collected(GetPeptides, root, false), ElementsAre(chain, built));
    cb->SetSelected(true);
    EXPECT_THAT(Collected(GetAtoms, root, false), ElementsAre(cb));
}

TEST_F(CollectTest, DoesNotHandASelectionDown) {
    chain->SetSelected(true);
    EXPECT_THAT(Collected(GetResidues, root, false), IsEmpty());
    EXPECT_THAT(Collected(GetResidues, chain, false), IsEmpty());
}

TEST_F(CollectTest, LooksBelowTheStartOnly) {
    EXPECT_THAT(Collected(GetPeptides, chain, true), IsEmpty());
    EXPECT_THAT(Collected(GetResidues, first, true), IsEmpty());
    EXPECT_THAT(Collected(GetAtoms, first, true), ElementsAre(ca, cb));
    ca->SetSelected(true);
    EXPECT_THAT(Collected(GetAtoms, second, false), IsEmpty());
}

TEST_F(CollectTest, AppendsWithoutClearing) {
    Nodes out = {nullptr};
    GetAtoms(first, out, true);
    GetAtoms(first, out, true);
    EXPECT_THAT(out, ElementsAre(nullptr, ca, cb, ca, cb));
}

TEST_F(CollectTest, FindsNothingBelowNothing) {
    for (Collector collect : {GetAtoms, GetResidues, GetGroups, GetPeptides})
        EXPECT_THAT(Collected(collect, nullptr, true), IsEmpty());
    EXPECT_THAT(Grids(nullptr, true, true), IsEmpty());
}

TEST_F(CollectTest, PassesNullEntriesBy) {
    unsigned looks = 0;
    Branch branch(looks);
    branch.entries = {nullptr, first, nullptr, chain};
    EXPECT_THAT(Collected(GetResidues, &branch, true), ElementsAre(first, first, second));
    EXPECT_THAT(Collected(GetPeptides, &branch, true), ElementsAre(chain));
    Compound *grid = MakeGrid(clump);
    branch.entries.push_back(grid);
    EXPECT_THAT(Grids(&branch, true, false), ElementsAre(grid));
}

TEST_F(CollectTest, VisitsEachOfAHundredThousandAtomsOnce) {
    unsigned looks = 0;
    std::vector<std::unique_ptr<Compound>> owned;
    Branch molecules(looks);
    for (int residue = 0; residue < 10000; ++residue) {
        auto branch = std::make_unique<Branch>(looks);
        for (int atom = 0; atom < 10; ++atom) {
            owned.push_back(std::make_unique<CountedAtom>(looks));
            branch->entries.push_back(owned.back().get());
        }
        branch->entries.back()->SetSelected(true);
        molecules.entries.push_back(branch.get());
        owned.push_back(std::move(branch));
    }
    EXPECT_EQ(Collected(GetAtoms, &molecules, false).size(), 10000u);
    EXPECT_LE(looks, 110001u);
    looks = 0;
    EXPECT_EQ(Collected(GetAtoms, &molecules, true).size(), 100000u);
    EXPECT_LE(looks, 10001u) << "each branch is asked for its children, no atom for its selection";
}

TEST_F(CollectTest, FindsGridsAmongThePartsOfTheRoot) {
    Compound *map = MakeGrid(root), *other = MakeGrid(root);
    EXPECT_THAT(Grids(root, true, true), ElementsAre(map, other));
    EXPECT_THAT(Grids(root, true, false), IsEmpty());
}

TEST_F(CollectTest, FindsOnlySelectedGridsWithoutAll) {
    Compound *map = MakeGrid(root), *other = MakeGrid(clump);
    EXPECT_THAT(Grids(root, false, true), IsEmpty());
    other->SetSelected(true);
    EXPECT_THAT(Grids(root, false, true), ElementsAre(other));
    map->SetSelected(true);
    EXPECT_THAT(Grids(root, false, true), ElementsAre(other, map));
}

TEST_F(CollectTest, FindsGridsBelowCompositesAtAnyDepth) {
    Compound *inClump = MakeGrid(clump), *inChain = MakeGrid(chain);
    EXPECT_THAT(Grids(root, true, true), ElementsAre(inChain, inClump));
    EXPECT_THAT(Grids(clump, true, false), ElementsAre(inChain, inClump));
}

TEST_F(CollectTest, DoesNotLookIntoThePartsOfChildren) {
    MakeGrid(ca);
    EXPECT_THAT(Grids(root, true, true), IsEmpty());
    EXPECT_THAT(Grids(first, true, true), IsEmpty());
    EXPECT_EQ(Grids(ca, true, true).size(), 1u);
    EXPECT_THAT(Grids(ca, true, false), IsEmpty());
}

TEST_F(CollectTest, DoesNotLookBelowAGrid) {
    Compound *outer = MakeGrid(root);
    Compound *inner = MakeGrid(outer);
    EXPECT_THAT(Grids(root, true, true), ElementsAre(outer));
    EXPECT_THAT(Grids(outer, true, true), ElementsAre(inner));
}

TEST_F(CollectTest, SkipsCompositesThatHoldNoSelectionWithoutAll) {
    unsigned looks = 0;
    Branch branch(looks), inner(looks);
    Compound *grid = MakeGrid(root);
    grid->SetSelected(true);
    inner.entries = {grid};
    branch.entries = {&inner};
    EXPECT_THAT(Grids(&branch, false, false), ElementsAre(grid));
    inner.holdsSelection = false;
    EXPECT_THAT(Grids(&branch, false, false), IsEmpty());
    EXPECT_THAT(Grids(&branch, true, false), ElementsAre(grid));
}
