#pragma once

#include "solutions/Solution.h"

#include "base/Memory.h"

#include <map>

class QIODevice;

/// The results file: the comment line, then one line per solution in the order of the list. The log of a fit
/// has the same lines.
///
/// A line holds 8 + n numbers separated by blanks: the quaternion's w, x, y, z and the translation's x, y, z
/// in Å (two decimals), the score (three decimals) and n extra scores (two decimals).

/// The words of a line, separated by blanks only. A word of a single character at the very end of the line is
/// not returned: existing files and programs rely on that.
std::vector<QString> split(const QString &line);

namespace solutions {

/// Writes the list to an open device.
void WriteResults(QIODevice &device, const std::list<SolutionScore> &solutions);

/// The content of a results file.
struct ResultsRead {
    std::list<SolutionScore> solutions; ///< in file order
    std::vector<qint64> skippedLines;   ///< numbers, from 1, of the lines with fewer than eight words
    /// Records that a word among the first eight makes doubtful, since it is not a number and reads as 0:
    /// place in `solutions`, from 0, and number of the line.
    std::map<std::size_t, qint64> doubtful;
    bool isWhole = true; ///< false where memory did not suffice to read to the file's end
};

/// Reads every line that does not begin with '#' and has at least eight words. A device that is not open
/// holds nothing. Reading stops where the list, with `bytesBeside` that the caller adds for each solution,
/// would take more than `memory` bytes, and at a line whose words would.
ResultsRead ReadResults(QIODevice &device, double memory = base::MemoryLimit(), double bytesBeside = 0);

} // namespace solutions
