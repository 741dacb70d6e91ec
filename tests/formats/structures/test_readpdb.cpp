#include "Atom.h"
#include "Collect.h"
#include "DataAdder.h"
#include "Residue.h"
#include "StructureFixture.h"
#include "TestData.h"
#include "formats/files/FileError.h"
#include "formats/maps/MapFile.h"

#include <nlohmann/json.hpp>
#include <zlib.h>

#include <filesystem>
#include <fstream>
#include <thread>

#include <sys/resource.h>
#include <unistd.h>

namespace {

using namespace formats;
using namespace VARNO;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ReadPdb : public StructureFixture {};

constexpr const char *dipeptide =
    R"(ATOM      1  N   ALA A   1      11.104   6.134  -6.504  1.00 12.50           N  
ATOM      2  CA  ALA A   1      11.639   6.071  -5.147  1.00 13.00           C  
ATOM      3  CA  GLY A   2      14.117   7.001  -2.400  1.00 14.00           C1+
TER       4      GLY A   2                                                      
END                                                                             
)";

/// The address space that the process takes, bytes.
rlim_t AddressSpace() {
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * std::size_t(sysconf(_SC_PAGE_SIZE));
}

TEST_F(ReadPdb, MakesClumpMoleculeChainResiduesAtoms) {
    Clump *clump = Read(dipeptide, "1abc.pdb");
    EXPECT_EQ(clump->GetParent(), Space::instance());
    EXPECT_EQ(clump->GetName(), "1abc");
    const Compound *molecule = At(clump, {"1abc"});
    EXPECT_NE(dynamic_cast<const Molecule *>(molecule), nullptr);
    EXPECT_EQ(Outline(molecule), "A: ALA1(N CA) GLY2(CA)");
    const auto *chain = dynamic_cast<const Chain *>(At(clump, {"1abc", "A"}));
    EXPECT_EQ(chain->GetCode(), 'A');
    const auto *residue = dynamic_cast<const Residue *>(At(clump, {"1abc", "A", "ALA"}));
    EXPECT_EQ(residue->GetCode(), 'A');
    EXPECT_EQ(residue->GetSeqId(), "1");
    EXPECT_EQ(residue->GetPosition(), (Vector<float, 3>(11.639f, 6.071f, -5.147f)));
    EXPECT_TRUE(residue->GetPosition().IsValid());
    const auto *atom = dynamic_cast<const Atom *>(At(clump, {"1abc", "A", "GLY", "CA"}));
    EXPECT_EQ(atom->GetLabel(), "C");
    EXPECT_EQ(atom->GetCharge(), 1);
    EXPECT_EQ(atom->GetBFactor(), 14);
    EXPECT_EQ(atom->GetOrbital(), "");
    EXPECT_EQ(atom->GetModelNumber(), "1");
}

TEST_F(ReadPdb, ReportsWhatWasRead) {
    Read(dipeptide);
    EXPECT_EQ(m_report.format, "PDB");
    ASSERT_EQ(m_report.chains.size(), 1u);
    const ChainReport &chain = m_report.chains[0];
    EXPECT_EQ(chain.identifier, "A");
    EXPECT_EQ(chain.kind, "protein");
    EXPECT_EQ(chain.residues, 2u);
    EXPECT_EQ(chain.placed, 2u);
    EXPECT_EQ(chain.atoms, 3u);
    EXPECT_EQ(m_report.models, 1u);
    EXPECT_EQ(m_report.ligands, 0u);
    EXPECT_EQ(m_report.waters, 0u);
    EXPECT_THAT(m_report.warnings, IsEmpty());
}

TEST_F(ReadPdb, TellsSubscribersOnceAndOnlyOfAWholeFile) {
    struct Counter : Subscriber {
        void Notify(const DataPointBase &notice) override { ++notices, nodes += notice.GetNodes().size(); }
        std::size_t notices = 0, nodes = 0;
    } counter;
    Space::instance()->Changes().Subscribe(&counter);
    EXPECT_NE(ErrorOf(std::string(dipeptide).replace(200, 1, "x")), "none");
    EXPECT_EQ(counter.notices, 0u);
    Read(dipeptide);
    Space::instance()->Changes().Unsubscribe(&counter);
    EXPECT_EQ(counter.notices, 1u);
    EXPECT_EQ(counter.nodes, 8u);
}

