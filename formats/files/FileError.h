#pragma once

#include <stdexcept>
#include <string>

namespace formats {

/// The one error of readers and writers: `what()` reads "file: place: problem", the place being a line, a
/// header word or an offset, and the problem naming the value found. The place may be empty.
class FileError : public std::runtime_error {
public:
    FileError(const std::string &file, const std::string &place, const std::string &problem);
};

} // namespace formats
