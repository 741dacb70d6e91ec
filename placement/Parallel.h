#pragma once

#include <cstddef>
#include <functional>

namespace placement {

/// Calls work(item, worker) once for each item below `items`, on as many threads as given (at least one, the
/// caller's among them), each of which has its own worker number below `threads` and takes items in ascending
/// order. Makes do with fewer threads where the machine starts no more. An exception of `work` is thrown
/// again when all threads have ended.
void ForEach(std::size_t items, unsigned threads,
             const std::function<void(std::size_t item, unsigned worker)> &work);

} // namespace placement