TEST_F(ReadPdb, HappensWithoutTheModelOnAnotherThread) {
    const std::string path = m_folder.Write("model.pdb", dipeptide);
    std::unique_ptr<Clump> clump;
    std::thread([&] {
        formats::ByteSource source(path);
        EXPECT_FALSE(formats::IsMap(source));
        clump = formats::ReadDetachedStructure(source, &m_report);
    }).join();
    EXPECT_EQ(Space::instance()->PartBegin(), Space::instance()->PartEnd());
    EXPECT_EQ(Outline(clump->FindChild("model")), "A: ALA1(N CA) GLY2(CA)");
    EXPECT_EQ(m_report.format, "PDB");
}

TEST_F(ReadPdb, IsRefusedWhileTheModelTakesNoAdditions) {
    Space::instance()->SetReadOnly(true);
    EXPECT_EQ(ErrorOf(dipeptide), "model.pdb: cannot be added: the model accepts no additions at present");
    Space::instance()->SetReadOnly(false);
    const DataAdder<Space> other(Space::instance());
    EXPECT_EQ(ErrorOf(dipeptide), "model.pdb: cannot be added: the model accepts no additions at present");
}

TEST_F(ReadPdb, ReadsAModelOfItsOwnWithoutTouchingTheTree) {
    Space::instance()->SetReadOnly(true);
    ByteSource source("1abc.pdb", std::string_view(dipeptide));
    StructureReport report;
    const std::unique_ptr<Clump> clump = ReadFreeStructure(source, &report);
    Space::instance()->SetReadOnly(false);
    EXPECT_EQ(clump->GetParent(), nullptr);
    EXPECT_EQ(clump->GetName(), "1abc");
    EXPECT_EQ(Outline(At(clump.get(), {"1abc"})), "A: ALA1(N CA) GLY2(CA)");
    EXPECT_TRUE(At(clump.get(), {"1abc", "A", "ALA"})->IsAttached());
    EXPECT_EQ(report.chains.at(0).atoms, 3u);
}

TEST_F(ReadPdb, ReadsABlankChainIdentifier) {
    std::string text = dipeptide;
    for (const auto at : {21, 21 + 81, 21 + 2 * 81, 21 + 3 * 81})
        text[at] = ' ';
    Clump *clump = Read(text);
    EXPECT_EQ(Outline(clump), " : ALA1(N CA) GLY2(CA)");
    EXPECT_EQ(At(clump, {"model", " "})->GetCode(), ' ');
    EXPECT_EQ(m_report.chains.at(0).identifier, " ");
}

TEST_F(ReadPdb, ReadsColumnsNotWords) {
    EXPECT_EQ(Outlined("ATOM      1  CA  SER D2629     111.104-106.134-106.504  1.00112.50           C\n"
                       "ATOM      2  CA  ALA D-999     111.104-106.134-106.504  1.00112.50           C\n"
                       "ATOM      3  CA  ALA D  -5     111.104-106.134-106.504  1.00112.50           C\n"
                       "ATOM      4  CA  ALA D   0     111.104-106.134-106.504  1.00112.50           C\n"
                       "ATOM      5  CA  ALA D   0A    111.104-106.134-106.504  1.00112.50           C\n"
                       "ATOM      6  CA  ALA D   0B    111.104-106.134-106.504  1.00112.50           C\n"
                       "ATOM      7 HG11AVAL D   1     111.104-106.134-106.504  1.00112.50           H\n"),
              "D: SER2629(CA) ALA-999(CA) ALA-5(CA) ALA0(CA) ALA0A(CA) ALA0B(CA) VAL1(HG11)");
    EXPECT_THAT(AtomList(Space::instance()), HasSubstr("D|SER2629|CA|C|0x1.bc6a7ep+6 -0x1.a889"));
}

