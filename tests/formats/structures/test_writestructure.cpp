#include "Atom.h"
#include "Collect.h"
#include "DataMaker.h"
#include "Space.h"
#include "StructureFixture.h"
#include "TestData.h"
#include "formats/files/FileError.h"

#include <cmath>
#include <filesystem>
#include <numbers>

namespace {

using namespace formats;
using namespace VARNO;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

class WriteStructureTest : public StructureFixture {
protected:
    std::string Written(StructureFormat format, const Compound *node,
                        const Transform &pose = Transform({}, {})) {
        const std::string path = m_folder.File(format == StructureFormat::Pdb ? "out.pdb" : "out.cif");
        WriteStructure(path, format, node, pose);
        return ReadFile(path);
    }

    std::string Refusal(StructureFormat format, const Compound *node) {
        const std::string path = m_folder.Write("out.pdb", "as it was");
        std::string error = "none";
        try {
            WriteStructure(path, format, node);
        } catch (const FileError &thrown) {
            error = std::string(thrown.what()).substr(m_folder.Path().size() + 1);
            EXPECT_EQ(ReadFile(path), "as it was");
        }
        return error;
    }

    /// A clump with a chain of one residue with one atom, for one value that does not fit.
    struct Single {
        std::string chain = "A", residue = "ALA", sequence = "1", element = "C", atom = "CA";
        Vertex position{1, 2, 3, true};
        float charge = 0, bFactor = 20;

        Compound *Make() const {
            Compound *clump = DataMaker::makeClump("single");
            Compound *node = DataMaker::makeChain(DataMaker::makeMolecule(clump, "single"), chain, true);
            DataMaker::makeAtom(DataMaker::makeGroup(node, residue, sequence), element, atom, "1", position,
                                1, "", charge, bFactor);
            return clump;
        }
    };
};

constexpr const char *pdb =
    R"(ATOM      1  N   ALA A  -5A     11.104   6.134  -6.504  1.00 12.50           N1+
ATOM      2  CA  ALA A  -5A     11.639   6.071  -5.147  1.00 13.00           C  
ATOM      3 HG11 VAL A   6      14.117   7.001  -2.400  1.00 14.00           H  
ATOM      4 SE   MSE A   7      14.117   7.001  -2.400  1.00 14.00          SE  
TER       5      MSE A   7                                                      
HETATM    6 CA    CA A 101    -214.117   7.001  -2.400  1.00 14.00          CA2+
HETATM    7  O   HOH A 102    1214.117   7.001  -2.400  1.00-14.00           O1-
ATOM      8  C4'   G  1234       0.000  -0.001   0.001  1.00  0.00           C  
TER       9        G  1234                                                      
END                                                                             
)";

TEST_F(WriteStructureTest, WritesPdbColumnsAsTheyWereRead) {
    const Clump *clump = Read(pdb);
    EXPECT_EQ(Outline(clump),
              "A: ALA-5A(N CA) VAL6(HG11) MSE7(SE); A other: CA101(CA) HOH102(O);  : G1234(C4')");
    EXPECT_EQ(Written(StructureFormat::Pdb, clump), pdb);
}

