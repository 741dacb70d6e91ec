#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace base {

/// A number of things: "1 residue", "3 residues".
std::string Counted(std::size_t number, const std::string &noun);

/// A whole number with commas between groups of three digits: "3,964,051".
std::string Grouped(std::uint64_t number);

/// A length of time for people: "40 s", "2 min 10 s", "3 h 20 min", "12 days", "3.2 years".
std::string DurationText(double seconds);

/// The text without the blanks and tabs around it.
std::string_view Trimmed(std::string_view text);

/// The text between quotes for an error message: bytes that are not printable ASCII as \xNN, at most 40
/// bytes.
std::string Quoted(std::string_view text);

} // namespace base