TEST_F(ReadPdb, ReadsAnySerialNumber) {
    EXPECT_EQ(Outlined("ATOM      0  N   ALA A   1      11.104   6.134  -6.504\n"
                       "ATOM  *****  CA  ALA A   1      11.639   6.071  -5.147\n"
                       "ATOM  A0000  C   ALA A   1      11.639   6.071  -5.147\n"
                       "ATOM  100000 O   ALA A   1      11.639   6.071  -5.147\n"
                       "ATOM         CB  ALA A   1      11.639   6.071  -5.147\n"),
              "A: ALA1(N CA C O CB)");
}

TEST_F(ReadPdb, ReadsResidueNumbersBeyondTheColumns) {
    EXPECT_EQ(Outlined("ATOM      1  CA  ALA A9999      11.104   6.134  -6.504  1.00 12.50           C\n"
                       "ATOM      2  CA  ALA AA000      11.104   6.134  -6.504  1.00 12.50           C\n"
                       "ATOM      3  CA  ALA AA00Z      11.104   6.134  -6.504  1.00 12.50           C\n"
                       "ATOM      4  CA  ALA A10036     11.104   6.134  -6.504  1.00 12.50           C\n"),
              "A: ALA9999(CA) ALA10000(CA) ALA10035(CA) ALA10036(CA)");
}

TEST_F(ReadPdb, ReadsTheFirstModelOnly) {
    const std::string first =
        "ATOM      1  CA  ALA A   1      11.104   6.134  -6.504  1.00 12.50           C\n";
    const std::string second =
        "ATOM      1  CA  GLY B   1      11.104   6.134  -6.504  1.00 12.50           C\n";
    for (const std::string &text : {
             "MODEL        0\n" + first + "ENDMDL\nMODEL        1\n" + second + "ENDMDL\nEND\n",
             "MODEL        0\n" + first + "MODEL        1\n" + second,
             "MODEL 0\n" + first + "TER\nENDMDL\n" + second + "ENDMDL\n",
             "MODEL        0\n" + first + "END\n" + second + "END\n",
         }) {
        Clump *clump = Read(text);
        EXPECT_EQ(Outline(clump), "A: ALA1(CA)") << text;
        EXPECT_EQ(m_report.models, 2u);
        EXPECT_THAT(m_report.warnings, ElementsAre("1 further model left out"));
        EXPECT_EQ(dynamic_cast<Atom *>(At(clump, {"model", "A", "ALA", "CA"}))->GetModelNumber(), "0");
    }
    Read(first + "TER\nEND\n");
    EXPECT_EQ(m_report.models, 1u);
}

TEST_F(ReadPdb, TakesTheFirstAlternateLocationAtomByAtom) {
    EXPECT_EQ(Outlined("ATOM      1  N   SER A   1      11.104   6.134  -6.504  1.00 12.50           N\n"
                       "ATOM      2  CA BSER A   1      12.000   6.134  -6.504  0.40 12.50           C\n"
                       "ATOM      3  CA ASER A   1      13.000   6.134  -6.504  0.60 12.50           C\n"
                       "ATOM      4  OG ASER A   1      14.000   6.134  -6.504  0.60 12.50           O\n"
                       "ATOM      5  CB BSER A   1      15.000   6.134  -6.504  0.40 12.50           C\n"),
              "A: SER1(N CA OG CB)");
    EXPECT_EQ(m_report.alternates, 1u);
    EXPECT_THAT(m_report.warnings, ElementsAre("1 atom of other alternate locations left out"));
    EXPECT_THAT(AtomList(Space::instance()), HasSubstr("CA|C|0x1.8p+3 "));
}

