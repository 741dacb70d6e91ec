#include "formats/files/FieldText.h"

#include <charconv>
#include <system_error>

namespace formats {

namespace {

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

std::string_view Trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::optional<double> ReadNumber(std::string_view text) {
    return Read<double>(text);
}

std::optional<int> ReadInteger(std::string_view text) {
    return Read<int>(text);
}

std::string Quoted(std::string_view text) {
    constexpr std::size_t most = 40;
    constexpr char digits[] = "0123456789abcdef";
    std::string quoted = "'";
    for (const char c : text.substr(0, most)) {
        const auto byte = static_cast<unsigned char>(c);
        if (c >= ' ' && c <= '~')
            quoted += c;
        else
            quoted += {'\\', 'x', digits[byte / 16], digits[byte % 16]};
    }
    return quoted + (text.size() > most ? "...'" : "'");
}

} // namespace formats
