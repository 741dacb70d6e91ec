#pragma once

#include "PlainFit.h"

/// A small fit made up from a seed, the same on every machine: maps of odd sizes with unequal spacing,
/// smaller or larger than the target, with negative values, values that tie and values of very different
/// size, or none; solids, restraints, earlier solutions, logs, cancels; few and many to keep.
FitInput RandomFit(unsigned seed);