TEST_F(ReadPdb, TakesTheFirstOfSeveralResiduesAtOnePlace) {
    EXPECT_EQ(Outlined("ATOM      1  N  APRO A  22      11.104   6.134  -6.504  0.60 12.50           N\n"
                       "ATOM      2  N  BSER A  22      11.204   6.134  -6.504  0.40 12.50           N\n"
                       "ATOM      3  CA APRO A  22      11.104   6.134  -6.504  0.60 12.50           C\n"
                       "ATOM      4  CA BSER A  22      11.204   6.134  -6.504  0.40 12.50           C\n"
                       "ATOM      5  CA  ALA A  23      15.000   6.134  -6.504  1.00 12.50           C\n"),
              "A: PRO22(N CA) ALA23(CA)");
    EXPECT_EQ(m_report.alternates, 2u);
    EXPECT_EQ(m_report.chains.at(0).residues, 2u);
}

TEST_F(ReadPdb, FindsAlternateLocationsListedAfterTheirChain) {
    EXPECT_EQ(Outlined("ATOM      1  CA ASER A   1      11.104   6.134  -6.504  0.60 12.50           C\n"
                       "ATOM      2  CA  ALA A   2      15.000   6.134  -6.504  1.00 12.50           C\n"
                       "TER\n"
                       "ATOM      3  CA BSER A   1      11.204   6.134  -6.504  0.40 12.50           C\n"
                       "ATOM      4  CB BSER A   1      11.204   6.134  -6.504  0.40 12.50           C\n"
                       "ATOM      5  CA BALA A   2      11.204   6.134  -6.504  0.40 12.50           C\n"),
              "A: SER1(CA CB) ALA2(CA)");
    EXPECT_EQ(m_report.alternates, 2u);
}

TEST_F(ReadPdb, GuessesWhatShortLinesLeaveOut) {
    Clump *clump = Read("ATOM      1  CA  ALA A   1      11.104   6.134  -6.504              \n"
                        "ATOM      2 HG11 VAL A   2      11.104   6.134  -6.504  1.00 12.50\n"
                        "ATOM      3 1HB  VAL A   2      11.104   6.134  -6.504  1.00 12.50\n"
                        "ATOM      4  SD  MET A   3      11.104   6.134  -6.504  1.00\n"
                        "ATOM      5 CA   MET A   3      11.104   6.134  -6.504\n"
                        "HETATM    6 CA    CA A 101      11.104   6.134  -6.504  1.00 12.50\n"
                        "HETATM    7 ZN    ZN A 102      11.104   6.134  -6.504  1.00 12.50\n"
                        "HETATM    8 FE   HEM A 103      11.104   6.134  -6.504  1.00 12.50\n"
                        "HETATM    9  NA  HEM A 103      11.104   6.134  -6.504  1.00 12.50\n");
    EXPECT_EQ(Outline(clump), "A: ALA1(CA) VAL2(HG11 1HB) MET3(SD CA); A other: CA101(CA) ZN102(ZN) "
                              "HEM103(FE NA)");
    std::vector<Compound *> atoms;
    GetAtoms(clump, atoms, true);
    std::vector<std::string> elements;
    for (const Compound *atom : atoms)
        elements.push_back(atom->GetLabel());
    EXPECT_THAT(elements, ElementsAre("C", "H", "H", "S", "C", "CA", "ZN", "FE", "N"));
    EXPECT_EQ(dynamic_cast<Atom *>(atoms[0])->GetBFactor(), 0);
    EXPECT_EQ(dynamic_cast<Atom *>(atoms[1])->GetBFactor(), 12.5f);
}

TEST_F(ReadPdb, PassesByTheEntryNameInTheLastColumnsOfOldFiles) {
    EXPECT_EQ(Outlined("ATOM      1  CA  THR     1      17.047  14.099   3.625  1.00 13.79      1CRN  70\n"
                       "ATOM      2  CA  THR     2      16.967  12.784   4.338  1.00 10.80      1CRN  71\n"),
              " : THR1(CA) THR2(CA)");
    EXPECT_THAT(AtomList(Space::instance()), HasSubstr(" |THR1|CA|C|"));
    Read("HETATM    1 FE   HEM     1      17.047  14.099   3.625  1.00 13.79      1CRN Q70\n");
    EXPECT_THAT(AtomList(Space::instance()), HasSubstr(" |HEM1|FE|FE|"));
}

