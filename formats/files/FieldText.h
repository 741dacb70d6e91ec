#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace formats {

/// The text without the blanks and tabs around it.
std::string_view Trimmed(std::string_view text);

/// The number that the whole text is, blanks around it and a leading + aside; "nan" and "inf" are numbers.
/// Nothing where it is anything else. The decimal sign is a point whatever the locale.
std::optional<double> ReadNumber(std::string_view text);
std::optional<int> ReadInteger(std::string_view text);

/// The text between quotes for an error message: bytes that are not printable ASCII as \xNN, at most 40
/// bytes.
std::string Quoted(std::string_view text);

} // namespace formats
