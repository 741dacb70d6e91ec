#include "formats/files/NodeName.h"

#include <filesystem>

namespace formats {

std::string NodeName(const std::string &file) {
    std::filesystem::path name = std::filesystem::path(file).filename();
    if (name.extension() == ".gz" || name.extension() == ".bz2")
        name = name.stem();
    return name.stem().string();
}

} // namespace formats
