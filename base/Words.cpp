#include "base/Words.h"

#include "base/Numbers.h"

#include <cmath>

namespace base {

namespace {

constexpr double minute = 60, hour = 60 * minute, day = 24 * hour, year = 365.25 * day;

/// Whole units and the rest in the next smaller one.
std::string TwoUnits(double seconds, double unit, const char *name, double smaller, const char *smallerName) {
    const double whole = std::floor(seconds / unit);
    const double rest = std::floor((seconds - whole * unit) / smaller);
    return std::to_string(int(whole)) + ' ' + name + ' ' + std::to_string(int(rest)) + ' ' + smallerName;
}

} // namespace

std::string Counted(std::size_t number, const std::string &noun) {
    return std::to_string(number) + ' ' + noun + (number == 1 ? "" : "s");
}

std::string Grouped(std::uint64_t number) {
    std::string text = std::to_string(number);
    for (std::size_t i = text.size(); i > 3; i -= 3)
        text.insert(i - 3, 1, ',');
    return text;
}

std::string DurationText(double seconds) {
    if (seconds < 10)
        return FixedNumber(seconds, 0, 1).toStdString() + " s";
    seconds = std::round(seconds);
    if (seconds < minute)
        return std::to_string(int(seconds)) + " s";
    if (seconds < hour)
        return TwoUnits(seconds, minute, "min", 1, "s");
    if (seconds < 2 * day)
        return TwoUnits(seconds, hour, "h", minute, "min");
    if (seconds < year)
        return std::to_string(int(seconds / day)) + " days";
    const double years = seconds / year;
    return (years < 1000 ? FixedNumber(years, 0, 1) : GeneralNumber(years)).toStdString() + " years";
}

std::string_view Trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::string Quoted(std::string_view text) {
    constexpr std::size_t maxBytes = 40;
    constexpr char digits[] = "0123456789abcdef";
    std::string quoted = "'";
    for (const char c : text.substr(0, maxBytes)) {
        const auto byte = static_cast<unsigned char>(c);
        if (c >= ' ' && c <= '~')
            quoted += c;
        else
            quoted += {'\\', 'x', digits[byte / 16], digits[byte % 16]};
    }
    return quoted + (text.size() > maxBytes ? "...'" : "'");
}

} // namespace base