TEST_F(WriteStructureTest, WritesMmcif) {
    EXPECT_EQ(Written(StructureFormat::Mmcif, Read(pdb)), R"(data_out
#
_entry.id out
#
loop_
_entity.id
_entity.type
1 polymer
2 non-polymer
3 water
4 polymer
#
loop_
_entity_poly.entity_id
_entity_poly.type
1 polypeptide(L)
4 polyribonucleotide
#
loop_
_chem_comp.id
_chem_comp.type
ALA 'L-peptide linking'
CA non-polymer
G 'RNA linking'
HOH non-polymer
MSE 'L-peptide linking'
VAL 'L-peptide linking'
#
loop_
_struct_asym.id
_struct_asym.entity_id
A 1
B 2
C 3
D 4
#
loop_
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
ATOM 1 N N . ALA A 1 1 A 11.104 6.134 -6.504 1.00 12.50 1 -5 ALA A N 1
ATOM 2 C CA . ALA A 1 1 A 11.639 6.071 -5.147 1.00 13.00 0 -5 ALA A CA 1
ATOM 3 H HG11 . VAL A 1 2 ? 14.117 7.001 -2.400 1.00 14.00 0 6 VAL A HG11 1
ATOM 4 SE SE . MSE A 1 3 ? 14.117 7.001 -2.400 1.00 14.00 0 7 MSE A SE 1
HETATM 5 CA CA . CA B 2 . ? -214.117 7.001 -2.400 1.00 14.00 2 101 CA A CA 1
HETATM 6 O O . HOH C 3 . ? 1214.117 7.001 -2.400 1.00 -14.00 -1 102 HOH A O 1
ATOM 7 C "C4'" . G D 4 1 ? 0.000 -0.001 0.001 1.00 0.00 0 1234 G ' ' "C4'" 1
#
)");
}

TEST_F(WriteStructureTest, CopiesOfAChainAreOneEntityUnderTheirOwnNames) {
    Clump *clump = Read(pdb);
    std::vector<Compound *> chains;
    GetPeptides(clump, chains, true);
    const auto *first = dynamic_cast<const Chain *>(chains.at(0));
    const auto *last = dynamic_cast<const Chain *>(chains.at(1));
    const Transform still({}, {}), moved({}, Vertex(10, 0, 0, false));
    WriteAssembly(m_folder.File("out.cif"),
                  std::vector<PlacedChain>{{first, still, "A"}, {last, still, "Z"}, {first, moved, "A2"}});
    const std::string text = ReadFile(m_folder.File("out.cif"));
    EXPECT_THAT(text, HasSubstr("_entity.type\n1 polymer\n2 polymer\n#"));
    EXPECT_THAT(text, HasSubstr("_entity_poly.type\n1 polypeptide(L)\n2 polyribonucleotide\n#"));
    EXPECT_THAT(text, HasSubstr("_struct_asym.entity_id\nA 1\nB 2\nC 1\n#"));
    EXPECT_THAT(text, HasSubstr("ATOM 1 N N . ALA A 1 1 A 11.104 6.134 -6.504 1.00 12.50 1 -5 ALA A N 1\n"));
    EXPECT_THAT(text, HasSubstr(" G B 2 1 ? 0.000 -0.001 0.001 1.00 0.00 0 1234 G Z "));
    EXPECT_THAT(text, HasSubstr(" N N . ALA C 1 1 A 21.104 6.134 -6.504 1.00 12.50 1 -5 ALA A2 N 1\n"));
    EXPECT_EQ(Outline(ReadStructure(m_folder.File("out.cif"))),
              "A: ALA-5A(N CA) VAL6(HG11) MSE7(SE); Z: G1234(C4'); A2: ALA-5A(N CA) VAL6(HG11) MSE7(SE)");
}

