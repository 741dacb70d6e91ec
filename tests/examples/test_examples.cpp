#include "TemporaryFolder.h"
#include "TestData.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

using testing::HasSubstr;

namespace {

struct Outcome {
    int status;
    std::string output; ///< standard output and standard error
};

Outcome Shell(const std::string &command) {
    std::FILE *pipe = popen(("cd '" + SourceFolder() + "' && " + command + " 2>&1").c_str(), "r");
    if (!pipe)
        return {-1, ""};
    std::string output;
    for (int byte; (byte = std::fgetc(pipe)) != EOF;)
        output += char(byte);
    return {pclose(pipe), output};
}

std::string CaLine(int residue, const std::string &coordinates, const std::string &chain = "D") {
    char start[32];
    std::snprintf(start, sizeof start, "ATOM      1  CA  ALA %s%4d    ", chain.c_str(), residue);
    return start + coordinates + "  1.00 20.00           C\n";
}

class Example : public testing::Test {
protected:
    std::string Rmsd(const std::string &first, const std::string &second) {
        return Shell("awk -v chain=D -f examples/rmsd.awk " + m_folder.Write("a", first) + " " +
                     m_folder.Write("b", second))
            .output;
    }

    TemporaryFolder m_folder;
};

/// The number that follows the text.
double NumberAfter(const std::string &text, const std::string &before) {
    const std::size_t at = text.find(before);
    return at == std::string::npos ? -1 : std::atof(text.c_str() + at + before.size());
}

} // namespace

TEST_F(Example, ItsFilesAreWhatItsScriptMakes) {
    const Outcome made = Shell("examples/make.sh " + m_folder.Path() + " " MORVANEX_PROGRAM);
    ASSERT_EQ(made.status, 0) << made.output;
    for (const char *name : {"1tii_8A.mrc", "1tii_D_displaced.pdb"})
        EXPECT_TRUE(ReadFile(m_folder.File(name)) == ReadFile(SourceFolder() + "/examples/" + name)) << name;
}

TEST_F(Example, TheFitFindsThePlaceOfTheDisplacedChain) {
    const Outcome fit = Shell("examples/fit.sh " + m_folder.Path() + " " MORVANEX_PROGRAM);
    ASSERT_EQ(fit.status, 0) << fit.output;
    EXPECT_NEAR(NumberAfter(fit.output, "before the fit "), 21.02, 0.01) << fit.output;
    const double found = NumberAfter(fit.output, "best model of the fit ");
    EXPECT_GT(found, 0);
    // A search in steps of 2 Å and 10° leaves some of it.
    EXPECT_LT(found, 3);
}

TEST_F(Example, TheRmsdIsThatOfTheCaAtomsOfOneChain) {
    const std::string other = CaLine(1, "  50.000  50.000  50.000", "A");
    const std::string first =
        CaLine(1, "   1.000   2.000   3.000") + CaLine(2, "  -1.500   0.000 100.000") + other;
    EXPECT_EQ(Rmsd(first, first), "0.00\n");
    EXPECT_EQ(Rmsd(first, CaLine(2, "  -1.500   0.000  98.000") + CaLine(1, "   4.000   6.000   3.000")),
              "3.81\n");
}

TEST_F(Example, TheRmsdOfNothingIsAnError) {
    EXPECT_THAT(Rmsd(CaLine(1, "   1.000   2.000   3.000"), CaLine(2, "   1.000   2.000   3.000")),
                HasSubstr("no residue of chain D is in both files"));
}
