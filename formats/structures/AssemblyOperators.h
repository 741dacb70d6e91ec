#pragma once

#include "formats/files/ByteSource.h"

#include <array>
#include <vector>

namespace formats {

/// A motion of the coordinates: x' = rotation·x + translation, rows first, in Å.
struct AssemblyOperator {
    std::array<double, 9> rotation{};
    std::array<double, 3> translation{};
};

/// The operators by which an mmCIF file builds its first assembly from the coordinates in it
/// (_pdbx_struct_assembly_gen and _pdbx_struct_oper_list), each once, in the order of the file. Throws
/// FileError for a file that is no mmCIF, has no assembly, or names an operator or a number that is none.
std::vector<AssemblyOperator> ReadAssemblyOperators(const std::string &file);
/// The same from a source of which nothing has been read yet.
std::vector<AssemblyOperator> ReadAssemblyOperatorsFrom(ByteSource &source);

} // namespace formats
