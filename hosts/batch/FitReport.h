#pragma once

#include "FitInput.h"
#include "FitJson.h"

#include "fit/Preparation.h"

namespace Batch {

/// What a fit says on standard output.

/// What was read, and what the search is going to be.
void ReportInput(const FitOptions &options, const FitInput &input, const Survey &survey);
/// What came of the search: the counts, a table of the ten best, and the files written, a line each.
void ReportSolutions(const FitRecord &record, const std::vector<std::string> &written);

} // namespace Batch
