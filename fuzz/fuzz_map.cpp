#include "Space.h"
#include "formats/files/ByteSource.h"
#include "formats/maps/MapFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    try {
        formats::ByteSource source("input", {reinterpret_cast<const char *>(data), size});
        formats::MapReport report;
        VARNO::Space::instance()->Remove(formats::ReadMapFrom(source, &report));
    } catch (const formats::FileError &) {
        // Refused, as it may be. Any other exception ends the run.
    }
    return 0;
}