TEST_F(ReadPdb, ReadsAnyLineEndAndAnyCaseOfTheRecordNames) {
    const std::string lines[] = {
        "atom      1  CA  ALA A   1      11.104   6.134  -6.504  1.00 12.50           C",
        "Hetatm    2  O   HOH A   2      11.104   6.134  -6.504  1.00 12.50           O"};
    for (const char *end : {"\n", "\r\n", "\r"}) {
        EXPECT_EQ(Outlined("remark" + std::string(end) + lines[0] + end + lines[1] + end + "end" + end),
                  "A: ALA1(CA); A other: HOH2(O)");
        EXPECT_THAT(ErrorOf("REMARK" + std::string(end) + end + lines[0].substr(0, 50)),
                    HasSubstr("model.pdb: line 3: "));
    }
    EXPECT_EQ(Outlined("atom      1  ca  ala A   1      11.104   6.134  -6.504  1.00 12.50           c\n"),
              "A: ALA1(CA)");
    EXPECT_EQ(Outlined("\xef\xbb\xbf" + lines[0]), "A: ALA1(CA)");
}

TEST_F(ReadPdb, PutsLigandsAndWatersBesideThePolymer) {
    const std::string protein =
        "ATOM      1  CA  ALA A   1      11.104   6.134  -6.504  1.00 12.50           C\n"
        "HETATM    2  CA  MSE A   2      11.104   6.134  -6.504  1.00 12.50           C\n";
    const std::string hetero =
        "HETATM    3  C1  GOL A 201      11.104   6.134  -6.504  1.00 12.50           C\n"
        "HETATM    4  O   HOH A 301      11.104   6.134  -6.504  1.00 12.50           O\n"
        "HETATM    5  O   HOH A 302      11.104   6.134  -6.504  1.00 12.50           O\n"
        "HETATM    6  O   HOH A 303      11.104   6.134  -6.504  1.00 12.50           O\n";
    for (const std::string &text : {protein + "TER\n" + hetero, protein + hetero, hetero + protein}) {
        Clump *clump = Read(text);
        EXPECT_EQ(Outline(clump), "A: ALA1(CA) MSE2(CA); A other: GOL201(C1) HOH301(O) HOH302(O) HOH303(O)");
        EXPECT_EQ(m_report.ligands, 1u);
        EXPECT_EQ(m_report.waters, 3u);
        std::vector<Compound *> peptides;
        GetPeptides(clump, peptides, true);
        EXPECT_EQ(peptides.size(), 1u);
    }
}

TEST_F(ReadPdb, KeepsAnUnknownResidueWithinThePolymer) {
    EXPECT_EQ(Outlined("ATOM      1  CA  ALA A   1      11.104   6.134  -6.504  1.00 12.50           C\n"
                       "HETATM    2  CA1 CRQ A   2      11.104   6.134  -6.504  1.00 12.50           C\n"
                       "HETATM    3 NA    NA A   3      11.104   6.134  -6.504  1.00 12.50          NA\n"
                       "ATOM      4  CA  ALA A   4      11.104   6.134  -6.504  1.00 12.50           C\n"
                       "HETATM    5  C1  XYZ A   5      11.104   6.134  -6.504  1.00 12.50           C\n"),
              "A: ALA1(CA) CRQ2(CA1) ALA4(CA); A other: NA3(NA) XYZ5(C1)");
}

TEST_F(ReadPdb, TakesModifiedResiduesAtBothEndsIntoThePolymer) {
    EXPECT_EQ(Outlined("HETATM    1  CA  MSE A   1      11.104   6.134  -6.504  1.00 12.50           C\n"
                       "ATOM      2  CA  ALA A   2      11.104   6.134  -6.504  1.00 12.50           C\n"
                       "HETATM    3  CA  MSE A   3      11.104   6.134  -6.504  1.00 12.50           C\n"),
              "A: MSE1(CA) ALA2(CA) MSE3(CA)");
}

