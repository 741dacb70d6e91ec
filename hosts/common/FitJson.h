#pragma once

#include "base/Memory.h"

#include "hosts/common/FitRecord.h"

#include <iosfwd>
#include <map>

namespace hosts {

/// How the file identifies itself.
constexpr const char *fitFormat = "morvanex fit";
constexpr int fitVersion = 1;

/// Writes the record: numbers in full precision, so that they are read back bit for bit, those that are not
/// finite as the texts "inf", "-inf" and "nan"; one solution on each line, the best first.
void WriteFitJson(std::ostream &out, const FitRecord &record);

/// The solutions of such a file.
struct JsonSolutions {
    std::vector<SolutionScore> solutions;        ///< by rank, the best first
    std::map<std::size_t, std::string> problems; ///< rank of a solution that cannot be used, and why
};

/// Reads the solutions; a broken one does not make the others unreadable. Besides them nothing is kept in
/// memory, whatever else the bytes hold. Throws FileError, with the name given, where the bytes are not JSON,
/// of another format or of another version, and where the solutions would take more than `memory` bytes.
JsonSolutions ReadFitJson(const std::string &file, const std::string &bytes,
                          double memory = base::MemoryLimit());

} // namespace hosts
