#pragma once

#include "formats/files/ByteSource.h"

#include <cstddef>
#include <string>

namespace formats {

/// All bytes of a file, decompressed where they begin like a gzip or bzip2 stream, whatever the file's name.
/// A gzip or bzip2 file may hold several streams one after the other; what follows the last one is ignored.
///
/// Throws FileError for a file that is missing, unreadable or a directory, for a compressed stream that is
/// damaged or ends too early (naming the byte of the compressed file), and for more than `limit` bytes: a few
/// compressed bytes can otherwise fill any memory.
std::string ReadBytes(const std::string &file, std::size_t limit);
/// The same of a source, from where it is.
std::string ReadBytes(ByteSource &source, std::size_t limit);

/// Throws FileError for what exists but is not a regular file: a pipe, a device, a directory. Readers of
/// regular files ask before they open one, since a pipe would make them wait.
void CheckIsRegular(const std::string &file);

} // namespace formats
