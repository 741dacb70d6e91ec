#pragma once

#include <gemmi/cif.hpp>

#include <string>
#include <string_view>

namespace formats {

/// The blocks of an mmCIF file. Throws FileError, naming the line, for text that is no mmCIF; `file` is the
/// name in it.
gemmi::cif::Document ParseDocument(const std::string &file, std::string_view text);

} // namespace formats
