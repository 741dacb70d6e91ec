#pragma once

#include "solutions/Solution.h"

/// Result lists on disk, as the results dialog needs them: nothing here shows a message or fails. What could
/// not be done goes to the warning channel; a null name, of a file dialog that was cancelled, is silent.

/// The solutions that the file holds; none where it is not a regular file or cannot be read, or where the
/// list and its rows would not fit into the memory that one piece of work may take. Lines without a solution
/// are skipped.
std::list<SolutionScore> LoadResults(const QString &file);

/// Writes the solutions to the file, whose former content is lost. Only regular files are written to.
void SaveResults(const QString &file, const std::list<SolutionScore> &solutions);
