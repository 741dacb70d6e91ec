#include "formats/files/ReadBytes.h"

#include "formats/files/ByteSource.h"

namespace formats {

std::string ReadBytes(const std::string &file, std::size_t limit) {
    constexpr std::size_t portion = 1 << 16;
    ByteSource source(file);
    std::string bytes;
    for (std::size_t held = 0, found = portion; found == portion; held += found) {
        bytes.resize(held + portion);
        found = source.Read({bytes.data() + held, portion});
        bytes.resize(held + found);
        if (bytes.size() > limit)
            throw FileError(file, "", "holds more than " + std::to_string(limit >> 20) + " MiB");
    }
    return bytes;
}

} // namespace formats