TEST_F(ReadPdb, TellsThePolymerByItsAtomRecordsAlone) {
    EXPECT_EQ(Outlined("ATOM      1  CA  ALA A   1      11.104   6.134  -6.504  1.00 12.50           C\n"
                       "HETATM    2  P   LIP A 201      11.104   6.134  -6.504  1.00 12.50           P\n"
                       "HETATM    3  P   LIP A 202      11.104   6.134  -6.504  1.00 12.50           P\n"),
              "A: ALA1(CA); A other: LIP201(P) LIP202(P)");
}

TEST_F(ReadPdb, ReadsAFileOfHeteroAtomsWithoutAPolymer) {
    EXPECT_EQ(Outlined("HETATM    1  C1  GOL A 201      11.104   6.134  -6.504  1.00 12.50           C\n"
                       "HETATM    2  CA  ALA A 202      11.104   6.134  -6.504  1.00 12.50           C\n"
                       "TER\n"
                       "HETATM    3  O   HOH B 301      11.104   6.134  -6.504  1.00 12.50           O\n"),
              "A other: GOL201(C1) ALA202(CA); B other: HOH301(O)");
    EXPECT_THAT(m_report.chains, IsEmpty());
}

TEST_F(ReadPdb, FindsTheKindOfEachPolymer) {
    Read("ATOM      1  P    DA A   1      11.104   6.134  -6.504  1.00 12.50           P\n"
         "ATOM      2  C4'  DA A   1      12.104   6.134  -6.504  1.00 12.50           C\n"
         "ATOM      3  P     G B   1      11.104   6.134  -6.504  1.00 12.50           P\n"
         "ATOM      4  CA  UNK C   1      11.104   6.134  -6.504  1.00 12.50           C\n"
         "ATOM      5  CB  ALA C   2      11.104   6.134  -6.504  1.00 12.50           C\n");
    std::vector<std::string> kinds;
    for (const ChainReport &chain : m_report.chains)
        kinds.push_back(chain.identifier + ' ' + chain.kind + ' ' + std::to_string(chain.placed) + '/' +
                        std::to_string(chain.residues));
    EXPECT_THAT(kinds, ElementsAre("A DNA 1/1", "B RNA 1/1", "C protein 1/2"));
}

TEST_F(ReadPdb, JoinsTheSplitPartsOfAChain) {
    EXPECT_EQ(Outlined("ATOM      1  N   ALA A   1      11.104   6.134  -6.504  1.00 12.50           N\n"
                       "ATOM      2  CA  ALA B   1      11.104   6.134  -6.504  1.00 12.50           C\n"
                       "ATOM      3  CA  ALA A   1      11.104   6.134  -6.504  1.00 12.50           C\n"
                       "ATOM      4  CA  ALA A   2      11.104   6.134  -6.504  1.00 12.50           C\n"
                       "TER\n"
                       "ATOM      5  CA  ALA A   9      11.104   6.134  -6.504  1.00 12.50           C\n"),
              "A: ALA1(N CA) ALA2(CA) ALA9(CA); B: ALA1(CA)");
}

TEST_F(ReadPdb, KeepsCopiesUnderOneIdentifierApart) {
    const std::string copy =
        "ATOM      1  CA  ALA     1      11.104   6.134  -6.504  1.00 12.50           C\n"
        "ATOM      2  CA  GLY     2      11.104   6.134  -6.504  1.00 12.50           C\n"
        "TER\n";
    EXPECT_EQ(Outlined(copy + copy), " : ALA1(CA) GLY2(CA);  : ALA1(CA) GLY2(CA)");
    EXPECT_EQ(m_report.chains.size(), 2u);
    EXPECT_THAT(m_report.warnings, IsEmpty());
}

TEST_F(ReadPdb, SaysWhereAtomsHaveTheSameName) {
    EXPECT_EQ(Outlined("ATOM      1  CA  ALA A   1      11.104   6.134  -6.504  1.00 12.50           C\n"
                       "ATOM      2  CA  ALA A   1      12.104   6.134  -6.504  1.00 12.50           C\n"),
              "A: ALA1(CA CA)");
    EXPECT_THAT(m_report.warnings, ElementsAre("1 atom with the name of another in the same residue"));
}

