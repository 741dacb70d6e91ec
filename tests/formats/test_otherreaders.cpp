#include "Collect.h"
#include "DataMaker.h"
#include "ModelGuard.h"
#include "TemporaryFolder.h"
#include "TestData.h"
#include "formats/maps/MapFile.h"
#include "formats/structures/StructureFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

using namespace formats;
using namespace VARNO;
using testing::HasSubstr;
using testing::Not;

// What is written here is read and checked by programs of others.

#define REQUIRE_PROGRAM(name, package)                                                                       \
    if (std::system("command -v " name " >/dev/null 2>&1") != 0)                                             \
    GTEST_SKIP() << "there is no " name " here (Debian's " package ")"

namespace {

class OtherReaders : public testing::Test {
protected:
    /// The exit status of a program that is run in the test's folder.
    int Run(const std::string &command) {
        return std::system(("cd '" + m_folder.Path() + "' && " + command + " >output 2>&1").c_str());
    }
    std::string Output() const { return ReadFile(m_folder.File("output")); }

    Clump *Example() const { return ReadStructure(SourceFolder() + "/examples/1tii.pdb"); }

    static std::size_t AtomsBelow(Compound *node) {
        std::vector<Compound *> atoms;
        GetAtoms(node, atoms, true);
        return atoms.size();
    }

    ModelGuard m_guard;
    TemporaryFolder m_folder;
};

} // namespace

TEST_F(OtherReaders, ReadTheSameAtomsInBothFormats) {
    REQUIRE_PROGRAM("gemmi", "gemmi");
    Clump *model = Example();
    const std::size_t atoms = AtomsBelow(model);
    WriteStructure(m_folder.File("a.pdb"), StructureFormat::Pdb, model);
    WriteStructure(m_folder.File("a.cif"), StructureFormat::Mmcif, model);
    EXPECT_EQ(Run("gemmi validate a.cif"), 0) << Output();
    EXPECT_EQ(Run("gemmi convert a.pdb from-pdb.cif"), 0) << Output();
    EXPECT_EQ(Run("gemmi convert a.cif from-mmcif.pdb"), 0) << Output();
    for (const char *converted : {"from-pdb.cif", "from-mmcif.pdb"})
        EXPECT_EQ(AtomsBelow(ReadStructure(m_folder.File(converted))), atoms) << converted;
}

TEST_F(OtherReaders, FindEachResidueNameAmongTheComponents) {
    REQUIRE_PROGRAM("gemmi", "gemmi");
    WriteStructure(m_folder.File("a.cif"), StructureFormat::Mmcif, Example());
    ASSERT_EQ(Run("gemmi grep -b _chem_comp.id a.cif"), 0) << Output();
    const std::string components = '\n' + Output();
    ASSERT_EQ(Run("gemmi grep -b _atom_site.label_comp_id a.cif | sort -u"), 0);
    std::string names = Output();
    EXPECT_EQ(std::ranges::count(names, '\n'), 20);
    for (std::size_t end; (end = names.find('\n')) != std::string::npos; names.erase(0, end + 1))
        EXPECT_THAT(components, HasSubstr('\n' + names.substr(0, end + 1)));
}

TEST_F(OtherReaders, FindNoFaultInAMap) {
    REQUIRE_PROGRAM("mrcfile-validate", "python3-mrcfile");
    Grid &map = *dynamic_cast<Grid *>(
        DataMaker::makeGrid(nullptr, "g", 5, 6, 7, -7.5f, 0, 1, 1.5f, 2, 2.5f, 90, 90, 90));
    for (std::size_t i = 0; i < map.Values().size(); ++i)
        map.Values()[i] = float(i % 13) - 3;
    WriteMap(m_folder.File("a.mrc"), map, "a map");
    EXPECT_EQ(Run("mrcfile-validate a.mrc"), 0) << Output();
}
