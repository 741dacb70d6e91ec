#include "formats/files/ByteSource.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace formats {

namespace {

constexpr std::size_t bufferSize = 1 << 16;

} // namespace

ByteSource::ByteSource(const std::string &file)
    : m_file(file)
    , m_handle(std::fopen(file.c_str(), "rb"))
    , m_buffer(bufferSize) {
    if (!m_handle)
        throw FileError(file, "", std::string("cannot be read: ") + std::strerror(errno));
    std::setvbuf(m_handle.get(), nullptr, _IONBF, 0);
    Refill();
    m_packing = PackingOf(m_packed);
    m_decoder = MakeDecoder(m_packing);
}

std::size_t ByteSource::Read(std::span<char> room) {
    return m_decoder ? Unpack(room) : Copy(room);
}

std::uint64_t ByteSource::Skip(std::uint64_t count) {
    std::vector<char> dropped(bufferSize);
    std::uint64_t skipped = 0;
    while (skipped < count) {
        const auto wanted = std::size_t(std::min<std::uint64_t>(count - skipped, bufferSize));
        const std::size_t found = Read({dropped.data(), wanted});
        skipped += found;
        if (found < wanted)
            break;
    }
    return skipped;
}

void ByteSource::Refill() {
    const std::size_t found = std::fread(m_buffer.data(), 1, m_buffer.size(), m_handle.get());
    if (std::ferror(m_handle.get()))
        throw FileError(m_file, m_loaded ? Place() : "",
                        std::string("cannot be read: ") + std::strerror(errno));
    m_packed = {m_buffer.data(), found};
    m_loaded += found;
}

std::size_t ByteSource::Copy(std::span<char> room) {
    std::size_t copied = 0;
    while (copied < room.size()) {
        if (m_packed.empty())
            Refill();
        if (m_packed.empty())
            break;
        const std::size_t count = std::min(room.size() - copied, m_packed.size());
        std::copy_n(m_packed.begin(), count, room.begin() + std::ptrdiff_t(copied));
        m_packed = m_packed.subspan(count);
        copied += count;
    }
    return copied;
}

std::size_t ByteSource::Unpack(std::span<char> room) {
    std::span<char> left = room;
    while (!left.empty() && !m_ended) {
        if (m_packed.empty())
            Refill();
        // Unpacked bytes may still be waiting inside the decoder when the file has no more to give.
        const bool last = m_packed.empty();
        const std::size_t before = left.size();
        if (StreamEnds(left))
            m_ended = !FindsNextStream();
        else if (last && left.size() == before)
            throw Damage("ends too early");
    }
    return room.size() - left.size();
}

bool ByteSource::StreamEnds(std::span<char> &room) {
    try {
        return m_decoder->Decode(m_packed, room);
    } catch (const std::runtime_error &damage) {
        throw Damage(std::string("is damaged: ") + damage.what());
    }
}

bool ByteSource::FindsNextStream() {
    if (m_packed.empty())
        Refill();
    if (m_packed.empty() || !m_decoder->MayStartWith(m_packed.front()))
        return false;
    m_decoder->Restart();
    return true;
}

FileError ByteSource::Damage(const std::string &problem) const {
    return FileError(m_file, Place(), std::string("the ") + NameOf(m_packing) + " stream " + problem);
}

std::string ByteSource::Place() const {
    return "byte " + std::to_string(m_loaded - m_packed.size());
}

} // namespace formats
