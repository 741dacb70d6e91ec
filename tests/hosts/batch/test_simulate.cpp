#include "CommandFixture.h"
#include "Process.h"

#include "formats/maps/MapFile.h"

#include <algorithm>
#include <set>

using namespace VARNO;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

class Simulate : public CommandFixture {
protected:
    Simulate() {
        m_model = m_folder.Write("in.pdb", smallModel);
        m_out = m_folder.File("out.mrc");
    }

    std::vector<std::string> Words(const std::string &resolution, const std::string &voxel,
                                   const std::vector<std::string> &more = {}) const {
        std::vector<std::string> words{"simulate", "--model", m_model, "--resolution", resolution,
                                       "--voxel",  voxel,     "--out", m_out};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }
    double Electrons(double voxel) const {
        const ModelGuard guard;
        double sum = 0;
        for (const float value : formats::ReadMap(m_out)->Values())
            sum += double(value);
        return sum * voxel * voxel * voxel;
    }

    std::string m_model, m_out;
};

} // namespace

TEST_F(Simulate, WritesTheMapOfAllPolymerChainsButNoWaters) {
    const std::string output = OutputOf(Words("8", "2"));
    EXPECT_THAT(output, HasSubstr("model: chains A, B of " + m_model + ", 5 atoms\n"));
    EXPECT_THAT(output, HasSubstr("map: 24 x 13 x 13 voxels of 2 Å, origin -20, -10, -10 Å\n"));
    EXPECT_THAT(output, HasSubstr("written: " + m_out + "\n"));
    EXPECT_NEAR(Electrons(2), 5 * 6, 0.01);
    const ModelGuard guard;
    const Grid &map = *formats::ReadMap(m_out);
    EXPECT_EQ(map.Origin(), (Vector<float, 3>(-20, -10, -10)));
    EXPECT_EQ(map.Spacing(), (Vector<float, 3>(2, 2, 2)));
}

TEST_F(Simulate, TakesTheChainsThatAreNamed) {
    EXPECT_THAT(OutputOf(Words("8", "2", {"--chains", "B"})), HasSubstr("model: chains B of"));
    EXPECT_NEAR(Electrons(2), 2 * 6, 0.01);
    EXPECT_EQ(ErrorOf(Words("8", "2", {"--chains", "A,Q"})),
              "in.pdb: chain Q: there is no such polymer chain, only A, B\n");
}

TEST_F(Simulate, TheSeedDecidesTheNoise) {
    const auto bytesOf = [&](const std::vector<std::string> &more) {
        OutputOf(Words("8", "2", more));
        return ReadFile(m_out);
    };
    const std::string first = bytesOf({"--noise", "0.5", "--seed", "3"});
    EXPECT_EQ(bytesOf({"--noise", "0.5", "--seed", "3"}), first);
    EXPECT_NE(bytesOf({"--noise", "0.5", "--seed", "4"}), first);
    EXPECT_NE(bytesOf({}), first);
    EXPECT_THAT(first, HasSubstr("8 A density of in.pdb, noise 0.5 SD, seed 3"));
}

TEST_F(Simulate, TheMapIsThatOfTheBentModelThatIsWritten) {
    const std::string bent = m_folder.File("bent.cif");
    OutputOf(Words("8", "2", {"--bend", "3", "--seed", "5", "--bent-model", bent}));
    const std::string map = ReadFile(m_out);
    m_model = bent;
    OutputOf(Words("8", "2"));
    // Coordinates of a file have three decimals; the header's label names the model.
    const std::string again = ReadFile(m_out);
    ASSERT_EQ(map.size(), again.size());
    const auto *a = reinterpret_cast<const float *>(map.data()),
               *b = reinterpret_cast<const float *>(again.data());
    for (std::size_t i = 256; i < map.size() / 4; ++i)
        ASSERT_NEAR(a[i], b[i], 1e-3) << i;
    m_model = m_folder.File("in.pdb");
    OutputOf(Words("8", "2"));
    EXPECT_NE(ReadFile(m_out), map);
}

