#pragma once

#include <memory>
#include <span>
#include <string>

namespace formats {

/// How the bytes of a file are compressed.
enum class Compression { None, Gzip, Bzip2 };

/// "gzip", "bzip2", or nothing.
const char *NameOf(Compression compression);

/// How a file is compressed, by its first bytes; its name may lie.
Compression CompressionOf(std::span<const char> firstBytes);

/// Decompresses one stream after another, each step bounded by the buffer given: whatever a stream claims or
/// grows to, nothing but the library's fixed window is held.
class Decoder {
public:
    virtual ~Decoder() = default;

    /// Decompresses from the front of `compressed` into the front of `buffer` and shortens both by what was
    /// used. True once the stream has ended and its check sum was right. Throws std::runtime_error where the
    /// stream is damaged.
    virtual bool Decode(std::span<const char> &compressed, std::span<char> &buffer) = 0;
    /// Prepares for the next stream.
    virtual void Restart() = 0;
    /// Whether a stream that follows another may start with this byte; any other is padding.
    virtual bool MayStartWith(char byte) const = 0;
};

/// Null for `Compression::None`.
std::unique_ptr<Decoder> MakeDecoder(Compression compression);

} // namespace formats
