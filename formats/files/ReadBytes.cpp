#include "formats/files/ReadBytes.h"

#include <filesystem>

namespace formats {

std::string ReadBytes(const std::string &file, std::size_t limit) {
    ByteSource source(file);
    return ReadBytes(source, limit);
}

std::string ReadBytes(ByteSource &source, std::size_t limit) {
    constexpr std::size_t portion = 1 << 16;
    std::string bytes;
    for (std::size_t held = 0, found = portion; found == portion; held += found) {
        bytes.resize(held + portion);
        found = source.Read({bytes.data() + held, portion});
        bytes.resize(held + found);
        if (bytes.size() > limit)
            throw FileError(source.Name(), "", "holds more than " + std::to_string(limit >> 20) + " MiB");
    }
    return bytes;
}

void CheckIsRegular(const std::string &file) {
    std::error_code ignored;
    const auto status = std::filesystem::status(file, ignored);
    if (std::filesystem::is_directory(status))
        throw FileError(file, "", "cannot be read: Is a directory");
    if (std::filesystem::is_other(status))
        throw FileError(file, "", "is not a regular file");
}

} // namespace formats
