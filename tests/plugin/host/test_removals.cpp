#include "HostTest.h"

#include "Space.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using VARNO::Compound;

namespace {

const char *const targetGone = "The target is no longer in the model; the fit does not start.";
const char *const mapGone = "The map is no longer in the model; the fit does not start.";
const char *const nothingToBuild = "The target is no longer in the model; nothing is built.";

} // namespace

/// A host whose user takes things out of the model that the plug-in still points to.
class Removals : public HostTest {
protected:
    Removals() {
        plugin.Execute0();
        Choose(example);
        EnterQuickSearch();
    }

    void RefusesWith(const char *warning) {
        messages.Clear();
        EXPECT_FALSE(Apply());
        EXPECT_THAT(Warnings(), ElementsAre(warning));
        EXPECT_TRUE(FitDialog()->isEnabled());
        EXPECT_FALSE(ProgressDialog());
    }
    void BuildsNothing() {
        messages.Clear();
        SelectRank("01");
        Press(ResultsDialog(), "buildButton");
        EXPECT_THAT(Warnings(), ElementsAre(nothingToBuild));
        EXPECT_THAT(BuiltClumps(), IsEmpty());
    }
    std::string SolidResidues() const {
        for (const std::string &text : messages.Debug())
            if (text.starts_with("Solid residues: "))
                return text.substr(0, text.find(','));
        return "none";
    }

    Assembly example = ReadExample();
};

TEST_F(Removals, OfTheTargetBeforeApply) {
    Remove(example.TargetClump());
    RefusesWith(targetGone);
}

TEST_F(Removals, OfTheMapBeforeApply) {
    Remove(example.map);
    RefusesWith(mapGone);
}

TEST_F(Removals, OfSolidResiduesBeforeApply) {
    Configure("Marginal=1000\n");
    const auto residues = ResiduesOf(example.solid[0]);
    std::size_t left = 0;
    for (std::size_t i = 1; i < example.solid.size(); ++i)
        left += ResiduesOf(example.solid[i]).size();
    for (std::size_t i = 0; i + 1 < residues.size(); ++i)
        Remove(residues[i]);
    EXPECT_TRUE(Apply());
    EXPECT_EQ(SolidResidues(), "Solid residues: " + std::to_string(left + 1));
}

TEST_F(Removals, OfTheWholeSolidBeforeApply) {
    for (Compound *chain : example.solid)
        Remove(chain);
    EXPECT_TRUE(Apply());
    EXPECT_EQ(SolidResidues(), "Solid residues: 0");
    EXPECT_EQ(CountMaps("GridFix"), 0);
}

TEST_F(Removals, DuringAFitWaitForItsEnd) {
    std::vector<Compound *> all = example.solid;
    all.insert(all.end(), {example.TargetClump(), example.map});
    const DuringAFit remove([&] {
        for (Compound *node : all) {
            Remove(node);
            EXPECT_TRUE(node->IsAttached());
        }
    });
    EXPECT_TRUE(Apply());
    EXPECT_TRUE(remove.Done());
    for (Compound *node : all)
        EXPECT_FALSE(node->IsAttached());
    EXPECT_THAT(Rows(), SizeIs(20));
    BuildsNothing();
    LeaveResults();
    RefusesWith(targetGone);
}

TEST_F(Removals, BetweenTwoFits) {
    ASSERT_TRUE(Apply());
    LeaveResults();
    Remove(example.map);
    RefusesWith(mapGone);
    Remove(example.target);
    RefusesWith(targetGone);
}

TEST_F(Removals, OfTheTargetBeforeBuild) {
    ASSERT_TRUE(Apply());
    Remove(example.TargetClump());
    BuildsNothing();
}

TEST_F(Removals, OfTheTargetBeforeBuildingWhatWasLoaded) {
    ASSERT_TRUE(Apply());
    Save(Path("results.txt"));
    LeaveResults();
    Remove(example.TargetClump());
    Press(FitDialog(), "loadButton");
    Load(Path("results.txt"));
    BuildsNothing();
}

TEST_F(Removals, OfABuiltCopyThatWasTheSolid) {
    ASSERT_TRUE(Apply());
    SelectRank("01");
    Press(ResultsDialog(), "buildButton");
    Forget();
    LeaveResults();
    ASSERT_THAT(BuiltClumps(), SizeIs(1));
    Compound *copy = BuiltClumps().front();
    Choose("surfmolButton", {*copy->ChildBegin()});
    const DuringAFit remove([&] { Remove(copy); });
    EXPECT_TRUE(Apply());
    EXPECT_TRUE(remove.Done());
    Forget();
    LeaveResults();
    EXPECT_THAT(BuiltClumps(), IsEmpty());
    messages.Clear();
    EXPECT_TRUE(Apply());
    EXPECT_EQ(SolidResidues(), "Solid residues: 0");
}

TEST_F(Removals, OfABuiltCopyThatIsTheTarget) {
    ASSERT_TRUE(Apply());
    SelectRank("01");
    Press(ResultsDialog(), "buildButton");
    LeaveResults();
    ASSERT_THAT(BuiltClumps(), SizeIs(1));
    Choose("moleculeButton", {*BuiltClumps().front()->ChildBegin()});
    Remove(BuiltClumps().front());
    RefusesWith(targetGone);
}

TEST_F(Removals, AfterCleanup) {
    plugin.Cleanup();
    Remove(example.TargetClump());
    plugin.Execute0();
    // What the last session has chosen stays chosen until "Select" is pressed.
    Choose("densButton", {example.map});
    EXPECT_TRUE(IsEnabled(FitDialog(), "applyButton"));
    RefusesWith(targetGone);
    Remove(example.map);
    Choose("moleculeButton", {});
    EXPECT_FALSE(IsEnabled(FitDialog(), "applyButton"));
}

TEST_F(Removals, BetweenCleanupAndBuildFromResultsLeftOpen) {
    ASSERT_TRUE(Apply());
    plugin.Cleanup();
    Remove(example.TargetClump());
    plugin.Execute0();
    BuildsNothing();
}

TEST_F(Removals, DuringAFitThatCleanupEnds) {
    const DuringAFit end([&] {
        Remove(example.TargetClump());
        plugin.Cleanup();
        Remove(example.map);
        EXPECT_TRUE(example.target->IsAttached());
    });
    EXPECT_FALSE(Apply());
    EXPECT_TRUE(end.Done());
    Settle();
    EXPECT_FALSE(example.target->IsAttached() || example.map->IsAttached());
    EXPECT_EQ(CountWindows("StartFit"), 0);
}

TEST_F(Removals, OfTheKeepOutGridConcernNoFit) {
    ASSERT_TRUE(Apply());
    LeaveResults();
    auto *space = VARNO::Space::instance();
    const std::vector<Compound *> parts(space->PartBegin(), space->PartEnd());
    for (Compound *part : parts)
        if (part->GetName() == "GridFix")
            Remove(part);
    EXPECT_TRUE(Apply());
    EXPECT_EQ(CountMaps("GridFix"), 1);
    EXPECT_THAT(Warnings(), IsEmpty());
}
