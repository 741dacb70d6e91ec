#include "hosts/common/Chains.h"

#include "DataMaker.h"
#include "ModelGuard.h"
#include "formats/files/FileError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace hosts;
using namespace VARNO;
using formats::FileError;
using testing::ElementsAre;

namespace {

using Names = std::vector<std::string>;

class Chains : public testing::Test {
protected:
    Chain *Add(const std::string &identifier, bool polymer = true) {
        return dynamic_cast<Chain *>(DataMaker::makeChain(m_molecule, identifier, polymer));
    }
    std::string ErrorOfChoosing(const std::string &identifier) {
        try {
            ChooseChain("m.pdb", m_clump, identifier);
        } catch (const FileError &error) {
            return error.what();
        }
        return "no error";
    }

    ModelGuard m_guard;
    Clump *m_clump = dynamic_cast<Clump *>(DataMaker::makeClump("m"));
    Compound *m_molecule = DataMaker::makeMolecule(m_clump, "m");
};

} // namespace

TEST_F(Chains, WithoutAnIdentifierTheFirstPolymerIsChosen) {
    Add("W", false);
    Chain *first = Add("B");
    Add("A");
    EXPECT_EQ(ChooseChain("m.pdb", m_clump, std::nullopt), first);
}

TEST_F(Chains, AChainIsChosenByItsIdentifier) {
    Add("A");
    Chain *wanted = Add("Ab");
    Chain *blank = Add(" ");
    EXPECT_EQ(ChooseChain("m.pdb", m_clump, "Ab"), wanted);
    EXPECT_EQ(ChooseChain("m.pdb", m_clump, " "), blank);
    EXPECT_EQ(ChooseChain("m.pdb", m_clump, ""), blank);
}

TEST_F(Chains, AMissingOneIsNamedWithThoseThatAreThere) {
    Add("A");
    Add("");
    Add("W", false);
    EXPECT_EQ(ErrorOfChoosing("Q"), "m.pdb: chain Q: there is no such polymer chain, only A, ' '");
    EXPECT_EQ(ErrorOfChoosing("W"), "m.pdb: chain W: there is no such polymer chain, only A, ' '");
    EXPECT_THROW(ChooseChains("m.pdb", m_clump, Names{"A", "a"}), FileError);
}

TEST_F(Chains, AFileWithoutPolymersHasNothingToChoose) {
    Add("W", false);
    EXPECT_EQ(ErrorOfChoosing("W"), "m.pdb: holds no polymer chain");
    EXPECT_THROW(ChooseChains("m.pdb", m_clump, std::nullopt), FileError);
}

TEST_F(Chains, AListIsTakenInTheOrderOfTheFile) {
    Chain *a = Add("A"), *b = Add("B"), *again = Add("A");
    Add("C");
    Add("W", false);
    EXPECT_THAT(ChooseChains("m.pdb", m_clump, Names{" B", "A"}), ElementsAre(a, b, again));
    EXPECT_EQ(ChooseChains("m.pdb", m_clump, std::nullopt).size(), 4u);
    EXPECT_EQ(ChainNames(AllChains(m_clump)), "A, B, A, C, W");
}
