#include "PlaceProgress.h"

#include "cli/Interrupt.h"

namespace batch {

PlaceProgress::PlaceProgress(bool quiet)
    : m_bar(!quiet, "") {
    m_timer.start();
}

void PlaceProgress::Advance(double share) {
    constexpr double quick = 0.7; // seconds; what is done by then needs no bar
    constexpr std::size_t steps = 1000;
    const double seconds = Seconds();
    if (seconds > quick && share > 0)
        m_bar.Show(std::size_t(share * double(steps)), steps, seconds * (1 - share) / share);
}

bool PlaceProgress::IsCancelled() {
    return cli::WasInterrupted();
}

} // namespace batch
