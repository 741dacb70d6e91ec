#include "ReadBytes.h"

#include "FileError.h"

#include <bzlib.h>
#include <zlib.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>

namespace VARNO {

namespace {

/// Bytes are read, and unpacked, this many at a time.
constexpr std::size_t portion = 1 << 20;

[[noreturn]] void FailTooLarge(const std::string &file, std::size_t limit) {
    throw FileError(file, "", "holds more than " + std::to_string(limit >> 20) + " MiB");
}

std::string ReadAsItStands(const std::string &file, std::size_t limit) {
    errno = 0;
    const std::unique_ptr<std::FILE, int (*)(std::FILE *)> stream(std::fopen(file.c_str(), "rb"),
                                                                  std::fclose);
    std::string bytes;
    for (std::size_t held = 0; stream; held = bytes.size()) {
        bytes.resize(held + portion);
        bytes.resize(held + std::fread(bytes.data() + held, 1, portion, stream.get()));
        if (bytes.size() > limit)
            FailTooLarge(file, limit);
        if (bytes.size() < held + portion)
            break;
    }
    if (!stream || std::ferror(stream.get()))
        throw FileError(file, "", std::string("cannot be read: ") + std::strerror(errno));
    return bytes;
}

enum class Step { More, StreamEnd, Damaged };

/// One gzip stream after the other, through zlib.
class Gzip {
public:
    static constexpr std::string_view magic = "\x1f\x8b";
    static constexpr const char *name = "gzip";

    Gzip() { inflateInit2(&m_stream, MAX_WBITS + 16); }
    Gzip(const Gzip &) = delete;
    Gzip &operator=(const Gzip &) = delete;
    ~Gzip() { inflateEnd(&m_stream); }

    Step Unpack(std::string_view &packed, char *to, std::size_t &room) {
        m_stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(packed.data()));
        m_stream.avail_in = unsigned(packed.size());
        m_stream.next_out = reinterpret_cast<Bytef *>(to);
        m_stream.avail_out = unsigned(room);
        const int result = inflate(&m_stream, Z_NO_FLUSH);
        packed.remove_prefix(packed.size() - m_stream.avail_in);
        room = m_stream.avail_out;
        if (result == Z_STREAM_END)
            return inflateReset(&m_stream), Step::StreamEnd;
        return result == Z_OK || result == Z_BUF_ERROR ? Step::More : Step::Damaged;
    }

private:
    z_stream m_stream = {};
};

/// One bzip2 stream after the other, through libbzip2.
class Bzip2 {
public:
    static constexpr std::string_view magic = "BZh";
    static constexpr const char *name = "bzip2";

    Bzip2() { BZ2_bzDecompressInit(&m_stream, 0, 0); }
    Bzip2(const Bzip2 &) = delete;
    Bzip2 &operator=(const Bzip2 &) = delete;
    ~Bzip2() { BZ2_bzDecompressEnd(&m_stream); }

    Step Unpack(std::string_view &packed, char *to, std::size_t &room) {
        m_stream.next_in = const_cast<char *>(packed.data());
        m_stream.avail_in = unsigned(packed.size());
        m_stream.next_out = to;
        m_stream.avail_out = unsigned(room);
        const int result = BZ2_bzDecompress(&m_stream);
        packed.remove_prefix(packed.size() - m_stream.avail_in);
        room = m_stream.avail_out;
        if (result == BZ_STREAM_END) {
            BZ2_bzDecompressEnd(&m_stream);
            BZ2_bzDecompressInit(&m_stream, 0, 0);
            return Step::StreamEnd;
        }
        return result == BZ_OK ? Step::More : Step::Damaged;
    }

private:
    bz_stream m_stream = {};
};

template <class Codec>
std::string UnpackAll(const std::string &file, const std::string &bytes, std::size_t limit) {
    Codec codec;
    std::string unpacked;
    std::string_view packed = bytes;
    const auto fail = [&](const char *problem) {
        throw FileError(file, "byte " + std::to_string(bytes.size() - packed.size()),
                        std::string("the ") + Codec::name + " stream " + problem);
    };
    for (bool inside = true; inside;) {
        // The libraries count in 32 bits.
        std::string_view window = packed.substr(0, std::size_t(INT_MAX));
        const std::size_t offered = window.size(), held = unpacked.size();
        std::size_t room = portion;
        unpacked.resize(held + portion);
        const Step step = codec.Unpack(window, unpacked.data() + held, room);
        unpacked.resize(held + portion - room);
        packed.remove_prefix(offered - window.size());
        if (unpacked.size() > limit)
            FailTooLarge(file, limit);
        if (step == Step::Damaged)
            fail("is damaged");
        if (step == Step::More && packed.empty() && room > 0)
            fail("ends too early");
        inside = step == Step::More || packed.starts_with(Codec::magic);
    }
    return unpacked;
}

} // namespace

std::string ReadBytes(const std::string &file, std::size_t limit) {
    std::string bytes = ReadAsItStands(file, limit);
    if (bytes.starts_with(Gzip::magic))
        return UnpackAll<Gzip>(file, bytes, limit);
    if (bytes.starts_with(Bzip2::magic))
        return UnpackAll<Bzip2>(file, bytes, limit);
    return bytes;
}

} // namespace VARNO
