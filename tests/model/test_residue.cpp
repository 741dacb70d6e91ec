#include "DataMaker.h"
#include "ModelGuard.h"

#include <gtest/gtest.h>

using namespace VARNO;

namespace {

class ResidueTest : public testing::Test {
protected:
    ModelGuard guard;
    Compound *chain = DataMaker::makeChain(DataMaker::makeClump("clump"), "A", true);
    Compound *residue = DataMaker::makeGroup(chain, "ALA", "12A");

    void AddAtom(const std::string &name, float x, bool valid = true) {
        DataMaker::makeAtom(residue, name.substr(0, 1), name, "1", Vertex(x, 0, 0, valid), 1, "", 0, 0);
    }

    char CodeOf(const std::string &name) { return DataMaker::makeGroup(chain, name, "1")->GetCode(); }
};

} // namespace

TEST_F(ResidueTest, IsLabelledByNameAndSequenceIdentifier) {
    EXPECT_EQ(residue->GetLabel(), "ALA12A");
    EXPECT_EQ(residue->GetName(), "ALA");
    EXPECT_EQ(dynamic_cast<Group *>(residue)->GetSeqId(), "12A");
    EXPECT_EQ(DataMaker::makeGroup(chain, "GLY", "-3")->GetLabel(), "GLY-3");
}

TEST_F(ResidueTest, HasAOneLetterCodePerAminoAcid) {
    const std::pair<const char *, char> known[] = {
        {"ALA", 'A'}, {"ARG", 'R'}, {"ASN", 'N'}, {"ASP", 'D'}, {"CYS", 'C'}, {"GLN", 'Q'}, {"GLU", 'E'},
        {"GLY", 'G'}, {"HIS", 'H'}, {"ILE", 'I'}, {"LEU", 'L'}, {"LYS", 'K'}, {"MET", 'M'}, {"PHE", 'F'},
        {"PRO", 'P'}, {"SER", 'S'}, {"THR", 'T'}, {"TRP", 'W'}, {"TYR", 'Y'}, {"VAL", 'V'},
    };
    for (const auto &[name, code] : known)
        EXPECT_EQ(CodeOf(name), code) << name;
}

TEST_F(ResidueTest, HasACodeForAmbiguousAndRareAminoAcids) {
    EXPECT_EQ(CodeOf("ASX"), 'B');
    EXPECT_EQ(CodeOf("GLX"), 'Z');
    EXPECT_EQ(CodeOf("MSE"), 'M');
    EXPECT_EQ(CodeOf("SEC"), 'U');
    EXPECT_EQ(CodeOf("PYL"), 'O');
}

TEST_F(ResidueTest, HasACodeForNucleotides) {
    for (const std::string letter : {"A", "C", "G", "U", "I"})
        EXPECT_EQ(CodeOf(letter), letter[0]);
    for (const std::string letter : {"A", "C", "G", "T", "U", "I"})
        EXPECT_EQ(CodeOf("D" + letter), letter[0]);
}

TEST_F(ResidueTest, IsCodedXWhereTheNameIsUnknown) {
    for (const char *name : {"UNK", "HEM", "", "ala", "AL", "ALAX", "T"})
        EXPECT_EQ(CodeOf(name), 'X') << name;
}

TEST_F(ResidueTest, HasNoPositionWithoutARepresentativeAtom) {
    AddAtom("N", 1);
    AddAtom("CB", 2);
    EXPECT_FALSE(residue->GetPosition().IsValid());
}

TEST_F(ResidueTest, StandsAtItsCA) {
    AddAtom("P", 1);
    AddAtom("C4'", 2);
    AddAtom("CA", 3);
    EXPECT_TRUE(residue->GetPosition().IsValid());
    EXPECT_EQ(residue->GetPosition()[0], 3);
}

TEST_F(ResidueTest, StandsAtC4PrimeWithoutCA) {
    AddAtom("P", 1);
    AddAtom("C4'", 2);
    EXPECT_EQ(residue->GetPosition()[0], 2);
}

TEST_F(ResidueTest, StandsAtPWithoutCAAndC4Prime) {
    AddAtom("O5'", 4);
    AddAtom("P", 1);
    EXPECT_TRUE(residue->GetPosition().IsValid());
    EXPECT_EQ(residue->GetPosition()[0], 1);
}

TEST_F(ResidueTest, IsAsValidAsItsRepresentativeAtom) {
    AddAtom("CA", 3, false);
    EXPECT_FALSE(residue->GetPosition().IsValid());
}
