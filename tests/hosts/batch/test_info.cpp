#include "CommandFixture.h"

#include "DataMaker.h"
#include "TestData.h"
#include "formats/maps/MapFile.h"

#include <fstream>
#include <thread>

#include <sys/stat.h>

using namespace VARNO;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

class Info : public CommandFixture {
protected:
    /// A map of 2 x 3 x 4 voxels, all 1 but one of -3.
    std::string MapFile() {
        const ModelGuard guard;
        Grid &map = *dynamic_cast<Grid *>(
            DataMaker::makeGrid(nullptr, "g", 2, 3, 4, -7.5f, 0, 1, 1.5f, 2, 2.5f, 90, 90, 90));
        std::ranges::fill(map.Values(), 1.0f);
        map.SetValue(1, 0, 0, -3);
        formats::WriteMap(m_folder.File("map.mrc"), map, "a map");
        return m_folder.File("map.mrc");
    }
};

} // namespace

TEST_F(Info, TellsTheChainsOfAStructure) {
    const std::string file = m_folder.Write("in.pdb", smallModel);
    EXPECT_EQ(OutputOf({"info", file}), file + ": structure, PDB\n"
                                               "  chain     kind     residues  with position   atoms\n"
                                               "  A         protein         3              3       3\n"
                                               "  B         protein         2              2       2\n"
                                               "  models    1\n"
                                               "  besides   ligand residues 0, waters 1\n");
}

TEST_F(Info, ShowsABlankChainIdentifierInQuotes) {
    const std::string file = m_folder.Write(
        "in.pdb", "ATOM      1  CA  ALA     1      10.000   2.000   3.000  1.00 11.00           C  \n"
                  "ATOM      2  CA  ALA     2      13.000   2.000   3.000  1.00 11.00           C  \n");
    EXPECT_THAT(OutputOf({"info", file}), HasSubstr("\n  ' '       protein         2 "));
}

TEST_F(Info, TellsAStructureWithoutPolymers) {
    const std::string file = m_folder.Write(
        "in.pdb", "HETATM    1  O   HOH A 101      20.000  20.000  20.000  1.00 30.00           O  \n");
    EXPECT_EQ(OutputOf({"info", file}), file + ": structure, PDB\n"
                                               "  chains    no polymer\n"
                                               "  models    1\n"
                                               "  besides   ligand residues 0, waters 1\n");
}

TEST_F(Info, TellsWhatWasLeftOutOfAStructure) {
    const std::string file = m_folder.Write(
        "in.pdb", "MODEL        1\n" + smallModel.substr(0, smallModel.find("TER")) +
                      "ENDMDL\nMODEL        2\n" + smallModel.substr(0, smallModel.find("TER")) + "ENDMDL\n");
    EXPECT_THAT(OutputOf({"info", file}), AllOf(HasSubstr("\n  models    2\n"), HasSubstr("\n  note      ")));
}

TEST_F(Info, TellsTheGeometryAndTheValuesOfAMap) {
    const std::string file = MapFile();
    EXPECT_EQ(OutputOf({"info", file}),
              file + ": density map\n"
                     "  title     a map\n"
                     "  size      2 x 3 x 4 voxels\n"
                     "  spacing   1.5 x 2 x 2.5 Å\n"
                     "  origin    -7.5, 0, 1 Å, from ORIGIN\n"
                     "  data      mode 2, 32-bit floats, little-endian, axis order XYZ\n"
                     "  values    minimum -3, maximum 1, mean 0.833333, standard deviation 0.799305\n");
}

TEST_F(Info, TellsTheKindFromTheContentNotFromTheName) {
    const std::string map = m_folder.Write("map.pdb", ReadFile(MapFile()));
    EXPECT_THAT(OutputOf({"info", map}), HasSubstr("density map"));
    const std::string model = m_folder.Write("model.mrc", smallModel);
    EXPECT_THAT(OutputOf({"info", model}), HasSubstr("structure, PDB"));
}

TEST_F(Info, TellsARealMapsOddities) {
    REQUIRE_TEST_DATA();
    const std::string folder = TestDataFolder() + "/format/";
    EXPECT_THAT(OutputOf({"info", folder + "3197_nan.map"}),
                AllOf(HasSubstr("\n  origin    -22.8, 0, 0 Å, from NSTART\n"),
                      HasSubstr("\n  note      6 of 8000 voxels")));
    EXPECT_THAT(OutputOf({"info", folder + "emd_3197.map.gz"}),
                AllOf(HasSubstr("from NSTART"), HasSubstr("axis order XYZ, compressed by gzip\n")));
    EXPECT_THAT(OutputOf({"info", folder + "3197_bigendian_wrongstamp.map"}),
                AllOf(HasSubstr("big-endian"), HasSubstr("\n  note      ")));
    EXPECT_THAT(OutputOf({"info", folder + "3197_mode12.map"}), HasSubstr("mode 12, 16-bit floats"));
}

TEST_F(Info, ReadsAPipe) {
    const std::string pipe = m_folder.File("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string &bytes : {ReadFile(MapFile()), smallModel}) {
        std::thread writer([&] { std::ofstream(pipe, std::ios::binary) << bytes; });
        const std::string told = OutputOf({"info", pipe});
        writer.join();
        EXPECT_EQ(told.substr(told.find(':')), [&] {
            const std::string file = OutputOf({"info", m_folder.Write("file", bytes)});
            return file.substr(file.find(':'));
        }());
    }
}

TEST_F(Info, RefusesWhatIsNeither) {
    EXPECT_EQ(ErrorOf({"info", m_folder.Write("empty", "")}), "empty: is empty\n");
    EXPECT_THAT(ErrorOf({"info", m_folder.Write("text", "some words\n")}), StartsWith("text: "));
    EXPECT_THAT(ErrorOf({"info", m_folder.Write("cut.mrc", ReadFile(MapFile()).substr(0, 1050))}),
                StartsWith("cut.mrc: "));
    EXPECT_THAT(ErrorOf({"info", m_folder.Write("program", std::string("\x7F"
                                                                       "ELF\2\1\1\0",
                                                                       8))}),
                StartsWith("program: "));
    EXPECT_THAT(ErrorOf({"info", m_folder.File("absent")}), HasSubstr("No such file"));
    EXPECT_THAT(ErrorOf({"info", m_folder.Path() + "/."}), HasSubstr("directory"));
    EXPECT_EQ(ErrorOf({"info", "/dev/zero"}),
              "/dev/zero: NX (word 1): 0 voxels, and no \"MAP \" in word 53: not an MRC/CCP4 map\n");
    EXPECT_EQ(Run({"info"}).status, 2);
}
