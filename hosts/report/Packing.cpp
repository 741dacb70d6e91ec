#include "hosts/report/Packing.h"

#include <QByteArray>
#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

#include <array>
#include <new>

#include <zlib.h>

namespace report {

namespace {

QByteArray BytesOf(std::string_view bytes) {
    return QByteArray::fromRawData(bytes.data(), qsizetype(bytes.size()));
}

/// A number of four bytes, the highest first.
std::string BigEndian(std::size_t number) {
    std::string bytes;
    for (const int shift : {24, 16, 8, 0})
        bytes += char(number >> shift & 0xff);
    return bytes;
}

std::string PngChunk(const std::string &name, const std::string &data) {
    const std::string body = name + data;
    const auto sum = crc32(0, reinterpret_cast<const Bytef *>(body.data()), uInt(body.size()));
    return BigEndian(data.size()) + body + BigEndian(sum);
}

/// A stream of zlib; `windowBits` above 15 give it gzip's head.
std::string Deflated(const std::string &bytes, int windowBits) {
    z_stream stream{};
    if (deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, windowBits, 9, Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::bad_alloc();
    std::string packed(deflateBound(&stream, uLong(bytes.size())), '\0');
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(bytes.data()));
    stream.avail_in = uInt(bytes.size());
    stream.next_out = reinterpret_cast<Bytef *>(packed.data());
    stream.avail_out = uInt(packed.size());
    deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

} // namespace

std::string Base64(std::string_view bytes) {
    return BytesOf(bytes).toBase64().toStdString();
}

std::string Gzip(const std::string &bytes) {
    return Deflated(bytes, MAX_WBITS + 16);
}

std::string GreyPng(std::span<const std::uint8_t> pixels, std::size_t width) {
    const std::size_t height = width > 0 ? pixels.size() / width : 0;
    std::string rows;
    for (std::size_t y = 0; y < height; ++y) {
        rows += '\0'; // no filter
        rows.append(reinterpret_cast<const char *>(pixels.data()) + y * width, width);
    }
    const std::string head = BigEndian(width) + BigEndian(height) + std::string("\x08\0\0\0\0", 5);
    return "\x89PNG\r\n\x1a\n" + PngChunk("IHDR", head) + PngChunk("IDAT", Deflated(rows, MAX_WBITS)) +
           PngChunk("IEND", "");
}

std::string PolicyDigest(std::string_view script) {
    const QByteArray digest = QCryptographicHash::hash(BytesOf(script), QCryptographicHash::Sha256);
    return "sha256-" + digest.toBase64().toStdString();
}

std::string ChecksumOf(const std::string &file) {
    QFile bytes(QString::fromStdString(file));
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!QFileInfo(bytes).isFile() || !bytes.open(QIODevice::ReadOnly) || !hash.addData(&bytes))
        return {};
    return hash.result().toHex().toStdString();
}

} // namespace report
