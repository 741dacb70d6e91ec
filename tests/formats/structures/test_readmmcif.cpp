#include "Atom.h"
#include "Space.h"
#include "StructureFixture.h"

namespace {

using namespace formats;
using namespace VARNO;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ReadMmcif : public StructureFixture {
protected:
    std::string OutlineOf(const std::string &text) { return Outlined(text, "model.cif"); }
    std::string Error(const std::string &text) { return ErrorOf(text, "model.cif"); }
};

constexpr const char *entities = R"(loop_
_entity.id
_entity.type
1 polymer
2 non-polymer
3 water
)";

constexpr const char *columns = R"(loop_
_atom_site.group_PDB
_atom_site.id
_atom_site.type_symbol
_atom_site.label_atom_id
_atom_site.label_alt_id
_atom_site.label_comp_id
_atom_site.label_asym_id
_atom_site.label_entity_id
_atom_site.label_seq_id
_atom_site.pdbx_PDB_ins_code
_atom_site.Cartn_x
_atom_site.Cartn_y
_atom_site.Cartn_z
_atom_site.occupancy
_atom_site.B_iso_or_equiv
_atom_site.pdbx_formal_charge
_atom_site.auth_seq_id
_atom_site.auth_comp_id
_atom_site.auth_asym_id
_atom_site.auth_atom_id
_atom_site.pdbx_PDB_model_num
)";

std::string Model(const std::string &rows) {
    return std::string("data_1ABC\n#\n") + entities + '#' + '\n' + columns + rows + "#\n";
}

constexpr const char *row = "ATOM 1 C CA . ALA A 1 1 ? 11.639 6.071 -5.147 1.00 13.00 ? 12 ALA AAA CA 1\n";

TEST_F(ReadMmcif, MakesTheTreeWithTheAuthorsNames) {
    Clump *clump =
        Read(Model("ATOM   1 N  \"N'\" . ALA A 1 1 ? 11.104 6.134 -6.504 1.00 12.50 ? 12 ALA AAA \"N'\" 3\n"
                   "ATOM   2 C  CA    . ALA A 1 1 ? 11.639 6.071 -5.147 1.00 13.00 ? 12 ALA AAA CA 3\n"
                   "HETATM 3 SE SE    . MSE A 1 2 B 11.639 6.071 -5.147 1.00 13.00 ? 12 MSE AAA SE 3\n"
                   "HETATM 4 ZN ZN    . ZN  B 2 . ? 14.117 7.001 -2.400 1.00 14.00 2 201 ZN AAA ZN 3\n"
                   "HETATM 5 O  O     . HOH C 3 . ? 14.117 7.001 -2.400 1.00 14.00 ? 301 HOH AAA O 3\n"),
             "1abc.cif");
    EXPECT_EQ(clump->GetName(), "1abc");
    EXPECT_EQ(Outline(clump), "AAA: ALA12(N' CA) MSE12B(SE); AAA other: ZN201(ZN) HOH301(O)");
    EXPECT_EQ(At(clump, {"1abc", "AAA"})->GetCode(), 'A');
    const auto *atom = dynamic_cast<const Atom *>(At(clump, {"1abc", "AAA", "MSE", "SE"}));
    EXPECT_EQ(atom->GetLabel(), "SE");
    EXPECT_EQ(atom->GetModelNumber(), "3");
    EXPECT_EQ(m_report.format, "mmCIF");
    EXPECT_EQ(m_report.chains.at(0).kind, "protein");
    EXPECT_EQ(m_report.ligands, 1u);
    EXPECT_EQ(m_report.waters, 1u);
    EXPECT_EQ(m_report.models, 1u);
    EXPECT_THAT(m_report.warnings, IsEmpty());
    EXPECT_THAT(AtomList(clump),
                HasSubstr("AAA|ZN201|ZN|ZN|0x1.c3be76p+3 0x1.c01062p+2 -0x1.333334p+1|1|2|14|3"));
}

