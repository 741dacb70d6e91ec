#pragma once

#include "hosts/common/FitInput.h"
#include "hosts/common/FitRecord.h"

#include "fit/Preparation.h"

namespace batch {

/// What a fit says on standard output.

/// What was read, and what the search is going to be.
void ReportInput(const hosts::FitOptions &options, const hosts::FitInput &input,
                 const fit::FitParameters &parameters, const fit::Survey &survey);
/// What came of the search: the counts, a table of the ten best, and the files written, a line each.
void ReportSolutions(const hosts::FitRecord &record, const std::vector<std::string> &written);

} // namespace batch
