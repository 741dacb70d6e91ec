#include "StructureFixture.h"
#include "formats/files/FileError.h"

#include <random>

namespace {

using namespace formats;
using namespace VARNO;

class StructureMutation : public StructureFixture {
protected:
    /// Reads the text with random bytes changed, left out or doubled, some thousand times: it is read, or
    /// refused with an error that names the file.
    void Mutate(const std::string &text, const std::string &favourites) {
        std::mt19937 random(20260401);
        int read = 0, refused = 0;
        for (int round = 0; round < 3000; ++round) {
            std::string mutant = text;
            for (unsigned change = 0; change <= random() % 4; ++change)
                ChangeOne(mutant, favourites, random);
            const std::string error = ErrorOf(mutant, "mutant" + std::to_string(round));
            ++(error == "none" ? read : refused);
            EXPECT_TRUE(error == "none" || error.starts_with("mutant" + std::to_string(round) + ": "))
                << error << '\n'
                << mutant;
            ModelGuard emptied;
        }
        EXPECT_GT(read, 100);
        EXPECT_GT(refused, 100);
    }

private:
    static void ChangeOne(std::string &text, const std::string &favourites, std::mt19937 &random) {
        if (text.empty())
            return;
        const std::size_t at = random() % text.size(), count = 1 + random() % 8;
        switch (random() % 16) {
        case 0:
            text.erase(at, count);
            break;
        case 1:
            text.insert(at, text.substr(random() % text.size(), count * 20));
            break;
        case 2:
            text.resize(at);
            break;
        case 3:
        case 4:
            text[at] = char(random());
            break;
        default:
            text[at] = favourites[random() % favourites.size()];
        }
    }
};

TEST_F(StructureMutation, OfPdb) {
    Mutate("MODEL        1\n"
           "ATOM      1  N   ALA A   1      11.104   6.134  -6.504  1.00 12.50           N1+\n"
           "ATOM      2  CA AALA A   1      11.639   6.071  -5.147  0.50 13.00           C  \n"
           "ATOM      3  CA BALA A   1      11.639   6.071  -5.147  0.50 13.00           C  \n"
           "HETATM    4  CA  MSE A  -1A     11.639   6.071  -5.147  1.00 13.00           C  \n"
           "TER       5      MSE A  -1A\n"
           "HETATM    6 CA    CA A 101      11.639   6.071  -5.147  1.00 13.00          CA2+\n"
           "ATOM      7  P    DA   A000      1.639   6.071  -5.147\r\n"
           "ENDMDL\n"
           "END\n",
           " \n\rATOMHEDLR0129.-+*\t");
}

TEST_F(StructureMutation, OfMmcif) {
    Mutate("data_x\nloop_\n_entity.id\n_entity.type\n1 polymer\n2 water\n"
           "loop_\n_struct_asym.id\n_struct_asym.entity_id\nA 1\nB 2\n"
           "loop_\n_atom_site.group_PDB\n_atom_site.type_symbol\n_atom_site.label_atom_id\n"
           "_atom_site.label_alt_id\n_atom_site.label_comp_id\n_atom_site.label_asym_id\n"
           "_atom_site.pdbx_PDB_ins_code\n_atom_site.Cartn_x\n_atom_site.Cartn_y\n_atom_site.Cartn_z\n"
           "_atom_site.pdbx_formal_charge\n_atom_site.auth_seq_id\n_atom_site.auth_asym_id\n"
           "_atom_site.pdbx_PDB_model_num\n"
           "ATOM N N . ALA A ? 1.5 2.5 3.5 ? 1 AAA 1\n"
           "ATOM C \"C'\" A ALA A ? 1.5 2.5(3) -3.5e1 1 1 AAA 1\n"
           "HETATM C 'C A' B ALA A B 1.5 2.5 3.5 -1 1 AAA 1\n"
           "HETATM O\n;O\n;\n. HOH B . 1.5 . ? ? 99 ' ' 1\n"
           "#\n",
           " \n\r_;'\"#?.0129-+AB$");
}

} // namespace
