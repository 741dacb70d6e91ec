#include "CommandFixture.h"
#include "Process.h"

#include "Collect.h"
#include "formats/structures/StructureFile.h"
#include "hosts/common/FitJson.h"

#include <cmath>
#include <fstream>

using namespace VARNO;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

/// Rank 1, the last line: a quarter turn about z, (x, y, z) to (-y, x, z), and a shift of (1, 2, 3). Rank 2:
/// the shift of (100, 0, 0) alone.
const std::string results = "# w Rx Ry Rz Tx Ty Tz score [extra scores...]\n"
                            "  1.00   0.00   0.00   0.00 100.00   0.00   0.00     1.500\n"
                            "  0.71   0.00   0.00   0.71   1.00   2.00   3.00    12.345\n";

class Build : public CommandFixture {
protected:
    Build() {
        m_target = m_folder.Write("in.pdb", smallModel);
        m_results = m_folder.Write("fit.txt", results);
        m_out = m_folder.File("out.pdb");
    }

    std::vector<std::string> Words(const std::string &rank, const std::vector<std::string> &more = {}) const {
        std::vector<std::string> words{"build",  "--results", m_results, "--target", m_target,
                                       "--rank", rank,        "--out",   m_out};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }

    std::string m_target, m_results, m_out;
};

std::vector<Vertex> PositionsIn(const std::string &file) {
    const ModelGuard guard;
    std::vector<Compound *> atoms;
    GetAtoms(formats::ReadStructure(file), atoms, true);
    std::vector<Vertex> positions;
    for (const Compound *atom : atoms)
        positions.push_back(atom->GetPosition());
    return positions;
}

bool Near(const Vertex &a, float x, float y, float z) {
    return std::hypot(a[0] - x, a[1] - y, a[2] - z) < 0.001f;
}

} // namespace

TEST_F(Build, MovesAllAtomsOfTheChainByThePose) {
    const std::string output = OutputOf(Words("1"));
    EXPECT_THAT(output, HasSubstr("target: chain A of " + m_target + "\n"));
    EXPECT_THAT(output, HasSubstr("rank 1, score 12.345: " + m_out + "\n"));
    const std::vector<Vertex> moved = PositionsIn(m_out);
    ASSERT_EQ(moved.size(), 3u);
    EXPECT_TRUE(Near(moved[0], -1, 12, 6));
    EXPECT_TRUE(Near(moved[1], -3, 15, 3));
    EXPECT_TRUE(Near(moved[2], 0, 18, 6.5f));
}

TEST_F(Build, TakesTheChainThatIsNamed) {
    OutputOf(Words("2", {"--chain", "B"}));
    const std::vector<Vertex> moved = PositionsIn(m_out);
    ASSERT_EQ(moved.size(), 2u);
    EXPECT_TRUE(Near(moved[0], 91, 0, 1));
    EXPECT_EQ(ErrorOf(Words("1", {"--chain", "Q"})),
              "in.pdb: chain Q: there is no such polymer chain, only A, B\n");
}

TEST_F(Build, GivesEachOfSeveralRanksAFile) {
    OutputOf(Words("2,1"));
    EXPECT_THAT(FilesOfFolder(), ElementsAre("fit.txt", "in.pdb", "out-1.pdb", "out-2.pdb"));
    EXPECT_TRUE(Near(PositionsIn(m_folder.File("out-1.pdb"))[0], -1, 12, 6));
    EXPECT_TRUE(Near(PositionsIn(m_folder.File("out-2.pdb"))[0], 110, 2, 3));
}

TEST_F(Build, WritesMmcifWhereTheNameAsksForIt) {
    m_out = m_folder.File("out.cif");
    OutputOf(Words("1"));
    EXPECT_THAT(ReadFile(m_out), StartsWith("data_"));
    EXPECT_TRUE(Near(PositionsIn(m_out)[0], -1, 12, 6));
}

TEST_F(Build, SaysWhatTwoDecimalsCost) {
    // 0.02 of the distance, which is 16.4 Å to the atom of residue 3, and sqrt(3) · 0.005 Å.
    EXPECT_THAT(OutputOf(Words("1")),
                AllOf(HasSubstr("by up to 0.34 Å"), HasSubstr("16.4 Å from the origin")));
}

TEST_F(Build, TakesAJsonFileInFullPrecision) {
    SolutionScore solution;
    solution.score = 5;
    solution.rotation.Set(std::cos(0.4), 0, 0, std::sin(0.4));
    solution.translation.setValue(0.125f, 0, 0, false);
    std::list<SolutionScore> solutions{solution};
    hosts::FitRecord record;
    record.solutions = hosts::RankByScore(solutions);
    m_results = m_folder.File("fit.json");
    std::ofstream out(m_results);
    WriteFitJson(out, record);
    out.close();
    EXPECT_THAT(OutputOf(Words("1")), Not(HasSubstr("precision")));
    const auto c = float(std::cos(0.8)), s = float(std::sin(0.8));
    EXPECT_TRUE(Near(PositionsIn(m_out)[0], 10 * c - 2 * s + 0.125f, 10 * s + 2 * c, 3));
}

