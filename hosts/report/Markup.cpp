#include "hosts/report/Markup.h"

#include "base/Numbers.h"

#include <QString>

#include <cmath>

namespace report {

namespace {

std::string Readable(std::string_view text) {
    QString readable = QString::fromUtf8(text.data(), qsizetype(text.size()));
    for (QChar &character : readable)
        if (character.category() == QChar::Other_Control && character != '\n' && character != '\t')
            character = QChar::ReplacementCharacter;
    return readable.toStdString();
}

} // namespace

std::string Escaped(std::string_view text) {
    std::string escaped;
    for (const char character : Readable(text))
        switch (character) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        case '\'':
            escaped += "&#39;";
            break;
        default:
            escaped += character;
        }
    return escaped;
}

std::string InScript(std::string json) {
    for (std::size_t at = json.find('<'); at != std::string::npos; at = json.find('<', at))
        json.replace(at, 1, "\\u003c");
    return json;
}

std::string Figure(double number, int decimals) {
    return std::isfinite(number) ? base::PlainFixed(number, decimals) : "–";
}

std::string Coordinate(double number) {
    std::string text = base::PlainFixed(number, 1);
    if (text.ends_with(".0"))
        text.resize(text.size() - 2);
    return text;
}

} // namespace report
