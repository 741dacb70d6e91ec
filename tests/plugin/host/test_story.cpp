#include "HostTest.h"

#include "TestData.h"

#include "Atom.h"
#include "Collect.h"
#include "Residue.h"
#include "Transform.h"
#include "formats/maps/MapFile.h"
#include "formats/structures/StructureFile.h"

#include <sstream>

using testing::AllOf;
using testing::ElementsAre;
using testing::Gt;
using testing::IsEmpty;
using testing::Le;
using testing::Not;
using testing::SizeIs;

using VARNO::Bond;
using VARNO::Compound;
using VARNO::Quaternion;
using VARNO::Residue;
using VARNO::Transform;
using VARNO::Vertex;

namespace {

/// The ubiquitin-conjugating enzyme's partner back among the other chains of 1Z5S.
Assembly ReadComplex(const std::string &data) {
    const Compound *clump = formats::ReadStructure(data + "/cases/1z5s_C_solid/start.pdb");
    const Compound *molecule = *clump->ChildBegin();
    return {molecule->FindChild("C"),
            formats::ReadMap(data + "/maps/1z5s_10.mrc"),
            {molecule->FindChild("A"), molecule->FindChild("B"), molecule->FindChild("D")}};
}

std::vector<std::string> Lines(const std::string &text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::vector<double> Numbers(const std::string &line) {
    std::istringstream stream(line);
    return {std::istream_iterator<double>(stream), {}};
}

/// The pose of a line of a results file, as a program that reads the file in single precision has it.
Transform PoseOf(const std::string &line) {
    std::vector<double> numbers = Numbers(line);
    for (double &number : numbers)
        number = double(float(number));
    Quaternion rotation;
    rotation.Set(numbers[0], numbers[1], numbers[2], numbers[3]);
    return Transform(rotation, Vertex(float(numbers[4]), float(numbers[5]), float(numbers[6]), false));
}

std::vector<Compound *> AtomsOf(Compound *node) {
    std::vector<Compound *> atoms;
    VARNO::GetAtoms(node, atoms, true);
    return atoms;
}

/// The bonds that begin at an atom of the residue.
std::vector<const Bond *> BondsFrom(Compound *residue) {
    std::vector<const Bond *> bonds;
    for (const Compound *atom : AtomsOf(residue))
        for (auto part = atom->PartBegin(); part != atom->PartEnd(); ++part)
            bonds.push_back(dynamic_cast<const Bond *>(*part));
    return bonds;
}

} // namespace

/// What a user does from the first selection to the last clean-up, on real structures.
class Story : public HostTest, public testing::WithParamInterface<const char *> {
protected:
    bool Read() {
        if (GetParam() == std::string("Example"))
            assembly = ReadExample();
        else if (!TestDataFolder().empty())
            assembly = ReadComplex(TestDataFolder());
        return assembly.target;
    }

    void ChooseEverything();
    void FitAndWatch();
    void ResultsAreSortedByRank() const;
    void BuildRanks(const std::string &first, const std::string &second);
    void CopiesTheTarget(Compound *clump, const std::string &line, float tolerance) const;
    void SaveAndLoad();
    void CancelASecondFit();
    void StartAfresh();

    /// Three residues of the target and where they would like to be.
    std::string WriteRestraints() const;
    std::string SavedLineOfRank(std::size_t rank) const {
        const auto lines = Lines(ReadFile(Path("results.txt")));
        return lines.at(lines.size() - rank);
    }

