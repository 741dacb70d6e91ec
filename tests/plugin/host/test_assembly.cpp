#include "HostTest.h"

#include "Residue.h"

#include <limits>

using testing::SizeIs;

using VARNO::Compound;

/// Assemblies built up copy by copy.
class AssemblyOfCopies : public HostTest {
protected:
    AssemblyOfCopies() {
        plugin.Execute0();
        Choose("moleculeButton", {example.target});
        Choose("densButton", {example.map});
        EnterQuickSearch();
        // As far as the neighbour's place: 24 Å each way.
        Enter("transstepComboBox", "6");
        Enter("transstepsComboBox", "9");
        Forget();
    }

    /// Fits and builds the first rank; returns the molecule of the copy.
    Compound *FitAndBuildTheBest() {
        if (!Apply())
            return nullptr;
        SelectRank("01");
        Press(ResultsDialog(), "buildButton");
        const auto clumps = BuiltClumps();
        return clumps.empty() ? nullptr : *clumps.back()->ChildBegin();
    }

    /// The least distance between residues of the two, Å.
    static float Distance(Compound *one, Compound *other) {
        float least = std::numeric_limits<float>::max();
        for (const Compound *a : ResiduesOf(one))
            for (const Compound *b : ResiduesOf(other))
                least = std::min(least, (a->GetPosition() - b->GetPosition()).SquaredLength());
        return std::sqrt(least);
    }

    Assembly example = ReadExample();
};

TEST_F(AssemblyOfCopies, TheNextCopyAvoidsTheOneBuilt) {
    Compound *first = FitAndBuildTheBest();
    ASSERT_TRUE(first);
    Forget();
    LeaveResults();

    Choose("surfmolButton", {first});
    EXPECT_EQ(Shown(FitDialog(), "selectedSurfmolLabel"), std::to_string(ResiduesOf(first).size()));
    Compound *second = FitAndBuildTheBest();
    ASSERT_TRUE(second);
    EXPECT_THAT(BuiltClumps(), SizeIs(2));
    EXPECT_EQ(CountMaps("GridFix"), 1);
    // A pose is rejected for a residue whose nearest node of the 2 Å keep-out grid, at most 1.74 Å away, lies
    // within 4 Å of the solid.
    EXPECT_GT(Distance(first, second), 4 - 1.74f);
}

TEST_F(AssemblyOfCopies, WithoutTheSolidTheNextCopyWouldStandInTheSamePlace) {
    Compound *first = FitAndBuildTheBest();
    ASSERT_TRUE(first);
    Forget();
    LeaveResults();
    Compound *second = FitAndBuildTheBest();
    ASSERT_TRUE(second);
    EXPECT_EQ(Distance(first, second), 0.0f);
}

TEST_F(AssemblyOfCopies, ACopyCanBeTheTarget) {
    Compound *copy = FitAndBuildTheBest();
    ASSERT_TRUE(copy);
    Forget();
    LeaveResults();
    Choose("moleculeButton", {copy});
    EXPECT_EQ(Shown(FitDialog(), "selectedMoleculeLabel"), "MVX_1tii_D_displaced_1D");
    Compound *copyOfCopy = FitAndBuildTheBest();
    ASSERT_TRUE(copyOfCopy);
    EXPECT_EQ(copyOfCopy->GetParent()->GetName(), "MVX_MVX_1tii_D_displaced_1_1");
    EXPECT_EQ(ResiduesOf(copyOfCopy).size(), ResiduesOf(example.target).size());
}
