#include "cli/Interrupt.h"

#include <atomic>
#include <csignal>
#include <string_view>

#include <unistd.h>

namespace cli {

namespace {

/// Set on whichever thread the signal finds.
std::atomic<bool> interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may wait for no lock");

void Note(int) {
    constexpr std::string_view text =
        "\nStopping at the end of the current axis; Ctrl-C again ends at once.\n";
    interrupted = true;
    // A signal handler may call write, but no stream. There is nobody to tell if it fails.
    [[maybe_unused]] const auto written = write(STDERR_FILENO, text.data(), text.size());
}

} // namespace

void CatchInterrupt() {
    struct sigaction before = {};
    sigaction(SIGINT, nullptr, &before);
    if (before.sa_handler == SIG_IGN)
        return;
    struct sigaction noting = {};
    noting.sa_handler = Note;
    // Reset: the second one finds the default action.
    noting.sa_flags = int(SA_RESETHAND) | SA_RESTART;
    sigaction(SIGINT, &noting, nullptr);
}

bool WasInterrupted() {
    return interrupted;
}

} // namespace cli
