#include "Session.h"

#include "CheckPointer.h"

// What a host calls, on its user-interface thread, with a QApplication of its own. Hosts load the library
// with RTLD_NODELETE: queued calls, meta-objects and strings that the toolkit keeps would dangle if it were
// unmapped.

namespace {

Morvanex *thing;  ///< the live session
bool done = true; ///< whether the plug-in has been cleaned up, or never run

} // namespace

extern "C" {

/// Starts a session and shows its set-up dialog; shows the same dialog again while there is one.
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
/// points to a flag that is true until the next `Execute0`.
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
