#pragma once

#include <string>

namespace cli {

/// The text with its control characters escaped (\n, \t, \x1b): file names may hold any, and a terminal would
/// obey them.
std::string Printable(const std::string &text);

} // namespace cli
