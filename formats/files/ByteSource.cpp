#include "formats/files/ByteSource.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include <sys/stat.h>

namespace formats {

namespace {

constexpr std::size_t bufferSize = 1 << 16;

/// Files of /proc say that they hold nothing.
std::optional<std::uint64_t> SizeOf(std::FILE *file) {
    struct stat state;
    if (fstat(fileno(file), &state) != 0 || !S_ISREG(state.st_mode) || state.st_size == 0)
        return {};
    return std::uint64_t(state.st_size);
}

} // namespace

ByteSource::ByteSource(const std::string &file)
    : m_name(file)
    , m_handle(std::fopen(file.c_str(), "rbe"))
    , m_buffer(bufferSize) {
    if (!m_handle)
        throw FileError(file, "", std::string("cannot be read: ") + std::strerror(errno));
    std::setvbuf(m_handle.get(), nullptr, _IONBF, 0);
    Refill();
    m_storedSize = SizeOf(m_handle.get());
    m_compression = CompressionOf(m_input);
    m_decoder = MakeDecoder(m_compression);
}

ByteSource::ByteSource(const std::string &name, std::span<const char> bytes)
    : m_name(name)
    , m_memory(bytes)
    , m_storedSize(bytes.size())
    , m_input(bytes)
    , m_loaded(bytes.size())
    , m_compression(CompressionOf(bytes))
    , m_decoder(MakeDecoder(m_compression)) {}

ByteSource ByteSource::Again() const {
    ByteSource again = m_handle ? ByteSource(m_name) : ByteSource(m_name, m_memory);
    again.SetWatcher(m_watcher);
    return again;
}

std::size_t ByteSource::Read(std::span<char> buffer) {
    const std::size_t peeked = std::min(buffer.size(), m_peeked.size() - m_peekedUsed);
    std::copy_n(m_peeked.data() + m_peekedUsed, peeked, buffer.data());
    m_peekedUsed += peeked;
    return peeked == buffer.size() ? peeked : peeked + ReadOn(buffer.subspan(peeked));
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

std::span<const char> ByteSource::Peek(std::uint64_t count) {
    m_peeked.erase(m_peeked.begin(), m_peeked.begin() + std::ptrdiff_t(std::exchange(m_peekedUsed, 0)));
    while (m_peeked.size() < count) {
        const std::size_t before = m_peeked.size();
        const auto wanted = std::size_t(std::min<std::uint64_t>(count - before, bufferSize));
        m_peeked.resize(before + wanted);
        const std::size_t found = ReadOn(std::span(m_peeked).subspan(before));
        m_peeked.resize(before + found);
        if (found < wanted)
            break;
    }
    return std::span(m_peeked).first(std::size_t(std::min<std::uint64_t>(count, m_peeked.size())));
}

void ByteSource::Refill() {
    if (!m_handle)
        return;
    const std::size_t found = std::fread(m_buffer.data(), 1, m_buffer.size(), m_handle.get());
    if (std::ferror(m_handle.get()))
        throw FileError(m_name, m_loaded ? Place() : "",
                        std::string("cannot be read: ") + std::strerror(errno));
    m_input = {m_buffer.data(), found};
    m_loaded += found;
    if (m_watcher)
        m_watcher(m_loaded);
}

std::size_t ByteSource::ReadOn(std::span<char> buffer) {
    return m_decoder ? Decompress(buffer) : Copy(buffer);
}

std::size_t ByteSource::Copy(std::span<char> buffer) {
    std::size_t copied = 0;
    while (copied < buffer.size()) {
        if (m_input.empty())
            Refill();
        if (m_input.empty())
            break;
        const std::size_t count = std::min(buffer.size() - copied, m_input.size());
        std::copy_n(m_input.begin(), count, buffer.begin() + std::ptrdiff_t(copied));
        m_input = m_input.subspan(count);
        copied += count;
    }
    return copied;
}

std::size_t ByteSource::Decompress(std::span<char> buffer) {
    std::span<char> left = buffer;
    while (!left.empty() && !m_ended) {
        if (m_input.empty())
            Refill();
        // Decompressed bytes may still be waiting inside the decoder when the file has no more to give.
        const bool last = m_input.empty();
        const std::size_t before = left.size();
        if (StreamEnds(left))
            m_ended = !FindsNextStream();
        else if (last && left.size() == before)
            throw Damage("ends too early");
    }
    return buffer.size() - left.size();
}

bool ByteSource::StreamEnds(std::span<char> &buffer) {
    try {
        return m_decoder->Decode(m_input, buffer);
    } catch (const std::runtime_error &damage) {
        throw Damage(std::string("is damaged: ") + damage.what());
    }
}

bool ByteSource::FindsNextStream() {
    if (m_input.empty())
        Refill();
    if (m_input.empty() || !m_decoder->MayStartWith(m_input.front()))
        return false;
    m_decoder->Restart();
    return true;
}

FileError ByteSource::Damage(const std::string &problem) const {
    return FileError(m_name, Place(), std::string("the ") + NameOf(m_compression) + " stream " + problem);
}

std::string ByteSource::Place() const {
    return "byte " + std::to_string(m_loaded - m_input.size());
}

} // namespace formats
