#pragma once

#include "Compound.h"
#include "fit/Restraints.h"

#include <string>

namespace hosts {

/// The plug-in reads any restraints file silently; other hosts say what is wrong with it.

/// The records of a file. Throws FileError for a file that is not plain text or holds no record, and for a
/// record that is incomplete or has something other than a number where one belongs (naming the line).
std::vector<fit::RestraintRecord> LoadRestraints(const std::string &file);

/// The records' keys that no residue with a position of the target has, in file order.
std::vector<std::string> UnknownResidues(const std::vector<fit::RestraintRecord> &records,
                                         VARNO::Compound *target);

} // namespace hosts
