#pragma once

#include <gemmi/model.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace formats {

/// The first model of a structure file, record by record.
struct ParsedModel {
    /// Stretches of one chain identifier in the order of the file, cut where the file says that a polymer, a
    /// ligand or the water ends: at TER in PDB, where label_asym_id changes in mmCIF. A residue's entity type
    /// is set only where an mmCIF file tells it.
    std::vector<gemmi::Chain> parts;
    std::string number;  ///< of the model, as text
    unsigned models = 0; ///< in the file, counting those that hold atoms
    std::vector<std::string> warnings;
};

/// Both throw FileError, naming the line or the row and the value, for text that cannot be understood; `file`
/// is the name in it. A text without any atom gives no parts.
ParsedModel ParsePdb(const std::string &file, std::string_view text);
ParsedModel ParseMmcif(const std::string &file, std::string_view text);

} // namespace formats
