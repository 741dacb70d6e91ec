#pragma once

#include "Compound.h"
#include "fit/Restraints.h"

#include <string>

namespace hosts {

/// The plug-in reads any restraints file without a word; other hosts say what is wrong with it.

/// The records of a file. Throws FileError for a file that is no plain text, holds no record, or of which a
/// record is incomplete or has something else where a number belongs (naming the line).
std::vector<fit::RestraintRecord> LoadRestraints(const std::string &file);

/// The records' keys that no residue with a position of the target has, in file order.
std::vector<std::string> UnknownResidues(const std::vector<fit::RestraintRecord> &records,
                                         VARNO::Compound *target);

} // namespace hosts
