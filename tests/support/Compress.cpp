#include "Compress.h"

#include <gtest/gtest.h>

#include <bzlib.h>
#include <zlib.h>

std::string Gzip(const std::string &bytes) {
    z_stream stream = {};
    EXPECT_EQ(deflateInit2(&stream, 9, Z_DEFLATED, 16 + MAX_WBITS, 9, Z_DEFAULT_STRATEGY), Z_OK);
    std::string compressed(deflateBound(&stream, uLong(bytes.size())), '\0');
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(bytes.data()));
    stream.avail_in = uInt(bytes.size());
    stream.next_out = reinterpret_cast<Bytef *>(compressed.data());
    stream.avail_out = uInt(compressed.size());
    EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
    compressed.resize(stream.total_out);
    deflateEnd(&stream);
    return compressed;
}

std::string Bzip2(const std::string &bytes) {
    std::string compressed(bytes.size() + bytes.size() / 100 + 600, '\0');
    unsigned size = unsigned(compressed.size());
    EXPECT_EQ(BZ2_bzBuffToBuffCompress(compressed.data(), &size, const_cast<char *>(bytes.data()),
                                       unsigned(bytes.size()), 9, 0, 0),
              BZ_OK);
    compressed.resize(size);
    return compressed;
}
