#pragma once

#include <pybind11/pybind11.h>

#include <atomic>
#include <functional>

namespace python {

/// What a piece of work and who waits for it tell each other.
struct Watch {
    std::atomic<double> share = 0;      ///< of the work that is done
    std::atomic<bool> mustStop = false; ///< soon, with what was found by then
};

/// Runs the work on a thread of its own, without the interpreter's lock. The caller's thread meanwhile looks
/// for signals and calls `progress` (None or a callable that takes the share done), up to ten times a second.
///
/// An exception of either stops the work, and is returned; None where the work ran to its end. Throws what
/// the work throws.
pybind11::object RunWatched(Watch &watch, const pybind11::object &progress,
                            const std::function<void()> &work);

} // namespace python
