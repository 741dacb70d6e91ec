#pragma once

#include <string>

/// The bytes as one gzip stream.
std::string Gzip(const std::string &bytes);

/// The bytes as one bzip2 stream.
std::string Bzip2(const std::string &bytes);
