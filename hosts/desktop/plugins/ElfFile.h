#pragma once

#include <set>
#include <string>
#include <vector>

namespace desktop {

/// What the header of a shared library says, read without loading it.
struct ElfFile {
    unsigned machine = 0;            ///< processor, as EM_X86_64 of <elf.h>
    std::vector<std::string> needed; ///< names of the libraries that it links
    std::set<std::string> names;     ///< of its dynamic symbols, those that it has and those that it misses
};

/// Throws std::runtime_error for what is no shared library of this machine's word size and byte order.
ElfFile ReadElf(const std::string &path);

/// The processor that this program was built for, as EM_X86_64 of <elf.h>.
unsigned OwnMachine();

} // namespace desktop
