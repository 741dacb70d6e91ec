#include "base/Numbers.h"

#include "base/Words.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

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

template <class Number>
std::optional<Number> Read(std::string_view text) {
    text = Trimmed(text);
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    Number number = 0;
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (text.empty() || error != std::errc() || stop != end)
        return {};
    return number;
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

std::string ShortestNumber(float value) {
    char text[32];
    return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

std::optional<double> ReadNumber(std::string_view text) {
    return Read<double>(text);
}

std::optional<int> ReadInteger(std::string_view text) {
    return Read<int>(text);
}

} // namespace base
