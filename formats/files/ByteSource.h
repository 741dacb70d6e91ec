#pragma once

#include "formats/files/Decompress.h"
#include "formats/files/FileError.h"

#include <cstdint>
#include <cstdio>
#include <vector>

namespace formats {

/// The bytes of a file from its start to its end, unpacked on the way where the file is gzip or bzip2
/// (told from the content; several streams in a row count as one, padding after them is ignored). Holds one
/// small buffer, however large the file or whatever it unpacks to.
class ByteSource {
public:
    /// Throws FileError: missing, a directory, unreadable.
    explicit ByteSource(const std::string &file);

    Packing GetPacking() const { return m_packing; }

    /// Fills `room` and returns its size, or less at the end of the bytes. Throws FileError where the file
    /// cannot be read or a packed stream is damaged or ends early, naming the place in the file.
    std::size_t Read(std::span<char> room);
    /// Reads and drops `count` bytes; returns how many there were. Throws like `Read`.
    std::uint64_t Skip(std::uint64_t count);

private:
    struct Closer {
        void operator()(std::FILE *file) const { std::fclose(file); }
    };

    void Refill();
    std::size_t Copy(std::span<char> room);
    std::size_t Unpack(std::span<char> room);
    bool StreamEnds(std::span<char> &room);
    bool FindsNextStream();
    FileError Damage(const std::string &problem) const;
    /// The place of the next packed byte.
    std::string Place() const;

    std::string m_file;
    std::unique_ptr<std::FILE, Closer> m_handle;
    std::vector<char> m_buffer;
    std::span<const char> m_packed; ///< bytes of the buffer that were not used yet
    std::uint64_t m_loaded = 0;     ///< number of bytes taken from the file so far
    Packing m_packing = Packing::None;
    std::unique_ptr<Decoder> m_decoder;
    bool m_ended = false; ///< the last packed stream has ended
};

} // namespace formats