TEST_F(WriteStructureTest, WaterStandsBehindTheLigandsOfItsChain) {
    const std::string text =
        Written(StructureFormat::Mmcif,
                Read(R"(ATOM      1  CA  ALA A   1      11.104   6.134  -6.504  1.00 12.50           C
HETATM    2  O   HOH A 101    1214.117   7.001  -2.400  1.00 14.00           O
HETATM    3 CA    CA A 102    -214.117   7.001  -2.400  1.00 14.00          CA
HETATM    4  O   HOH A 103       4.117   7.001  -2.400  1.00 14.00           O
)"));
    EXPECT_THAT(text, HasSubstr("\n1 polymer\n2 non-polymer\n3 water\n#"))
        << "viewers tell water from ligands by the entity";
    EXPECT_THAT(text, ContainsRegex("CA B 2 [^\n]*\nHETATM 3 O O . HOH C 3 [^\n]* 101 HOH A O 1\n"
                                    "HETATM 4 O O . HOH C 3 "));
}

TEST_F(WriteStructureTest, GivesTheSameModelFromBothFormats) {
    Clump *clump = Read(pdb);
    const std::string outline = Outline(clump), atoms = AtomList(clump);
    for (const StructureFormat format : {StructureFormat::Pdb, StructureFormat::Mmcif}) {
        Clump *again = Read(Written(format, clump), "model.pdb");
        EXPECT_EQ(Outline(again), outline);
        EXPECT_EQ(AtomList(again), atoms);
    }
}

TEST_F(WriteStructureTest, GivesTheSameModelsFromBothFormatsOnRealFiles) {
    REQUIRE_TEST_DATA();
    Quaternion rotation;
    rotation.Set(0.3, -0.5, 0.7, 0.1);
    const Transform poses[] = {Transform({}, {}),
                               Transform(rotation, Vertex(-12.34f, 56.789f, 0.001f, false))};
    for (const auto &entry : std::filesystem::recursive_directory_iterator(TestDataFolder() + "/cases")) {
        if (entry.path().extension() != ".pdb")
            continue;
        SCOPED_TRACE(entry.path());
        Clump *clump = ReadStructure(entry.path());
        for (const Transform &pose : poses) {
            Clump *fromPdb = Read(Written(StructureFormat::Pdb, clump, pose), "same");
            Clump *fromMmcif = Read(Written(StructureFormat::Mmcif, clump, pose), "same");
            EXPECT_EQ(Outline(fromPdb), Outline(fromMmcif));
            EXPECT_EQ(AtomList(fromPdb), AtomList(fromMmcif));
            EXPECT_EQ(Outline(fromPdb), Outline(clump));
        }
    }
}

TEST_F(WriteStructureTest, MovesEveryAtom) {
    Quaternion quarter;
    quarter.Set(std::numbers::pi / 2, Vertex(0, 0, 1, false));
    EXPECT_THAT(Written(StructureFormat::Pdb, Single().Make(), Transform(quarter, Vertex(10, 20, 30, false))),
                HasSubstr("       8.000  21.000  33.000  1.00"));
}

TEST_F(WriteStructureTest, WritesAChainAMoleculeAClumpOrEverything) {
    Clump *clump = Read(pdb);
    const auto outline = [&](const Compound *node) {
        return Outlined(Written(StructureFormat::Pdb, node), "again.pdb");
    };
    EXPECT_EQ(outline(At(clump, {"model", " "})), " : G1234(C4')");
    EXPECT_EQ(outline(At(clump, {"model"})), Outline(clump));
    EXPECT_EQ(outline(clump), Outline(clump));
    const auto before = Space::instance()->PartEnd() - Space::instance()->PartBegin();
    EXPECT_EQ(before, 4);
    DataMaker::makeGrid(nullptr, "map", 2, 2, 2, 0, 0, 0, 1, 1, 1, 90, 90, 90);
    Read(Written(StructureFormat::Mmcif, Space::instance()), "again.cif");
    EXPECT_EQ(m_report.chains.size(), 2u + 1 + 2 + 2);
}

TEST_F(WriteStructureTest, WritesABuiltMoleculeAsAChainOfItsName) {
    Compound *clump = DataMaker::makeClump("MVX_1abc_1");
    Compound *molecule = DataMaker::makeMolecule(clump, "B");
    Compound *residue = DataMaker::makeGroup(molecule, "GLY", "12A");
    Compound *carbon = DataMaker::makeAtom(residue, "C", "C", "1", Vertex(1, 2, 3, true), 1, "", 0, 100);
    Compound *next = DataMaker::makeGroup(molecule, "GLY", "13");
    Compound *nitrogen = DataMaker::makeAtom(next, "N", "N", "1", Vertex(2, 2, 3, true), 1, "", 0, 100);
    DataMaker::makeBond(carbon, nitrogen, 'N');
    for (const Compound *node : {clump, molecule})
        for (const StructureFormat format : {StructureFormat::Pdb, StructureFormat::Mmcif})
            EXPECT_EQ(Outlined(Written(format, node)), "B: GLY12A(C) GLY13(N)");
}

TEST_F(WriteStructureTest, RefusesWhatPdbCannotHold) {
    const auto refusal = [&](const Single &single) { return Refusal(StructureFormat::Pdb, single.Make()); };
    const std::string place = "out.pdb: residue ALA1 of chain A: PDB cannot hold ",
                      advice = "; write mmCIF instead (a name ending in .cif)";
    EXPECT_EQ(refusal({.chain = "AB"}),
              "out.pdb: residue ALA1 of chain AB: PDB cannot hold the chain identifier 'AB'" + advice);
    EXPECT_EQ(refusal({.residue = "A1LU6"}),
              "out.pdb: residue A1LU61 of chain A: PDB cannot hold the residue name 'A1LU6'" + advice);
    EXPECT_EQ(refusal({.sequence = "10000"}),
              "out.pdb: residue ALA10000 of chain A: PDB cannot hold the residue number '10000'" + advice);
    EXPECT_EQ(refusal({.atom = "CA123"}), place + "the atom name 'CA123'" + advice);
    EXPECT_EQ(refusal({.position = {12345.678f, 0, 0, true}}), place + "the coordinate '12345.678'" + advice);
    EXPECT_EQ(refusal({.position = {0, 0, -1000, true}}), place + "the coordinate '-1000.000'" + advice);
    EXPECT_EQ(refusal({.charge = 10}), place + "the charge '10+'" + advice);
    EXPECT_EQ(refusal({.element = "C13"}), place + "the element 'C13'" + advice);
    EXPECT_EQ(refusal({.position = {9999.999f, -999.999f, 0, true}}), "none");
}

TEST_F(WriteStructureTest, RefusesMoreAtomsThanPdbCanNumber) {
    Compound *chain =
        DataMaker::makeChain(DataMaker::makeMolecule(DataMaker::makeClump("x"), "x"), "A", true);
    Compound *residue = nullptr;
    for (int i = 0; i < 99'998; ++i) {
        if (i % 50 == 0)
            residue = DataMaker::makeGroup(chain, "ALA", std::to_string(i / 50));
        DataMaker::makeAtom(residue, "C", std::string("C").append(std::to_string(i % 50)), "1",
                            Vertex(1, 2, 3, true), 1, "", 0, 0);
    }
    EXPECT_EQ(Refusal(StructureFormat::Pdb, chain), "none");
    DataMaker::makeAtom(residue, "C", "X", "1", Vertex(1, 2, 3, true), 1, "", 0, 0);
    EXPECT_EQ(
        Refusal(StructureFormat::Pdb, chain),
        "out.pdb: residue ALA1999 of chain A: PDB cannot hold more than 99999 atoms and ends of chains; "
        "write mmCIF instead (a name ending in .cif)");
}

TEST_F(WriteStructureTest, HoldsInMmcifWhatPdbCannot) {
    Compound *clump = DataMaker::makeClump("large");
    Compound *molecule = DataMaker::makeMolecule(clump, "large");
    for (const char *name : {"AAA", "AAB", "data_", "it's \"x\"", " "}) {
        Compound *chain = DataMaker::makeChain(molecule, name, true);
        Compound *residue = nullptr;
        for (int i = 0; i < 25'000; ++i) {
            if (i % 10 == 0)
                residue = DataMaker::makeGroup(chain, "ALA", std::to_string(i / 10 + 9000));
            DataMaker::makeAtom(residue, "C", i % 10 ? std::string("C").append(std::to_string(i % 10)) : "CA",
                                "1", Vertex(float(i) * 1.37f - 9000, 2, 3, true), 1, "", 0, 0);
        }
    }
    const std::string first = Written(StructureFormat::Mmcif, clump);
    Clump *again = Read(first, "out.cif");
    EXPECT_EQ(Outline(again), Outline(clump));
    EXPECT_EQ(m_report.chains.at(3).atoms, 25'000u);
    EXPECT_EQ(Written(StructureFormat::Mmcif, again), first);
}

TEST_F(WriteStructureTest, RefusesWhatNeitherFormatCanHold) {
    for (const StructureFormat format : {StructureFormat::Pdb, StructureFormat::Mmcif}) {
        const auto refusal = [&](const Single &single) { return Refusal(format, single.Make()); };
        EXPECT_EQ(refusal({.position = {NAN, 0, 0, true}}),
                  "out.pdb: residue ALA1 of chain A: the coordinate nan of atom 'CA' cannot be written");
        EXPECT_EQ(refusal({.chain = "\n"}),
                  "out.pdb: residue ALA1 of chain \n: the name '\\x0a' cannot be written");
        EXPECT_THAT(refusal({.sequence = ""}),
                    HasSubstr("the sequence identifier '' is not a number with an insertion code"));
        EXPECT_THAT(refusal({.sequence = "1AB"}),
                    HasSubstr("the sequence identifier '1AB' is not a number with an insertion code"));
        Compound *empty = DataMaker::makeClump("empty");
        EXPECT_EQ(Refusal(format, empty), "out.pdb: nothing to write: no chain with atoms in 'empty'");
    }
}

TEST_F(WriteStructureTest, KeepsBFactorsWithinTheirColumns) {
    EXPECT_THAT(Written(StructureFormat::Pdb, Single{.bFactor = 1234}.Make()), HasSubstr("  1.00999.99   "));
    EXPECT_THAT(Written(StructureFormat::Pdb, Single{.bFactor = -1234}.Make()), HasSubstr("  1.00-99.99   "));
    EXPECT_THAT(Written(StructureFormat::Pdb, Single{.bFactor = NAN}.Make()), HasSubstr("  1.00  0.00   "));
    EXPECT_THAT(Written(StructureFormat::Mmcif, Single{.bFactor = 1234}.Make()), HasSubstr(" 1.00 1234.00 "));
}

TEST_F(WriteStructureTest, WritesNoNegativeZero) {
    EXPECT_THAT(Written(StructureFormat::Pdb, Single{.position = {-0.0001f, -0.0f, 0, true}}.Make()),
                Not(HasSubstr("-0.000")));
}

TEST_F(WriteStructureTest, PlacesAtomNamesByTheWidthOfTheElement) {
    const auto columns13To16 = [&](const char *element, const char *atom) {
        return Written(StructureFormat::Pdb, Single{.element = element, .atom = atom}.Make()).substr(12, 4);
    };
    EXPECT_EQ(columns13To16("C", "CA"), " CA ");
    EXPECT_EQ(columns13To16("CA", "CA"), "CA  ");
    EXPECT_EQ(columns13To16("H", "HG11"), "HG11");
    EXPECT_EQ(columns13To16("H", "1HB"), " 1HB");
    EXPECT_EQ(columns13To16("SE", "SE1"), "SE1 ");
    EXPECT_EQ(columns13To16("FE", "X"), " X  ");
    EXPECT_EQ(columns13To16("", ""), "    ");
}

TEST(StructureFormatOf, GoesByTheEndOfTheName) {
    EXPECT_EQ(StructureFormatOf("a/b.cif"), StructureFormat::Mmcif);
    EXPECT_EQ(StructureFormatOf("b.mmCIF"), StructureFormat::Mmcif);
    EXPECT_EQ(StructureFormatOf("b.pdb"), StructureFormat::Pdb);
    EXPECT_EQ(StructureFormatOf("cif"), StructureFormat::Pdb);
}

} // namespace