TEST_F(ReadPdb, IgnoresColumn21AndSaysSo) {
    EXPECT_EQ(Outlined("ATOM      1  CA  ALAAB   1      11.104   6.134  -6.504  1.00 12.50           C\n"
                       "ATOM      2  CA  ALAAB   2      12.104   6.134  -6.504  1.00 12.50           C\n"),
              "B: ALA1(CA) ALA2(CA)");
    EXPECT_THAT(m_report.warnings,
                ElementsAre("column 21 is not blank in 2 atom records, the first in line 1; it was ignored, "
                            "column 22 is the chain's identifier"));
}

TEST_F(ReadPdb, LeavesOutAtomsWithoutAPosition) {
    Clump *clump = Read("ATOM      1  N   ALA A   1      11.104   6.134  -6.504  1.00 12.50           N\n"
                        "ATOM      2  CA  ALA A   1         nan     nan     nan  1.00 12.50           C\n"
                        "ATOM      3  CA  ALA A   2         inf   6.134  -6.504  1.00 12.50           C\n"
                        "ATOM      4  CA  ALA A   3       1e300   6.134  -6.504  1.00 12.50           C\n");
    EXPECT_EQ(Outline(clump), "A: ALA1(N) ALA2() ALA3()");
    EXPECT_EQ(m_report.unplaced, 3u);
    EXPECT_EQ(m_report.chains.at(0).placed, 0u);
    EXPECT_THAT(m_report.warnings, ElementsAre("3 atoms without finite coordinates left out"));
}

TEST_F(ReadPdb, NamesTheLineAndTheTextOfANumberThatIsNone) {
    const std::string good =
        "ATOM      1  CA  ALA A   1      11.104   6.134  -6.504  1.00 12.50           C\n";
    const auto errorWith = [&](std::size_t column, const std::string &text) {
        return ErrorOf("REMARK\n" + good + std::string(good).replace(column - 1, text.size(), text));
    };
    EXPECT_EQ(errorWith(31, "  11.1x4"),
              "model.pdb: line 3: x coordinate '  11.1x4' (columns 31 to 38) is not a number");
    EXPECT_EQ(errorWith(39, "********"),
              "model.pdb: line 3: y coordinate '********' (columns 39 to 46) is not a number");
    EXPECT_EQ(errorWith(47, "        "),
              "model.pdb: line 3: z coordinate '        ' (columns 47 to 54) is not a number");
    EXPECT_EQ(errorWith(23, "****"),
              "model.pdb: line 3: residue number '****' (columns 23 to 26) is not a number");
    EXPECT_EQ(errorWith(23, "    "),
              "model.pdb: line 3: residue number '    ' (columns 23 to 26) is not a number");
    EXPECT_EQ(errorWith(23, "A 12"),
              "model.pdb: line 3: residue number 'A 12' (columns 23 to 26) is not a number");
    EXPECT_EQ(errorWith(61, " 1,000"),
              "model.pdb: line 3: B factor ' 1,000' (columns 61 to 66) is not a number");
    EXPECT_EQ(errorWith(18, "A\tA"), "model.pdb: line 3: column 19 of an atom record holds '\\x09'");
    EXPECT_EQ(ErrorOf(good + good.substr(0, 53)),
              "model.pdb: line 2: an atom record ends in column 53, before its coordinates do");
    EXPECT_EQ(ErrorOf(good + good.substr(0, 54)), "none");
}

