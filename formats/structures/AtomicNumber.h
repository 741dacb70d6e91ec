#pragma once

#include <string>

namespace formats {

/// Number of protons of an element by its symbol, "C" or "CA" in any case, deuterium's being 1; 0 for a text
/// that is not an element's symbol.
int AtomicNumber(const std::string &symbol);

} // namespace formats
