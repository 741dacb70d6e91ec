#pragma once

#include <memory>
#include <span>
#include <string>

namespace formats {

/// How the bytes of a file are packed.
enum class Packing { None, Gzip, Bzip2 };

/// "gzip", "bzip2", or nothing.
const char *NameOf(Packing packing);

/// Tells from the first bytes of a file how it is packed; its name may lie.
Packing PackingOf(std::span<const char> firstBytes);

/// Unpacks one stream after another, each step bounded by the buffer given: whatever a stream claims or grows
/// to, nothing but the library's fixed window is held.
class Decoder {
public:
    virtual ~Decoder() = default;

    /// Unpacks from the front of `packed` into the front of `buffer` and shortens both by what was used. True
    /// once the stream has ended and its check sum was right. Throws std::runtime_error where the stream is
    /// damaged.
    virtual bool Decode(std::span<const char> &packed, std::span<char> &buffer) = 0;
    /// Makes ready for the next stream.
    virtual void Restart() = 0;
    /// Whether a stream that follows another may start with this byte; any other is padding.
    virtual bool MayStartWith(char byte) const = 0;
};

/// Null where nothing is to be unpacked.
std::unique_ptr<Decoder> MakeDecoder(Packing packing);

} // namespace formats