TEST_F(ReadMmcif, NeedsNoColumnButTheCoordinates) {
    EXPECT_EQ(OutlineOf("data_x\nloop_\n_atom_site.Cartn_x\n_atom_site.Cartn_y\n_atom_site.Cartn_z\n1 2 3\n"),
              "  other: 0()");
    EXPECT_EQ(OutlineOf("data_x\nloop_\n_atom_site.label_asym_id\n_atom_site.label_comp_id\n"
                        "_atom_site.label_seq_id\n_atom_site.label_atom_id\n"
                        "_atom_site.Cartn_x\n_atom_site.Cartn_y\n_atom_site.Cartn_z\n"
                        "A ALA 1 CA 1 2 3\nA ALA 2 CA 1 2 3\nB CA . CA 1 2 3\n"),
              "A: ALA1(CA) ALA2(CA); B other: CA0(CA)");
    EXPECT_THAT(AtomList(Space::instance()), HasSubstr("A|ALA2|CA|C|"));
    EXPECT_THAT(AtomList(Space::instance()), HasSubstr("B|CA0|CA|CA|"));
}

TEST_F(ReadMmcif, ReadsAnAtomThatIsNoTable) {
    EXPECT_EQ(OutlineOf("data_x\n_atom_site.Cartn_x 1\n_atom_site.Cartn_y 2\n_atom_site.Cartn_z 3\n"
                        "_atom_site.auth_asym_id Q\n_atom_site.auth_comp_id GLY\n_atom_site.auth_seq_id 7\n"
                        "_atom_site.auth_atom_id CA\n"),
              "Q: GLY7(CA)");
}

TEST_F(ReadMmcif, PutsTheDictionarysNamesForUnknownOnesOfTheAuthor) {
    EXPECT_EQ(OutlineOf(Model("ATOM 1 ? CA . ALA A 1 5 ? 1 2 3 ? ? ? ? ? ? ? ?\n"
                              "ATOM 2 . CB ? ALA A 1 5 . 1 2 3 . . . . . . . .\n")),
              "A: ALA5(CA CB)");
    EXPECT_THAT(AtomList(Space::instance()), HasSubstr("A|ALA5|CA|C|0x1p+0 0x1p+1 0x1.8p+1|1|0|0|1"));
}

TEST_F(ReadMmcif, TellsPolymersByNamesWhereNoEntityDoes) {
    const std::string rows = "ATOM 1 C CA . ALA A ? 1 ? 1 2 3 1 1 ? 1 ALA A CA 1\n"
                             "HETATM 2 C C1 . GOL B ? . ? 1 2 3 1 1 ? 2 GOL A C1 1\n"
                             "HETATM 3 O O . HOH C ? . ? 1 2 3 1 1 ? 3 HOH A O 1\n";
    EXPECT_EQ(OutlineOf("data_x\n" + std::string(columns) + rows), "A: ALA1(CA); A other: GOL2(C1) HOH3(O)");
    EXPECT_EQ(OutlineOf("data_x\nloop_\n_struct_asym.id\n_struct_asym.entity_id\nA 1\nB 1\nC 3\n" +
                        std::string(entities) + columns + rows),
              "A: ALA1(CA) GOL2(C1); A other: HOH3(O)");
}

TEST_F(ReadMmcif, LeavesOutAtomsWithoutAPosition) {
    EXPECT_EQ(OutlineOf(Model("ATOM 1 C CA . ALA A 1 1 ? ? ? ? 1.00 13.00 ? 1 ALA A CA 1\n"
                              "ATOM 2 C CB . ALA A 1 1 ? . . . 1.00 13.00 ? 1 ALA A CB 1\n"
                              "ATOM 3 C C . ALA A 1 1 ? 1.5(2) nan 1 1.00 13.00 ? 1 ALA A C 1\n"
                              "ATOM 4 O O . ALA A 1 1 ? 1.5(2) +1 1 1.00 13.00 ? 1 ALA A O 1\n")),
              "A: ALA1(O)");
    EXPECT_EQ(m_report.unplaced, 3u);
}

TEST_F(ReadMmcif, TakesTheFirstModelAndTheFirstAlternateLocations) {
    EXPECT_EQ(OutlineOf(Model("ATOM 1 C CA B SER A 1 1 ? 1 2 3 1.00 13.00 ? 1 SER A CA 7\n"
                              "ATOM 2 C CA A SER A 1 1 ? 1 2 3 1.00 13.00 ? 1 SER A CA 7\n"
                              "ATOM 3 C CA A THR A 1 1 ? 1 2 3 1.00 13.00 ? 1 THR A CA 7\n"
                              "ATOM 4 C CA . GLY A 1 1 ? 1 2 3 1.00 13.00 ? 1 GLY A CA 8\n"
                              "ATOM 5 C CB A SER A 1 1 ? 1 2 3 1.00 13.00 ? 1 SER A CB 7\n")),
              "A: SER1(CA CB)");
    EXPECT_EQ(m_report.models, 2u);
    EXPECT_EQ(m_report.alternates, 2u);
    EXPECT_THAT(m_report.warnings,
                ElementsAre("1 further model left out", "2 atoms of other alternate locations left out"));
}

