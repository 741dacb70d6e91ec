#include "formats/structures/MmcifDocument.h"

#include "base/Words.h"
#include "formats/files/FileError.h"

#include <algorithm>

namespace formats {

namespace {

/// What the parser says where a rule of the format has words of its own for it; else the text that fits no
/// rule, since the parser then names the rules themselves.
std::string ProblemOf(const tao::pegtl::parse_error &error, std::string_view text) {
    std::string message(error.message());
    if (!message.starts_with("parse error"))
        return message;
    const std::string_view rest = text.substr(std::min(error.positions().front().byte, text.size()));
    return base::Quoted(rest.substr(0, rest.find_first_of("\r\n"))) + " cannot stand here in mmCIF";
}

} // namespace

gemmi::cif::Document ParseDocument(const std::string &file, std::string_view text) {
    gemmi::cif::Document document;
    try {
        tao::pegtl::memory_input<> input(text.data(), text.size(), file);
        gemmi::cif::parse_input(document, input);
    } catch (const tao::pegtl::parse_error &error) {
        throw FileError(file, "line " + std::to_string(error.positions().front().line),
                        ProblemOf(error, text));
    }
    return document;
}

} // namespace formats
