#pragma once

#include "fit/Preparation.h"

#include <string>

namespace hosts {

/// The engine reads any restraints file without a word; here it is looked at before.

/// Throws FileError for a file that is no plain text, holds no record, or of which a record is incomplete or
/// has something else where a number belongs (naming the line).
void CheckRestraintsFile(const std::string &file);

/// The records' keys that no residue with a position of the target has, in file order.
std::vector<std::string> UnknownResidues(const std::vector<fit::RestraintRecord> &records,
                                         VARNO::Compound *target);

} // namespace hosts
