#pragma once

namespace placement {

/// What a search tells the world, and asks it. The default is silent and never cancels.
class Monitor {
public:
    virtual ~Monitor() = default;
    /// How much of the whole work is done, from 0 to 1. Called from the thread that called the search.
    virtual void Advance(double /*share*/) {}
    /// Whether to stop soon and hand back what was found by then. Called from any thread.
    virtual bool IsCancelled() { return false; }
};

} // namespace placement
