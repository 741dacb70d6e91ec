#pragma once

#include "solutions/Solution.h"

/// Result lists on disk, as the results dialog needs them: nothing here shows a message or fails. What could
/// not be done is said on the warning channel; a null name, of a file dialog that was cancelled, is silent.

/// The solutions that the file holds, none where it is no regular file, is larger than 64 MiB (more than a
/// million solutions) or cannot be read. Lines that are no solution are skipped.
std::list<SolutionScore> LoadResults(const QString &file);

/// Writes the solutions to the file, whose former content is lost. Only regular files are written to.
void SaveResults(const QString &file, const std::list<SolutionScore> &solutions);