TEST_F(ReadMmcif, ReadsTheFirstBlockThatHoldsAtoms) {
    EXPECT_EQ(OutlineOf("data_header\n_entry.id x\n" + Model(row) + "data_second\n" + columns + row),
              "AAA: ALA12(CA)");
    EXPECT_THAT(m_report.warnings,
                ElementsAre("the atoms of block data_second were left out, those of data_1ABC are read"));
}

TEST_F(ReadMmcif, ToldByContentAfterComments) {
    EXPECT_EQ(Outlined("# comment\n\n  #\r\n" + Model(row), "model.pdb"), "AAA: ALA12(CA)");
    EXPECT_EQ(Outlined("\xef\xbb\xbf" + Model(row)), "AAA: ALA12(CA)");
    EXPECT_EQ(Outlined("DATA_X\n" + std::string(columns) + row), "AAA: ALA12(CA)");
}

TEST_F(ReadMmcif, NamesTheRowAndTheValueThatCannotBeRead) {
    const auto errorWith = [&](const std::string &from, const std::string &to) {
        std::string bad = row;
        return Error(Model(row + bad.replace(bad.find(from), from.size(), to)));
    };
    EXPECT_EQ(errorWith("11.639", "11.6x9"),
              "model.cif: row 2 of _atom_site: Cartn_x '11.6x9' is not a number");
    EXPECT_EQ(errorWith("13.00", "'13 Å'"),
              "model.cif: row 2 of _atom_site: B_iso_or_equiv '13 \\xc3\\x85' is not a number");
    EXPECT_EQ(errorWith("? 12 ALA", "300 12 ALA"),
              "model.cif: row 2 of _atom_site: pdbx_formal_charge '300' is not an atom's charge");
    EXPECT_EQ(errorWith("? 12 ALA", "? 12A ALA"),
              "model.cif: row 2 of _atom_site: auth_seq_id '12A' is not an integer");
    EXPECT_EQ(errorWith("? 12 ALA", "? 12345678901 ALA"),
              "model.cif: row 2 of _atom_site: auth_seq_id '12345678901' is not an integer");
    EXPECT_EQ(errorWith("? 11.639", "AB 11.639"),
              "model.cif: row 2 of _atom_site: pdbx_PDB_ins_code 'AB' has more than one letter");
}

TEST_F(ReadMmcif, NamesTheLineOfBrokenSyntax) {
    EXPECT_EQ(Error("data_x\n_a.b 'open\n"), "model.cif: line 2: unterminated 'string'");
    EXPECT_EQ(Error("data_x\nloop_\n_a.b\n_a.c\n1 2 3\n"),
              "model.cif: line 2: Wrong number of values in the loop");
    EXPECT_EQ(Error(Model(row) + std::string("\0\1", 2)),
              "model.cif: line 34: '\\x00\\x01' cannot stand here in mmCIF");
    const std::string whole = Model(row);
    EXPECT_EQ(Error(whole.substr(0, whole.find("11.639"))),
              "model.cif: line 10: Wrong number of values in the loop");
}

TEST_F(ReadMmcif, RefusesWhatIsNoModel) {
    EXPECT_EQ(Error("data_x\n_cell.length_a 10\n"),
              "model.cif: holds no atom in an _atom_site table: it is mmCIF, but no model");
    EXPECT_EQ(Error("data_x\n"),
              "model.cif: holds no atom in an _atom_site table: it is mmCIF, but no model");
    EXPECT_EQ(Error(Model("")), "model.cif: holds no atom in an _atom_site table: it is mmCIF, but no model");
    EXPECT_EQ(Error("data_x\nloop_\n_atom_site.id\n_atom_site.Cartn_x\n_atom_site.Cartn_y\n1 2 3\n"),
              "model.cif: data_x: _atom_site has no column Cartn_z");
}

} // namespace
