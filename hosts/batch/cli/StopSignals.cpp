#include "cli/StopSignals.h"

#include <atomic>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <string_view>

#include <unistd.h>

namespace cli {

namespace {

constexpr int signals[] = {SIGINT, SIGTERM, SIGHUP};

// Whichever thread a signal finds reads and writes these.
std::atomic<int> noted = 0;
std::atomic<const char *> currentStep = nullptr;
std::atomic<std::int64_t> endOfStep = 0; ///< nanoseconds of the steady clock; 0: not known
static_assert(std::atomic<std::int64_t>::is_always_lock_free, "a signal handler may wait for no lock");

std::int64_t Now() {
    using namespace std::chrono;
    return duration_cast<nanoseconds>(steady_clock::now().time_since_epoch()).count();
}

/// A line of text put together without memory of the heap, which a signal handler may not ask for.
class Line {
public:
    void Add(std::string_view text) {
        for (const char character : text)
            if (m_size < sizeof m_text)
                m_text[m_size++] = character;
    }
    void Add(std::int64_t number) {
        char digits[20];
        Add({digits, std::to_chars(digits, digits + sizeof digits, number).ptr});
    }
    /// A length of time as one rounded number: "40 s", "3 min", "5 h".
    void AddDuration(std::int64_t seconds) {
        const bool hours = seconds >= 7200, minutes = seconds >= 120;
        const std::int64_t unit = hours ? 3600 : minutes ? 60 : 1;
        Add((seconds + unit / 2) / unit);
        Add(hours ? " h" : minutes ? " min" : " s");
    }
    void Write() const {
        // There is nobody to tell if it fails.
        [[maybe_unused]] const auto written = write(STDERR_FILENO, m_text, m_size);
    }

private:
    char m_text[256];
    std::size_t m_size = 0;
};

void Answer(int signal) {
    constexpr std::int64_t second = 1'000'000'000;
    Line line;
    line.Add("\nStopping at the end of ");
    line.Add(currentStep.load());
    if (const std::int64_t end = endOfStep; end - Now() >= 2 * second) {
        line.Add(", within about ");
        line.AddDuration((end - Now()) / second);
    }
    line.Add(signal == SIGINT ? "; Ctrl-C again ends at once.\n" : "; a second signal ends at once.\n");
    line.Write();
}

/// Gives every signal that is not ignored this handler.
void Handle(void (*handler)(int)) {
    for (const int signal : signals) {
        struct sigaction action = {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler == SIG_IGN)
            continue;
        action = {};
        action.sa_handler = handler;
        action.sa_flags = int(SA_RESTART);
        sigaction(signal, &action, nullptr);
    }
}

void Note(int signal) {
    Handle(SIG_DFL);
    noted = signal;
    Answer(signal);
}

} // namespace

StopSignals::StopSignals(const char *step) {
    noted = 0;
    EnterStep(step);
    Handle(Note);
}

void StopSignals::EnterStep(const char *step) {
    endOfStep = 0;
    currentStep = step;
}

StopSignals::~StopSignals() {
    Handle(SIG_DFL);
}

int StopSignal() {
    return noted;
}

std::string SignalName(int signal) {
    return signal == SIGINT ? "Ctrl-C" : signal == SIGTERM ? "SIGTERM" : "SIGHUP";
}

void ExpectEndOfStep(double seconds) {
    endOfStep = seconds < 0 ? 0 : Now() + std::int64_t(seconds < 1e9 ? seconds * 1e9 : 1e18);
}

} // namespace cli
