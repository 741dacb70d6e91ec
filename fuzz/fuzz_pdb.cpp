#include "formats/files/FileError.h"
#include "formats/structures/AssembleChains.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    try {
        formats::AssembleChains(
            formats::ParsePdb("input", {reinterpret_cast<const char *>(data), size}).parts);
    } catch (const formats::FileError &) {
        // Refused, as it may be. Any other exception ends the run.
    }
    return 0;
}
