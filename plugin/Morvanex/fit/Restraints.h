#pragma once

#include "Types.h"

#include <QString>

#include <vector>

namespace fit {

/// One record of a restraints file: the key of a target residue ("ALA12") and its preferred position, Å.
struct RestraintRecord {
    QString residue;
    VARNO::Vertex position;
};

/// Reads a restraints file: records of a key and three coordinates, all separated by any white space. Nothing
/// in a record is checked: what is no number reads as 0, and white space after the last record gives one more
/// record with an empty key, which matches no residue. A file that does not exist, cannot be opened or is not
/// a regular file holds no records; nothing is said of it.
std::vector<RestraintRecord> ReadRestraints(const QString &file);

} // namespace fit
