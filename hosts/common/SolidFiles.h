#pragma once

#include "hosts/common/Inputs.h"

#include "Compound.h"

#include <optional>
#include <string>
#include <vector>

namespace hosts {

/// What of one file of parts that stay in place is used.
struct SolidFile {
    std::string file;
    std::vector<VARNO::Chain *> chains;
    std::vector<VARNO::Chain *> leftOut; ///< polymers
    bool hasOthers = false;              ///< ligands or waters, which are never used
};

/// What moves, and is therefore no part of what stays, unless it is named.
struct MovingPart {
    std::string file;
    const VARNO::Clump *clump = nullptr; ///< read from that file
    std::vector<VARNO::Chain *> chains;
};

/// How messages call the parts that stay.
struct SolidWords {
    std::string chains; ///< the parameter that names their chains, "solid chains"
    std::string file;   ///< "solid file"
    std::string part;   ///< "solid"
};

/// Reads the files; one that is the moving part's own is not read twice. Of the files are used: the polymer
/// chains of the given identifiers, each of which a file has to have, or else all that do not move. Throws
/// FileError, also for a file that is given twice or of which nothing is left, and ParameterError for an
/// identifier that no file has.
std::vector<SolidFile> ReadSolidFiles(const std::vector<std::string> &files,
                                      const std::optional<std::vector<std::string>> &identifiers,
                                      const MovingPart &moving, const SolidWords &words,
                                      const WarningSink &warn, InputSource &source = InputFiles());

} // namespace hosts
