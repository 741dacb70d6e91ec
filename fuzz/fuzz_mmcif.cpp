#include "formats/files/FileError.h"
#include "formats/structures/AssembleChains.h"
#include "formats/structures/AssemblyOperators.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    try {
        formats::AssembleChains(formats::ParseMmcif("input", text).parts);
    } catch (const formats::FileError &) {
        // Refused, as it may be. Any other exception ends the run.
    }
    try {
        formats::ByteSource source("input", text);
        formats::ReadAssemblyOperatorsFrom(source);
    } catch (const formats::FileError &) {
    }
    return 0;
}
