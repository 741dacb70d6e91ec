#include "cli/Printable.h"

namespace cli {

namespace {

std::string Escaped(unsigned char character) {
    constexpr const char *digits = "0123456789abcdef";
    if (character == '\n')
        return "\\n";
    if (character == '\t')
        return "\\t";
    return {'\\', 'x', digits[character >> 4], digits[character & 15]};
}

} // namespace

std::string Printable(const std::string &text) {
    std::string printable;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : 0);
        if (byte < 0x20 || byte == 0x7f)
            printable += Escaped(byte);
        else if (byte == 0xc2 && next >= 0x80 && next < 0xa0) // U+0080 to U+009F in UTF-8
            printable += Escaped(static_cast<unsigned char>(text[++i]));
        else
            printable += text[i];
    }
    return printable;
}

} // namespace cli
