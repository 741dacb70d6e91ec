#include "MemoryFile.h"

#include "Space.h"
#include "formats/files/FileError.h"
#include "formats/maps/MapFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const MemoryFile file(data, size);
    try {
        formats::MapReport report;
        VARNO::Space::instance()->Remove(formats::ReadMap(file.Path(), &report));
    } catch (const formats::FileError &) {
        // Refused, as it may be. Any other exception ends the run.
    }
    return 0;
}
