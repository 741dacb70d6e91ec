#pragma once

#include "solutions/Solution.h"

/// Trims the list to its `size` highest scores and leaves them in ascending order: the worst first, the best
/// last. Of equal scores the later appended survive. A list shorter than `size` is left as it is, unsorted,
/// with a message on the debug channel. A negative size counts as 0.
void weed(std::list<SolutionScore> &list, int size);

namespace solutions {

/// Whether the list has grown past twice the number to keep and is due for a trim. A negative number counts
/// as 0.
bool NeedsWeeding(const std::list<SolutionScore> &list, int size);

} // namespace solutions
