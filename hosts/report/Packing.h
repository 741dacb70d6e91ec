#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace report {

/// Bytes in the shapes in which a page holds them.

std::string Base64(std::string_view bytes);

/// One gzip stream of the bytes.
std::string Gzip(const std::string &bytes);

/// A picture of 8-bit greys, 0 black, its rows from the top, as a PNG file.
std::string GreyPng(std::span<const std::uint8_t> pixels, std::size_t width);

/// The digest of a script as a Content-Security-Policy names it: "sha256-" and base64.
std::string PolicyDigest(std::string_view script);

/// SHA-256 of a regular file in hexadecimal digits; empty for what cannot be read, and for a pipe.
std::string ChecksumOf(const std::string &file);

} // namespace report
