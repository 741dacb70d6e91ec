#include "formats/files/FileError.h"

namespace formats {

FileError::FileError(const std::string &file, const std::string &place, const std::string &problem)
    : std::runtime_error(file + ": " + (place.empty() ? "" : place + ": ") + problem) {}

} // namespace formats