TEST_F(ReadPdb, RefusesWhatIsNoModel) {
    EXPECT_EQ(ErrorOf(""), "model.pdb: is empty");
    EXPECT_EQ(ErrorOf("\n \r\n"), "model.pdb: is empty");
    EXPECT_EQ(ErrorOf("HEADER    HYDROLASE\nEND\n"),
              "model.pdb: is neither PDB (no line is an ATOM or HETATM record) nor mmCIF; it begins with "
              "'HEADER    HYDROLASE'");
    EXPECT_THAT(ErrorOf(std::string("\x7f"
                                    "ELF\0\1\2\xff\n",
                                    9)),
                HasSubstr("it begins with '\\x7fELF\\x00\\x01\\x02\\xff'"));
    EXPECT_THAT(ErrorOf("{\"data_1ABC\": {}}"), HasSubstr("is neither PDB"));
    EXPECT_THROW(ReadStructure(m_folder.File("missing.pdb")), FileError);
    EXPECT_THROW(ReadStructure(m_folder.Path()), FileError);
    EXPECT_THROW(ReadStructure("-"), FileError);
}

TEST_F(ReadPdb, ReadsGzippedFilesWhateverTheirName) {
    for (const char *name : {"1abc.pdb.gz", "1abc.ent", "1abc"}) {
        const std::string path = m_folder.File(name);
        const gzFile file = gzopen(path.c_str(), "wb");
        gzputs(file, dipeptide);
        gzclose(file);
        Clump *clump = ReadStructure(path);
        EXPECT_EQ(clump->GetName(), "1abc");
        EXPECT_EQ(Outline(clump), "A: ALA1(N CA) GLY2(CA)");
        const std::string bytes = ReadFile(path);
        EXPECT_THAT(ErrorOf(bytes.substr(0, bytes.size() / 2)), HasSubstr("the gzip stream ends too early"));
    }
}

TEST_F(ReadPdb, StaysQuickWhereEverythingIsOneResidue) {
    std::string text;
    for (int i = 0; i < 50'000; ++i)
        text += "ATOM      1  CA  ALA A   1      11.104   6.134  -6.504  1.00 12.50           C\n";
    for (int i = 0; i < 50'000; ++i)
        text += "HETATM    1  C1 AXYZ B   1      11.104   6.134  -6.504  1.00 12.50           C\n";
    Read(text);
    EXPECT_EQ(m_report.chains.at(0).atoms, 50'000u);
    EXPECT_EQ(m_report.alternates, 49'999u);
}

TEST_F(ReadPdb, SaysThatTheMemoryRanOut) {
#ifdef MORVANEX_SANITIZED
    GTEST_SKIP() << "the sanitizer's own memory is beyond any limit";
#endif
    std::string text;
    for (int i = 0; i < 200'000; ++i)
        text += "ATOM      1  CA  ALA A   1      11.639   6.071  -5.147  1.00 13.00           C  \n";
    const std::string path = m_folder.Write("large.pdb", text);
    const auto readInLittle = [&] {
        rlimit limit;
        limit.rlim_cur = limit.rlim_max = AddressSpace() + 40'000'000;
        setrlimit(RLIMIT_AS, &limit);
        try {
            ReadStructure(path);
        } catch (const FileError &error) {
            std::fputs(error.what(), stderr);
        }
        std::exit(0);
    };
    EXPECT_EXIT(readInLittle(), testing::ExitedWithCode(0),
                "large.pdb: there is not enough memory to read it$");
}

TEST_F(ReadPdb, ReadsTheModelsOfTheTestCases) {
    REQUIRE_TEST_DATA();
    const std::filesystem::path data = TestDataFolder();
    const nlohmann::json known = nlohmann::json::parse(ReadFile(data / "cases.json"));
    for (const auto &test : known["cases"]) {
        SCOPED_TRACE(test["name"]);
        const Clump *clump = ReadStructure(data / std::string(test["target"]["file"]), &m_report);
        EXPECT_EQ(clump->GetName(), "start");
        std::size_t solid = 0, target = 0;
        for (const ChainReport &chain : m_report.chains)
            (chain.identifier == test["target"]["chain"] ? target : solid) += chain.placed;
        EXPECT_EQ(target, test["target"]["ca"]);
        if (!test["solid"].is_null()) {
            EXPECT_EQ(solid, test["solid"]["ca"]);
        }
    }
}

} // namespace