    Assembly assembly;
    std::vector<Row> rows;
};

std::string Story::WriteRestraints() const {
    const auto residues = ResiduesOf(assembly.target);
    std::ostringstream text;
    for (const std::size_t i : {std::size_t(5), residues.size() / 2, residues.size() - 5}) {
        const auto &residue = dynamic_cast<const Residue &>(*residues[i]);
        const Vertex p = residue.GetPosition();
        text << residue.GetName() << residue.GetSeqId() << " " << p[0] + 3 << " " << p[1] << " " << p[2] - 4
             << "\n";
    }
    return folder.Write("restraints.txt", text.str());
}

void Story::ChooseEverything() {
    plugin.Execute0();
    Choose(assembly);
    Forget();
    const Compound *molecule = assembly.target->GetParent();
    std::size_t residues = 0;
    for (Compound *chain : assembly.solid)
        residues += ResiduesOf(chain).size();
    EXPECT_EQ(Shown(FitDialog(), "selectedMoleculeLabel"), molecule->GetLabel() + assembly.target->GetCode());
    EXPECT_EQ(Shown(FitDialog(), "selectedDensLabel"), assembly.map->GetLabel());
    EXPECT_EQ(Shown(FitDialog(), "selectedSurfmolLabel"), std::to_string(residues));
    EnterQuickSearch();
    EXPECT_EQ(Shown(FitDialog(), "selectedAxlesLabel"), "21");
    EXPECT_EQ(Shown(FitDialog(), "selectedTotalLabel"), std::to_string(21 * 12 * 27));
    Press(FitDialog(), "restraintfileCheckBox");
    Enter("restraintfileEdit", WriteRestraints().c_str());
    Press(FitDialog(), "logfileCheckBox");
    Enter("logfileEdit", Path("poses.log").c_str());
}

void Story::FitAndWatch() {
    const ProgressWatch watch;
    ASSERT_TRUE(Apply());
    ASSERT_THAT(watch.sights, SizeIs(Gt(20u)));
    for (std::size_t i = 1; i < watch.sights.size(); ++i)
        EXPECT_GE(watch.sights[i].value, watch.sights[i - 1].value);
    EXPECT_EQ(watch.sights.front().estimate, "N/A");
    EXPECT_EQ(watch.sights.back().value, 21);
    EXPECT_EQ(watch.sights.back().maximum, 21);
    EXPECT_EQ(watch.sights.back().estimate, "0.00 min");
    EXPECT_FALSE(ProgressDialog());
    EXPECT_FALSE(FitDialog()->isEnabled());
    EXPECT_EQ(CountMaps("GridFix"), 1) << "the solid's";
    EXPECT_THAT(Lines(ReadFile(Path("poses.log"))),
                SizeIs(AllOf(Gt(20u), Le(std::size_t(27 * (1 + 21 * 12))))));
}

void Story::ResultsAreSortedByRank() const {
    ASSERT_THAT(rows, SizeIs(20));
    EXPECT_EQ(rows.front().rank, "01");
    EXPECT_EQ(rows.back().rank, "20");
    for (std::size_t i = 1; i < rows.size(); ++i) {
        EXPECT_LT(rows[i - 1].rank, rows[i].rank);
        EXPECT_GE(std::stod(rows[i - 1].score), std::stod(rows[i].score));
    }
}

void Story::BuildRanks(const std::string &first, const std::string &second) {
    SelectRank(first);
    SelectRank(second);
    messages.Clear();
    Press(ResultsDialog(), "buildButton");
    EXPECT_THAT(messages.Debug(), ElementsAre("Built solution " + std::to_string(std::stoi(first)) + ".",
                                              "Built solution " + std::to_string(std::stoi(second)) + "."));
}

void Story::CopiesTheTarget(Compound *clump, const std::string &line, float tolerance) const {
    ASSERT_EQ(clump->ChildEnd() - clump->ChildBegin(), 1);
    Compound *molecule = *clump->ChildBegin();
    EXPECT_EQ(molecule->GetName(), assembly.target->GetLabel());
    const Transform pose = PoseOf(line);
    const auto sources = ResiduesOf(assembly.target), copies = ResiduesOf(molecule);
    ASSERT_EQ(copies.size(), sources.size());
    for (std::size_t i = 0; i < copies.size(); ++i) {
        EXPECT_EQ(copies[i]->GetLabel(), sources[i]->GetLabel());
        const auto sourceAtoms = AtomsOf(sources[i]), copiedAtoms = AtomsOf(copies[i]);
        ASSERT_EQ(copiedAtoms.size(), sourceAtoms.size());
        for (std::size_t a = 0; a < copiedAtoms.size(); ++a) {
            EXPECT_EQ(copiedAtoms[a]->GetName(), sourceAtoms[a]->GetName());
            EXPECT_EQ(copiedAtoms[a]->GetLabel(), sourceAtoms[a]->GetLabel());
            const Vertex moved = pose * sourceAtoms[a]->GetPosition();
            EXPECT_LE((copiedAtoms[a]->GetPosition() - moved).SquaredLength(), tolerance * tolerance);
        }
        const auto bonds = BondsFrom(copies[i]);
        if (i + 1 == copies.size()) {
            EXPECT_THAT(bonds, IsEmpty());
            continue;
        }
        ASSERT_THAT(bonds, SizeIs(1));
        EXPECT_EQ(bonds.front()->GetFirst(), copies[i]->FindChild("C"));
        EXPECT_EQ(bonds.front()->GetSecond(), copies[i + 1]->FindChild("N"));
    }
}

void Story::SaveAndLoad() {
    Save(Path("results.txt"));
    EXPECT_THAT(Lines(ReadFile(Path("results.txt"))), SizeIs(1 + 20));
    EXPECT_THAT(Numbers(SavedLineOfRank(1)), SizeIs(8 + 3)) << "a distance for each restraint";
    Load(Path("results.txt"));
    const auto loaded = Rows();
    ASSERT_EQ(loaded.size(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(loaded[i].rank, rows[i].rank);
        const double score = std::stod(rows[i].score);
        EXPECT_NEAR(std::stod(loaded[i].score), score, 0.001 + 1e-5 * score)
            << "three decimals are saved, six digits are shown";
    }
}

void Story::CancelASecondFit() {
    Enter("recursionSpinBox", "3");
    std::size_t logged = 0;
    const ProgressWatch watch;
    const DuringAFit cancel([&] {
        logged = Lines(ReadFile(Path("poses.log"))).size();
        Press(ProgressDialog(), "cancelButton");
    });
    EXPECT_FALSE(Apply());
    ASSERT_TRUE(cancel.Done());
    ASSERT_THAT(watch.sights, Not(IsEmpty()));
    EXPECT_EQ(watch.sights.back().value, 2) << "no axis more is told of";
    EXPECT_THAT(Lines(ReadFile(Path("poses.log"))), SizeIs(Le(logged + 12ul * 27)))
        << "one axis more is searched";
    EXPECT_FALSE(ProgressDialog());
    EXPECT_TRUE(FitDialog()->isEnabled());
}

void Story::StartAfresh() {
    plugin.Cleanup();
    EXPECT_FALSE(FitDialog());
    plugin.Execute0();
    ASSERT_TRUE(FitDialog());
    EXPECT_EQ(Shown(FitDialog(), "selectedMoleculeLabel"), "N/A");
    EXPECT_FALSE(IsEnabled(FitDialog(), "applyButton"));
}

TEST_P(Story, FromTheSelectionToTheBuiltModelAndAgain) {
    if (!Read())
        GTEST_SKIP() << "no test data: set MORVANEX_DATA to the folder that holds cases.json";
    ChooseEverything();
    FitAndWatch();
    rows = Rows();
    ResultsAreSortedByRank();
    BuildRanks("01", "03");
    SaveAndLoad();
    BuildRanks("01", "03");

    const auto clumps = BuiltClumps();
    ASSERT_THAT(clumps, SizeIs(4));
    const std::string molecule = assembly.target->GetParent()->GetLabel();
    for (const std::size_t i : {0, 1}) {
        const std::size_t rank = 2 * i + 1;
        for (Compound *clump : {clumps[i], clumps[2 + i]})
            EXPECT_EQ(clump->GetName(), "MVX_" + molecule + "_" + std::to_string(rank));
        // The file has two decimals, and a rotation acts about the frame's origin, some 100 Å away.
        CopiesTheTarget(clumps[i], SavedLineOfRank(rank), 3);
        CopiesTheTarget(clumps[2 + i], SavedLineOfRank(rank), 0);
    }

    LeaveResults();
    EXPECT_FALSE(ResultsDialog());
    EXPECT_TRUE(FitDialog()->isEnabled());
    CancelASecondFit();
    StartAfresh();
    EXPECT_THAT(Warnings(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Of, Story, testing::Values("Example", "TestData"),
                         [](const auto &instance) { return std::string(instance.param); });
