#include "PlaceProgress.h"

#include "cli/StopSignals.h"

namespace batch {

PlaceProgress::PlaceProgress(bool quiet)
    : m_bar(!quiet, std::chrono::seconds(1), "") {
    m_timer.start();
}

void PlaceProgress::Advance(double share) {
    constexpr std::size_t steps = 1000;
    const double seconds = Seconds();
    if (share > 0)
        m_bar.Show(std::size_t(share * double(steps)), steps, seconds * (1 - share) / share);
}

bool PlaceProgress::IsCancelled() {
    return cli::StopSignal() != 0;
}

} // namespace batch
