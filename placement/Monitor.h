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

/// Shows a part of some work its place in the whole, from one share of it to another.
class PartMonitor : public Monitor {
public:
    PartMonitor(Monitor &whole, double begin, double end)
        : m_whole(whole)
        , m_begin(begin)
        , m_end(end) {}

    void Advance(double share) override { m_whole.Advance(m_begin + share * (m_end - m_begin)); }
    bool IsCancelled() override { return m_whole.IsCancelled(); }

private:
    Monitor &m_whole;
    double m_begin, m_end;
};

} // namespace placement
