#include "MemoryFile.h"

#include "formats/files/FileError.h"
#include "hosts/common/SavedList.h"

#include <functional>

namespace {

void Allowing(const std::function<void()> &refusal) {
    try {
        refusal();
    } catch (const formats::FileError &) {
        // Refused, as it may be. Any other exception ends the run.
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const MemoryFile file(data, size);
    Allowing([&] {
        const hosts::SavedList list = hosts::ReadSavedList(file.Path());
        for (std::size_t rank = 0; rank <= list.solutions.size() + 1; ++rank)
            Allowing([&] { list.OfRank(long(rank)); });
    });
    return 0;
}