TEST_F(Simulate, TheOptionsReachTheMap) {
    const auto mapOf = [&](const std::vector<std::string> &more) {
        OutputOf(Words("8", "2", more));
        const ModelGuard guard;
        const Grid &map = *formats::ReadMap(m_out);
        return std::vector<float>(map.Values().begin(), map.Values().end());
    };
    const std::vector<float> plain = mapOf({});
    std::set<std::vector<float>> maps{plain};
    for (const std::vector<std::string> &more : std::vector<std::vector<std::string>>{
             {"--b-factor", "300"},
             {"--solvent", "0.6"},
             {"--resolution-noise", "1"},
             {"--sharpen", "50"},
             {"--low-pass", "10"},
             {"--mask", "4"},
             {"--mask", "4", "--mask-edge", "3"},
             {"--margin", "1"},
             {"--invert"},
             {"--bend", "1"},
         })
        EXPECT_TRUE(maps.insert(mapOf(more)).second) << more.front();
    EXPECT_EQ(mapOf({"--sharpen", "0", "--solvent", "0", "--bend", "0"}), plain);
    EXPECT_THAT(ReadFile(m_out), HasSubstr("8 A density of in.pdb"));
    mapOf({"--resolution-noise", "0.5", "--seed", "3"});
    EXPECT_THAT(ReadFile(m_out), HasSubstr("8 A density of in.pdb, noise of 8 A x 0.5, seed 3"));
}

TEST_F(Simulate, RefusesTreatmentsThatMakeNoSense) {
    const auto errorOf = [&](const std::vector<std::string> &more) { return ErrorOf(Words("8", "2", more)); };
    EXPECT_EQ(errorOf({"--solvent", "2"}), "--solvent 2: must be a number from 0 to 1\n");
    EXPECT_EQ(errorOf({"--mask-edge", "3"}),
              "--mask-edge: there is no --mask that it could be the edge of\n");
    EXPECT_EQ(errorOf({"--bend", "-1"}), "--bend -1: must be a number from 0 to 100 Å\n");
    EXPECT_EQ(errorOf({"--bend", "nan"}), "--bend nan: must be a number from 0 to 100 Å\n");
    EXPECT_EQ(errorOf({"--bent-model", m_folder.File("bent.pdb")}),
              "--bent-model: there is no --bend that makes one\n");
    EXPECT_EQ(errorOf({"--bend", "1", "--bent-model", m_out}).substr(0, 8), "out.mrc:");
    m_model = m_folder.Write(
        "in.pdb", "ATOM      1  CA  ALA A   1      10.000   2.000   3.000  1.00 11.00           C  \n");
    EXPECT_EQ(errorOf({"--bend", "1"}), "in.pdb: atoms on one line cannot be bent\n");
    EXPECT_THAT(FilesOfFolder(), ElementsAre("in.pdb"));
}

TEST_F(Simulate, WarnsOfVoxelsTooLargeForTheBFactor) {
    EXPECT_THAT(Run(Words("8", "2", {"--b-factor", "60"})).errors,
                HasSubstr("warning: voxels of 2 Å are too large for a B factor of 60 Å²"));
    EXPECT_EQ(Run(Words("8", "2", {"--b-factor", "64"})).errors, "");
}

TEST_F(Simulate, WarnsOfVoxelsTooLargeForTheResolution) {
    const Outcome outcome = Run(Words("8", "4.5"));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.errors,
                HasSubstr("warning: voxels of 4.5 Å are too large to hold a resolution of 8 Å"));
    EXPECT_EQ(Run(Words("8", "4")).errors, "");
}

TEST_F(Simulate, WarnsOfAtomsOfUnknownElements) {
    m_model = m_folder.Write("in.cif",
                             "data_x\nloop_\n_atom_site.group_PDB\n_atom_site.id\n_atom_site.type_symbol\n"
                             "_atom_site.label_atom_id\n_atom_site.label_comp_id\n_atom_site.label_asym_id\n"
                             "_atom_site.label_seq_id\n_atom_site.Cartn_x\n_atom_site.Cartn_y\n"
                             "_atom_site.Cartn_z\nATOM 1 C CA ALA A 1 0 0 0\nATOM 2 X QQ ALA A 1 1 0 0\n"
                             "ATOM 3 C CA ALA A 2 3 0 0\n");
    const Outcome outcome = Run(Words("8", "2"));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.errors, HasSubstr("skips 1 atom of unknown element"));
    EXPECT_THAT(outcome.output, HasSubstr("2 atoms"));
}

