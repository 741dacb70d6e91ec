#pragma once

#include "formats/files/Decompress.h"
#include "formats/files/FileError.h"

#include <cstdint>
#include <cstdio>
#include <functional>
#include <optional>
#include <vector>

namespace formats {

/// The bytes of a file or of a piece of memory from start to end, decompressed on the way where they are gzip
/// or bzip2 (recognised by the content; several streams in a row count as one, padding after them is
/// ignored). Holds one small buffer, whatever the size of the file and of its content, and what `Peek` was
/// asked for. The file may be a pipe; reading waits for its writer.
///
/// Every reader takes its bytes from here, so that files, pipes and a test's memory are read the same way:
/// `ReadMapFrom(source = ByteSource("name", bytes))`.
class ByteSource {
public:
    /// Throws FileError: missing, a directory, unreadable.
    explicit ByteSource(const std::string &file);
    /// `bytes` must outlive the source; `name` stands for the file in errors.
    ByteSource(const std::string &name, std::span<const char> bytes);

    /// Hears from now on how many bytes of the file were taken, each time there are more, on the reading
    /// thread; `Again` hands it on. What it throws stops the reading and passes through.
    void SetWatcher(std::function<void(std::uint64_t)> watcher) { m_watcher = std::move(watcher); }

    const std::string &Name() const { return m_name; }
    Compression GetCompression() const { return m_compression; }
    /// Number of bytes before decompression; nothing where it is not known before they are read (a pipe, a
    /// device, a file of /proc), and then they can be read only once.
    std::optional<std::uint64_t> StoredSize() const { return m_storedSize; }
    /// The same bytes from the start; only where `StoredSize` is known. Throws like the constructors.
    ByteSource Again() const;

    /// Fills `buffer` and returns its size, or less at the end of the bytes. Throws FileError where the file
    /// cannot be read or a compressed stream is damaged or ends early, naming the place in the file.
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
    std::size_t Decompress(std::span<char> buffer);
    bool StreamEnds(std::span<char> &buffer);
    bool FindsNextStream();
    FileError Damage(const std::string &problem) const;
    /// The place of the next compressed byte.
    std::string Place() const;

    std::string m_name;
    std::unique_ptr<std::FILE, Closer> m_handle; ///< null for memory
    std::span<const char> m_memory;              ///< empty for a file
    std::optional<std::uint64_t> m_storedSize;
    std::vector<char> m_buffer;
    std::span<const char> m_input; ///< bytes taken from the file or the memory and not yet used
    std::uint64_t m_loaded = 0;    ///< number of bytes taken so far
    std::function<void(std::uint64_t)> m_watcher;
    Compression m_compression = Compression::None;
    std::unique_ptr<Decoder> m_decoder;
    bool m_ended = false;         ///< the last compressed stream has ended
    std::vector<char> m_peeked;   ///< decompressed bytes
    std::size_t m_peekedUsed = 0; ///< of these, from the front
};

} // namespace formats
