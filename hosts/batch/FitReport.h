#pragma once

#include "hosts/common/FitInput.h"
#include "hosts/common/FitRecord.h"

#include "fit/Preparation.h"

namespace batch {

/// What a fit prints on standard output.

/// The input, and the search to come.
void ReportInput(const hosts::FitOptions &options, const hosts::FitInput &input,
                 const fit::FitParameters &parameters, const fit::Survey &survey);
/// The outcome: the counts, a table of the ten best, and the files written, a line each.
void ReportSolutions(const hosts::FitRecord &record, const std::vector<std::string> &written);

} // namespace batch
