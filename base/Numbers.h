#pragma once

#include <QString>

#include <optional>
#include <string>
#include <string_view>

namespace base {

/// Numbers as text in the C locale, the way printf writes them: halves are rounded by the exact binary value,
/// a negative zero keeps its sign; a NaN shows none. `width` is the least number of characters, filled with
/// blanks on the left.

/// Fixed-point notation, printf's %<width>.<decimals>f.
QString FixedNumber(double value, int width, int decimals);

/// As `FixedNumber` without a width, and never "-0.000".
std::string PlainFixed(double value, int decimals);

/// General notation with six significant digits, printf's %g.
QString GeneralNumber(double value);

/// As few digits as it takes to read the same number back.
std::string ShortestNumber(float value);

/// The number that the whole text is, blanks around it and a leading + aside; "nan" and "inf" are numbers.
/// Nothing where it is anything else. The decimal sign is a point whatever the locale.
std::optional<double> ReadNumber(std::string_view text);
std::optional<int> ReadInteger(std::string_view text);

} // namespace base