TEST_F(Build, SaysWhichLinesWereSkipped) {
    m_results = m_folder.Write("fit.txt", "\n" + results + "1 2 3\n");
    const Outcome outcome = Run(Words("1"));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "morvanex build: warning: " + m_results +
                                  ": skips 2 lines without the eight numbers of a solution: 1, 5\n");
}

TEST_F(Build, RefusesARankOutsideTheList) {
    EXPECT_EQ(ErrorOf(Words("3")), "fit.txt: rank 3: the list has the ranks 1 to 2\n");
    EXPECT_EQ(ErrorOf(Words("1,0")), "fit.txt: rank 0: the list has the ranks 1 to 2\n");
    EXPECT_EQ(ErrorOf(Words("-1")), "fit.txt: rank -1: the list has the ranks 1 to 2\n");
    EXPECT_THAT(FilesOfFolder(), ElementsAre("fit.txt", "in.pdb"));
}

TEST_F(Build, ARankThatIsNoNumberIsWrongUsage) {
    for (const char *rank : {"one", "1,", "1.5", ""}) {
        const Outcome outcome = Run(Words(rank));
        EXPECT_EQ(outcome.status, 2) << rank;
        EXPECT_THAT(outcome.errors, HasSubstr("is not a whole number"));
    }
}

TEST_F(Build, RefusesAResultsFileThatIsNone) {
    for (const std::string &bytes : {std::string(),
                                     std::string("\x7F"
                                                 "ELF\0\1\2",
                                                 7),
                                     std::string("# only this\n")}) {
        m_results = m_folder.Write("fit.txt", bytes);
        EXPECT_THAT(ErrorOf(Words("1")), StartsWith("fit.txt: "));
    }
    m_results = m_folder.File("absent.txt");
    EXPECT_THAT(ErrorOf(Words("1")), StartsWith("absent.txt: "));
    EXPECT_THAT(FilesOfFolder(), ElementsAre("fit.txt", "in.pdb"));
}

TEST_F(Build, RefusesAnEmptyFileName) {
    m_results.clear();
    const Outcome outcome = Run(Words("1"));
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.errors,
              "morvanex build: error: --results: the name of the file is empty (--help explains "
              "the options)\n");
    EXPECT_EQ(Run({"info", ""}).status, 2);
}

TEST_F(Build, ShowsControlCharactersOfFileNamesEscaped) {
    m_out = m_folder.File("o\x1b[31mut\n.pdb");
    EXPECT_THAT(OutputOf(Words("1")), HasSubstr("o\\x1b[31mut\\n.pdb\n"));
}

TEST_F(Build, RefusesATargetThatIsNone) {
    m_target = m_folder.Write(
        "in.pdb", "HETATM    1  O   HOH A 101      20.000  20.000  20.000  1.00 30.00           O  \n");
    EXPECT_THAT(ErrorOf(Words("1")), StartsWith("in.pdb: "));
    m_target = m_folder.Write("in.pdb", "");
    EXPECT_THAT(ErrorOf(Words("1")), StartsWith("in.pdb: "));
    EXPECT_THAT(FilesOfFolder(), ElementsAre("fit.txt", "in.pdb"));
}

TEST_F(Build, DoesNotWriteOverItsInputsNorWhereItCannot) {
    for (const std::string &file : {m_target, m_results}) {
        m_out = file;
        EXPECT_THAT(ErrorOf(Words("1")), HasSubstr("input"));
    }
    EXPECT_EQ(ReadFile(m_target), smallModel);
    EXPECT_EQ(ReadFile(m_results), results);
    m_out = m_folder.Path();
    EXPECT_THAT(ErrorOf(Words("1")), HasSubstr("directory"));
    m_out = m_folder.File("none/out.pdb");
    EXPECT_THAT(ErrorOf(Words("1")), HasSubstr("No such file"));
    m_out = m_folder.File("out.pdb");
    EXPECT_THAT(ErrorOf(Words("1,1")), HasSubstr("out-1.pdb"));
}

TEST_F(Build, LeavesTheOldModelWhereTheDiskIsFull) {
    m_folder.Write("out.pdb", "old");
    const ::Outcome outcome = RunProgramProcess(Words("1"), 100);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, AllOf(HasSubstr(m_out + ": "), HasSubstr("File too large")));
    EXPECT_EQ(ReadFile(m_out), "old");
    EXPECT_THAT(FilesOfFolder(), ElementsAre("fit.txt", "in.pdb", "out.pdb"));
    m_out = "/dev/full";
    EXPECT_THAT(Run(Words("1")).errors, HasSubstr("No space left on device"));
}

TEST_F(Build, RefusesAPlaceThatPdbCannotHold) {
    m_results = m_folder.Write("fit.txt", "1.00 0.00 0.00 0.00 1e20 0.00 0.00 1.000\n");
    EXPECT_EQ(Run(Words("1")).status, 1);
    EXPECT_THAT(FilesOfFolder(), ElementsAre("fit.txt", "in.pdb"));
}
