#pragma once

#include "Types.h"

#include <QByteArrayView>
#include <QString>

#include <functional>
#include <vector>

namespace fit {

/// One record of a restraints file: the key of a target residue ("ALA12") and its preferred position, Å.
struct RestraintRecord {
    QString residue;
    VARNO::Vertex position;
};

/// Gets what is wrong with a restraints file: the number of the line, from 1, or 0 for the file as a whole,
/// and what is wrong there.
using RestraintsFault = std::function<void(std::size_t line, const QString &text)>;

/// The records of a restraints file: a key and three coordinates each, all words separated by any white
/// space. A coordinate that is not a number, or is missing, is 0 and shifts nothing that follows. The
/// minus sign U+2212 stands for the hyphen in a number. White space after the last record gives one more
/// record with an empty key, which matches no residue.
///
/// The text is UTF-8, or what its byte order mark says. `fault`, if given, gets what is wrong, in the order
/// of the file, and may throw.
std::vector<RestraintRecord> ParseRestraints(QByteArrayView bytes, const RestraintsFault &fault = {});

/// The records of that file, whatever is wrong with it. A file that does not exist, cannot be opened or is
/// not a regular file silently holds none.
std::vector<RestraintRecord> ReadRestraints(const QString &file);

} // namespace fit