TEST_F(Simulate, RefusesNumbersThatMakeNoMap) {
    EXPECT_EQ(ErrorOf(Words("0", "2")), "--resolution 0: must be a number from 0.1 to 1000 Å\n");
    EXPECT_EQ(ErrorOf(Words("8", "-1")), "--voxel -1: must be a number from 0.001 to 1000 Å\n");
    EXPECT_EQ(ErrorOf(Words("nan", "1")), "--resolution nan: must be a number from 0.1 to 1000 Å\n");
    EXPECT_EQ(ErrorOf(Words("8", "1", {"--noise", "-0.5"})),
              "--noise -0.5: must be a number from 0 to 1000 standard deviations\n");
    EXPECT_EQ(ErrorOf(Words("1e30", "1")), "--resolution 1e+30: must be a number from 0.1 to 1000 Å\n");
    EXPECT_EQ(ErrorOf(Words("8", "1e4")), "--voxel 10000: must be a number from 0.001 to 1000 Å\n");
    EXPECT_EQ(ErrorOf(Words("8", "1", {"--noise", "1e30"})),
              "--noise 1e+30: must be a number from 0 to 1000 standard deviations\n");
    EXPECT_EQ(Run(Words("8 A", "1")).status, 2);
    EXPECT_THAT(FilesOfFolder(), ElementsAre("in.pdb"));
}

TEST_F(Simulate, RefusesABoxThatMemoryCannotHold) {
    EXPECT_THAT(ErrorOf(Words("8", "0.001")), AllOf(StartsWith("in.pdb: a map of 43"), HasSubstr("GiB")));
    EXPECT_THAT(FilesOfFolder(), ElementsAre("in.pdb"));
}

TEST_F(Simulate, RefusesBeforeTheWorkWhatAMapFileCannotHold) {
    m_model = m_folder.Write(
        "in.pdb", "ATOM      1  CA  ALA A   1      10.000   2.000   3.000  1.00 11.00           C  \n"
                  "ATOM      2  CA  GLY A   2    9999.000   4.000   0.000  1.00 12.00           C  \n");
    EXPECT_THAT(ErrorOf(Words("1", "0.15")),
                HasSubstr("is beyond what a file holds, 65535 voxels along each axis"));
    EXPECT_THAT(FilesOfFolder(), ElementsAre("in.pdb"));
}

TEST_F(Simulate, RefusesAModelThatIsNone) {
    for (const char *text : {"", "not a model\n"}) {
        m_model = m_folder.Write("in.pdb", text);
        EXPECT_THAT(ErrorOf(Words("8", "2")), StartsWith("in.pdb: "));
    }
    m_model = m_folder.File("absent.pdb");
    EXPECT_THAT(ErrorOf(Words("8", "2")), StartsWith("absent.pdb: "));
    EXPECT_THAT(FilesOfFolder(), ElementsAre("in.pdb"));
}

TEST_F(Simulate, DoesNotWriteOverTheModelNorWhereItCannot) {
    m_out = m_model;
    EXPECT_THAT(ErrorOf(Words("8", "2")), HasSubstr("input"));
    EXPECT_EQ(ReadFile(m_model), smallModel);
    m_out = m_folder.File("none/out.mrc");
    EXPECT_THAT(ErrorOf(Words("8", "2")), HasSubstr("No such file"));
}

TEST_F(Simulate, LeavesTheOldMapWhereTheDiskIsFull) {
    m_folder.Write("out.mrc", "old");
    const ::Outcome outcome = RunProgramProcess(Words("8", "2"), 5000);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, AllOf(HasSubstr(m_out + ": "), HasSubstr("File too large")));
    EXPECT_EQ(ReadFile(m_out), "old");
    EXPECT_THAT(FilesOfFolder(), ElementsAre("in.pdb", "out.mrc"));
    m_out = "/dev/full";
    EXPECT_THAT(Run(Words("8", "2")).errors, HasSubstr("No space left on device"));
}
