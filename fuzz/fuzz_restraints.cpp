#include "MemoryFile.h"

#include "fit/Restraints.h"
#include "formats/files/FileError.h"
#include "hosts/common/RestraintsCheck.h"

#include <algorithm>
#include <bit>
#include <cstdlib>

namespace {

bool IsSame(const fit::RestraintRecord &a, const fit::RestraintRecord &b) {
    bool same = a.residue == b.residue;
    for (unsigned i = 0; i < 3; ++i)
        same = same &&
               std::bit_cast<std::uint32_t>(a.position[i]) == std::bit_cast<std::uint32_t>(b.position[i]);
    return same;
}

} // namespace

/// What the command's check lets through is what the engine reads.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const MemoryFile file(data, size);
    const auto read = fit::ReadRestraints(QString::fromStdString(file.Path()));
    try {
        const auto checked = hosts::LoadRestraints(file.Path());
        if (!std::ranges::equal(checked, read, IsSame))
            std::abort();
    } catch (const formats::FileError &) {
        // Refused, as it may be. Any other exception ends the run.
    }
    return 0;
}
