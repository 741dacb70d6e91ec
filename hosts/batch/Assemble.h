#pragma once

#include "hosts/common/PlaceOptions.h"

namespace batch {

/// Places the parts of an assembly, writes and prints what came of it, and returns the exit status. Throws as
/// the readers do, and for a part that is asked for in a way that makes no sense.
int Assemble(const hosts::PlaceOptions &options);

} // namespace batch
