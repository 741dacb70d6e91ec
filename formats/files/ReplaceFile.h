#pragma once

#include <functional>
#include <iosfwd>
#include <string>

namespace formats {

/// Writes a file as a whole: what `write` puts into the stream takes the name `path` once every byte has
/// reached the disk. Until then, and when anything fails, the file that was there stays as it is. A killed
/// process leaves nothing behind, except on file systems that have no files without a name (NFS): there it
/// leaves `path` followed by a dot and six letters.
///
/// A file that is replaced keeps its permissions; a symbolic link keeps pointing to it. A pipe, a device, or
/// a stream of the process such as /dev/stdout is written to directly; a pipe waits for its reader until
/// SIGINT, SIGTERM or SIGHUP is pending. The stream is binary, in the classic locale, and throws at the first
/// write that fails. Throws FileError (disk full, no permission, a directory, a name that is not UTF-8 ...);
/// exceptions of `write` pass through.
void ReplaceFile(const std::string &path, const std::function<void(std::ostream &)> &write);

/// Throws the FileError with which `ReplaceFile` would fail before its first byte: so that an unwritable path
/// is found before a long computation. Changes nothing.
void CheckReplaceable(const std::string &path);

} // namespace formats
