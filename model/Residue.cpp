#include "Residue.h"

#include <algorithm>
#include <iterator>

namespace VARNO {

namespace {

struct Code {
    const char *name;
    char letter;
};

// Amino acids (the twenty, the ambiguous ASX and GLX, selenomethionine in methionine's place, selenocysteine
// and pyrrolysine) and nucleotides, by the names that they have in the PDB.
constexpr Code codes[] = {
    {"ALA", 'A'}, {"ARG", 'R'}, {"ASN", 'N'}, {"ASP", 'D'}, {"CYS", 'C'}, {"GLN", 'Q'},
    {"GLU", 'E'}, {"GLY", 'G'}, {"HIS", 'H'}, {"ILE", 'I'}, {"LEU", 'L'}, {"LYS", 'K'},
    {"MET", 'M'}, {"PHE", 'F'}, {"PRO", 'P'}, {"SER", 'S'}, {"THR", 'T'}, {"TRP", 'W'},
    {"TYR", 'Y'}, {"VAL", 'V'}, {"ASX", 'B'}, {"GLX", 'Z'}, {"MSE", 'M'}, {"SEC", 'U'},
    {"PYL", 'O'}, {"A", 'A'},   {"C", 'C'},   {"G", 'G'},   {"U", 'U'},   {"I", 'I'},
    {"DA", 'A'},  {"DC", 'C'},  {"DG", 'G'},  {"DT", 'T'},  {"DU", 'U'},  {"DI", 'I'},
};

} // namespace

char Residue::GetCode() const {
    const auto known =
        std::ranges::find_if(codes, [name = GetName()](const Code &c) { return name == c.name; });
    return known == std::end(codes) ? 'X' : known->letter;
}

Vertex Residue::GetPosition() const {
    for (const char *name : {"CA", "C4'", "P"})
        if (const Compound *atom = FindChild(name))
            return atom->GetPosition();
    return {};
}

} // namespace VARNO
