#include "Session.h"

#include "CheckPointer.h"

// What a host calls, on its user-interface thread, with a QApplication of its own.

namespace {

Morvanex *thing;  ///< the live session
bool done = true; ///< whether the plug-in has been cleaned up, or never run

} // namespace

extern "C" {

/// Starts a session and shows its set-up dialog; shows the same dialog again while there is one.
///
/// From the first call on the library must stay mapped until the process ends: load it with RTLD_NODELETE.
/// Queued calls, meta-objects and strings that the toolkit keeps point into it, and so do windows that are
/// left open.
void Execute0() {
    done = false;
    if (thing) {
        thing->replay();
        return;
    }
    thing = new Morvanex;
    VARNO::CheckPointer(thing, "main", 47);
}

/// Ends the session, if there is one; it may be called while a fit is running, which is cancelled. The answer
/// points to a flag that is true until the next `Execute0`, and stays good. The library must not be unmapped
/// even now: what is deleted later, and what the toolkit keeps, still needs its code.
bool *Cleanup() {
    delete thing;
    thing = nullptr;
    qDebug("Fitter cleanup.");
    done = true;
    return &done;
}

/// Always false: a host need never ask again.
bool IsDone() {
    return false;
}

} // extern "C"
