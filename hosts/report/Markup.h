#pragma once

#include <string>
#include <string_view>

namespace report {

/// Text as HTML and SVG show it: what would be taken for markup is escaped; bytes that are no UTF-8 and
/// control characters become U+FFFD.
std::string Escaped(std::string_view text);

/// JSON as it may stand in a script element.
std::string InScript(std::string json);

/// A number with so many decimals; a dash where it is not finite.
std::string Figure(double number, int decimals);

/// A coordinate of a picture: one decimal at most.
std::string Coordinate(double number);

} // namespace report
