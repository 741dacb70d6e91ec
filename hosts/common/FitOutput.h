#pragma once

#include "hosts/common/Delivery.h"
#include "hosts/common/FitInput.h"
#include "hosts/common/FitRecord.h"

namespace hosts {

/// The files that a fit writes.

/// Names of the models, the best first: the prefix, the rank with as many digits as the last one has, and the
/// format's extension. No more than are kept.
std::vector<std::string> ModelFiles(const FitOptions &options, formats::StructureFormat format);

/// Throws FileError for an output that cannot be written, that is an input or that is another output. Changes
/// nothing.
void CheckFitOutputs(const FitOptions &options, const std::vector<std::string> &models);

/// Writes what was asked for, each file as a whole. A file that fails does not prevent the
/// others.
Delivery WriteFitOutputs(const FitRecord &record, const std::list<SolutionScore> &solutions,
                         const FitInput &input);

} // namespace hosts
