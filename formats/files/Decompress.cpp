#include "formats/files/Decompress.h"

#include <algorithm>
#include <new>
#include <stdexcept>

#include <bzlib.h>
#include <zlib.h>

namespace formats {

namespace {

/// The libraries count in 32 bits.
template <class Byte>
unsigned CountOf(std::span<Byte> bytes) {
    return unsigned(std::min<std::size_t>(bytes.size(), 1u << 30));
}

class GzipDecoder : public Decoder {
public:
    GzipDecoder() {
        constexpr int gzipHeader = 16;
        if (inflateInit2(&m_stream, gzipHeader + MAX_WBITS) != Z_OK)
            throw std::bad_alloc();
    }
    GzipDecoder(const GzipDecoder &) = delete;
    GzipDecoder &operator=(const GzipDecoder &) = delete;
    ~GzipDecoder() override { inflateEnd(&m_stream); }

    bool Decode(std::span<const char> &compressed, std::span<char> &buffer) override {
        const unsigned in = CountOf(compressed), out = CountOf(buffer);
        m_stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(compressed.data()));
        m_stream.avail_in = in;
        m_stream.next_out = reinterpret_cast<Bytef *>(buffer.data());
        m_stream.avail_out = out;
        const int result = inflate(&m_stream, Z_NO_FLUSH);
        if (result == Z_MEM_ERROR)
            throw std::bad_alloc();
        if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR)
            throw std::runtime_error(m_stream.msg ? m_stream.msg : "unknown kind");
        compressed = compressed.subspan(in - m_stream.avail_in);
        buffer = buffer.subspan(out - m_stream.avail_out);
        return result == Z_STREAM_END;
    }

    void Restart() override { inflateReset(&m_stream); }
    bool MayStartWith(char byte) const override { return byte == '\x1f'; }

private:
    z_stream m_stream = {};
};

class Bzip2Decoder : public Decoder {
public:
    Bzip2Decoder() { Start(); }
    Bzip2Decoder(const Bzip2Decoder &) = delete;
    Bzip2Decoder &operator=(const Bzip2Decoder &) = delete;
    ~Bzip2Decoder() override { BZ2_bzDecompressEnd(&m_stream); }

    bool Decode(std::span<const char> &compressed, std::span<char> &buffer) override {
        const unsigned in = CountOf(compressed), out = CountOf(buffer);
        m_stream.next_in = const_cast<char *>(compressed.data());
        m_stream.avail_in = in;
        m_stream.next_out = buffer.data();
        m_stream.avail_out = out;
        const int result = BZ2_bzDecompress(&m_stream);
        if (result == BZ_MEM_ERROR)
            throw std::bad_alloc();
        if (result == BZ_DATA_ERROR_MAGIC)
            throw std::runtime_error("incorrect header");
        if (result != BZ_OK && result != BZ_STREAM_END)
            throw std::runtime_error("incorrect data check");
        compressed = compressed.subspan(in - m_stream.avail_in);
        buffer = buffer.subspan(out - m_stream.avail_out);
        return result == BZ_STREAM_END;
    }

    void Restart() override {
        BZ2_bzDecompressEnd(&m_stream);
        Start();
    }
    bool MayStartWith(char byte) const override { return byte == 'B'; }

private:
    void Start() {
        m_stream = {};
        constexpr int silent = 0, fast = 0;
        if (BZ2_bzDecompressInit(&m_stream, silent, fast) != BZ_OK)
            throw std::bad_alloc();
    }

    bz_stream m_stream = {};
};

bool StartsWith(std::span<const char> bytes, const std::string &start) {
    return bytes.size() >= start.size() && std::equal(start.begin(), start.end(), bytes.begin());
}

} // namespace

const char *NameOf(Compression compression) {
    return compression == Compression::Gzip ? "gzip" : compression == Compression::Bzip2 ? "bzip2" : "";
}

Compression CompressionOf(std::span<const char> firstBytes) {
    if (StartsWith(firstBytes, "\x1f\x8b\x08"))
        return Compression::Gzip;
    return StartsWith(firstBytes, "BZh") ? Compression::Bzip2 : Compression::None;
}

std::unique_ptr<Decoder> MakeDecoder(Compression compression) {
    if (compression == Compression::Gzip)
        return std::make_unique<GzipDecoder>();
    if (compression == Compression::Bzip2)
        return std::make_unique<Bzip2Decoder>();
    return nullptr;
}

} // namespace formats
