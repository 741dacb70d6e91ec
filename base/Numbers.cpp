#include "base/Numbers.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace base {

namespace {

// The longest fixed text is that of -DBL_MAX: a sign, 309 digits, the point and the decimals.
constexpr std::size_t longestText = 512;

template <class... Format>
QString Text(double value, Format... format) {
    char text[longestText];
    // The sign of a computed NaN is left open by the language: it differs between optimisation levels.
    const double number = std::isnan(value) ? std::numeric_limits<double>::quiet_NaN() : value;
    const auto end = std::to_chars(text, text + longestText, number, format...).ptr;
    return QString::fromLatin1(text, end - text);
}

} // namespace

QString FixedNumber(double value, int width, int decimals) {
    return Text(value, std::chars_format::fixed, decimals).rightJustified(width);
}

std::string PlainFixed(double value, int decimals) {
    const std::string text = FixedNumber(value, 0, decimals).toStdString();
    const bool isNegativeZero =
        text.starts_with("-0") && text.find_first_of("123456789") == std::string::npos;
    return isNegativeZero ? text.substr(1) : text;
}

QString GeneralNumber(double value) {
    return Text(value, std::chars_format::general, 6);
}

} // namespace base
