#include "WatchedWork.h"

#include <chrono>
#include <exception>
#include <future>

namespace py = pybind11;

namespace python {

namespace {

/// Handles signals that have come, and shows how far the work is. The exception of either; else None.
py::object LookAround(double share, const py::object &progress) {
    try {
        if (PyErr_CheckSignals() != 0)
            throw py::error_already_set();
        if (!progress.is_none())
            progress(share);
    } catch (py::error_already_set &error) {
        if (error.trace())
            PyException_SetTraceback(error.value().ptr(), error.trace().ptr());
        return error.value();
    }
    return py::none();
}

} // namespace

py::object RunWatched(Watch &watch, const py::object &progress, const std::function<void()> &work) {
    py::object stopped = py::none();
    // Declared before the lock is released: what the work throws may hold no object of Python's.
    std::future<void> done;
    {
        const py::gil_scoped_release unlocked;
        done = std::async(std::launch::async, work);
        while (done.wait_for(std::chrono::milliseconds(100)) != std::future_status::ready) {
            const py::gil_scoped_acquire locked;
            // A signal that comes while the work is stopping changes nothing.
            const py::object exception = LookAround(watch.share, watch.mustStop ? py::none() : progress);
            if (exception.is_none() || watch.mustStop)
                continue;
            stopped = exception;
            watch.mustStop = true;
        }
    }
    done.get();
    if (stopped.is_none())
        stopped = LookAround(1, progress);
    return stopped;
}

} // namespace python
