#pragma once

#include <new>
#include <stdexcept>
#include <string>

namespace formats {

/// The one error of readers and writers: `what()` reads "file: place: problem", the place being a line, a
/// header word or an offset, and the problem naming the value found. The place may be empty.
class FileError : public std::runtime_error {
public:
    FileError(const std::string &file, const std::string &place, const std::string &problem);
};

/// Does the work of reading `file`; where memory runs out, that is a FileError like any other.
template <class Work>
auto WithMemory(const std::string &file, Work work) {
    try {
        return work();
    } catch (const std::bad_alloc &) {
        throw FileError(file, "", "there is not enough memory to read it");
    }
}

} // namespace formats
