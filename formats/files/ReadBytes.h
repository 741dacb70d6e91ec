#pragma once

#include "formats/files/ByteSource.h"

#include <cstddef>
#include <string>

namespace formats {

/// All bytes of a file, unpacked where they begin as a gzip or bzip2 stream does; the name says nothing about
/// it. A gzip or bzip2 file may hold several streams one after the other; what follows the last one is
/// ignored.
///
/// Throws FileError for a file that is missing, unreadable or a directory, for a packed stream that is
/// damaged or ends too early (naming the byte of the packed file), and for more than `limit` bytes: a few
/// packed bytes can otherwise fill any memory.
std::string ReadBytes(const std::string &file, std::size_t limit);
/// The same of a source, from where it is.
std::string ReadBytes(ByteSource &source, std::size_t limit);

/// Throws FileError for what is there but is no regular file: a pipe, a device, a directory. For readers that
/// take nothing else: they ask before they open the file, since a pipe would make them wait.
void CheckIsRegular(const std::string &file);

} // namespace formats
