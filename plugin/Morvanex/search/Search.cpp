#include "search/Search.h"

#include <QElapsedTimer>

namespace search {

namespace {

class RunningSearch {
public:
    RunningSearch(const fit::Preparation &fit, const fit::FitParameters &parameters, FitMonitor &monitor,
                  const MakePasses &makePasses)
        : m_fit(fit)
        , m_monitor(monitor) {
        m_timer.start();
        m_startReading = m_timer.elapsed();
        m_monitor.Started(m_fit);
        m_log.Open(parameters.log, parameters.logging);
        m_passes = makePasses(m_log);
    }

    bool Run() {
        m_passes->Identity();
        if (IsCancelled())
            return false;
        m_monitor.IdentityDone(m_fit.axes.size());
        for (std::size_t done = 1; done <= m_fit.axes.size(); ++done) {
            m_passes->Axis(done - 1);
            const double minutes = RemainingMinutes(done);
            if (IsCancelled())
                return false;
            m_monitor.AxisDone(done, m_fit.axes.size(), minutes);
        }
        m_passes->Complete();
        m_monitor.Finished();
        return true;
    }

private:
    bool IsCancelled() {
        if (!m_log.Flush())
            m_monitor.LogLost(m_log.ErrorText());
        if (!m_monitor.IsCancelled())
            return false;
        m_passes->Abandon();
        m_monitor.Cancelled();
        return true;
    }

    /// The time that the remaining axes take at the pace so far. The first reading of the clock, a few
    /// milliseconds at most, is added to the later one.
    double RemainingMinutes(std::size_t done) const {
        const double spent = double(m_timer.elapsed() + m_startReading) / 60000.0;
        return spent / double(done) * double(m_fit.axes.size() - done);
    }

    const fit::Preparation &m_fit;
    FitMonitor &m_monitor;
    solutions::FitLog m_log;
    std::unique_ptr<SearchPasses> m_passes;
    QElapsedTimer m_timer;
    qint64 m_startReading = 0;
};

} // namespace

bool Search(const fit::Preparation &fit, const fit::FitParameters &parameters, FitMonitor &monitor,
            const MakePasses &makePasses) {
    return RunningSearch(fit, parameters, monitor, makePasses).Run();
}

} // namespace search
