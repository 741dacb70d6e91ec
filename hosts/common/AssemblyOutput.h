#pragma once

#include "hosts/common/AssemblyRecord.h"
#include "hosts/common/Delivery.h"

namespace hosts {

/// The files that an assembly is written to.

/// Throws FileError for an output that cannot be written, that is an input or that is another output. Changes
/// nothing.
void CheckAssemblyOutputs(const PlaceOptions &options);

/// Writes what was asked for, each file as a whole. A file that fails does not keep the others from being
/// written.
Delivery WriteAssemblyOutputs(const AssemblyRecord &record, const PlaceInput &input);

} // namespace hosts
