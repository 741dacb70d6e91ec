#pragma once

#include "formats/files/Decompress.h"
#include "formats/files/FileError.h"

#include <cstdint>
#include <cstdio>
#include <optional>
#include <vector>

namespace formats {

/// The bytes of a file or of a piece of memory from the start to the end, unpacked on the way where they are
/// gzip or bzip2 (told from the content; several streams in a row count as one, padding after them is
/// ignored). Holds one small buffer, however large the file or whatever it unpacks to, and what `Peek` was
/// asked for. The file may be a pipe, whose writer it waits for.
///
/// Every reader takes its bytes from here, so that whatever is to be read, out of a file, a pipe or a test's
/// memory, goes the same way: `ReadMapFrom(source = ByteSource("name", bytes))`.
class ByteSource {
public:
    /// Throws FileError: missing, a directory, unreadable.
    explicit ByteSource(const std::string &file);
    /// `bytes` must outlive the source; `name` stands for the file in errors.
    ByteSource(const std::string &name, std::span<const char> bytes);

    const std::string &Name() const { return m_name; }
    Packing GetPacking() const { return m_packing; }
    /// Number of bytes before they are unpacked; nothing where only reading tells it (a pipe, a device, a
    /// file of /proc), and then they can be read only once.
    std::optional<std::uint64_t> PackedSize() const { return m_packedSize; }
    /// The same bytes from the start; for those whose size is known. Throws like the constructors.
    ByteSource Again() const;

    /// Fills `buffer` and returns its size, or less at the end of the bytes. Throws FileError where the file
    /// cannot be read or a packed stream is damaged or ends early, naming the place in the file.
    std::size_t Read(std::span<char> buffer);
    /// Reads and drops `count` bytes; returns how many there were. Throws like `Read`.
    std::uint64_t Skip(std::uint64_t count);
    /// The next `count` bytes, or fewer at the end, which `Read` still gives afterwards. Valid until the next
    /// call. Memory grows with the bytes that there are, not with `count`. Throws like `Read`.
    std::span<const char> Peek(std::uint64_t count);

private:
    struct Closer {
        void operator()(std::FILE *file) const { std::fclose(file); }
    };

    void Refill();
    std::size_t ReadOn(std::span<char> buffer);
    std::size_t Copy(std::span<char> buffer);
    std::size_t Unpack(std::span<char> buffer);
    bool StreamEnds(std::span<char> &buffer);
    bool FindsNextStream();
    FileError Damage(const std::string &problem) const;
    /// The place of the next packed byte.
    std::string Place() const;

    std::string m_name;
    std::unique_ptr<std::FILE, Closer> m_handle; ///< null for memory
    std::span<const char> m_memory;              ///< empty for a file
    std::optional<std::uint64_t> m_packedSize;
    std::vector<char> m_buffer;
    std::span<const char> m_packed; ///< bytes that were taken from the file or the memory, but not used yet
    std::uint64_t m_loaded = 0;     ///< number of bytes taken so far
    Packing m_packing = Packing::None;
    std::unique_ptr<Decoder> m_decoder;
    bool m_ended = false;         ///< the last packed stream has ended
    std::vector<char> m_peeked;   ///< unpacked bytes
    std::size_t m_peekedUsed = 0; ///< of these, from the front
};

} // namespace formats
