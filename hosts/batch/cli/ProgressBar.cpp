#include "cli/ProgressBar.h"

#include "base/Words.h"

#include "cli/Diagnostics.h"

#include <algorithm>
#include <iostream>

#include <sys/ioctl.h>
#include <unistd.h>

namespace cli {

namespace {

constexpr const char *eraseLine = "\r\033[K";

/// Columns of the terminal; the usual 80 where it does not tell.
std::size_t TerminalWidth() {
    winsize size = {};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

std::size_t Percent(std::size_t done, std::size_t total) {
    return total > 0 ? 100 * done / total : 100;
}

} // namespace

std::string BarText(std::size_t done, std::size_t total, std::size_t width) {
    const std::size_t filled = total > 0 ? std::min(width, width * done / total) : width;
    std::string bar;
    for (std::size_t i = 0; i < width; ++i)
        bar += i < filled ? "█" : "░";
    return bar;
}

ProgressBar::ProgressBar(bool visible, Clock::duration silence, const std::string &unit)
    : m_visible(visible)
    , m_terminal(isatty(STDERR_FILENO))
    , m_firstLine(Clock::now() + silence)
    , m_unit(unit) {}

ProgressBar::~ProgressBar() {
    if (!m_drawn.empty())
        std::cerr << eraseLine << std::flush;
}

void ProgressBar::Show(std::size_t done, std::size_t total, double seconds) {
    if (!m_visible)
        return;
    const std::string remaining = seconds < 0 ? "" : ", about " + base::DurationText(seconds) + " left";
    if (!m_terminal)
        return ShowTenth(done, total, remaining);
    const std::string units =
        m_unit.empty() ? "" : ", " + m_unit + " " + std::to_string(done) + " of " + std::to_string(total);
    const std::string text = std::to_string(Percent(done, total)) + " %" + units + remaining;
    const std::size_t columns = TerminalWidth();
    const std::size_t width = std::clamp<std::size_t>(columns, 50, 80) - 50;
    const std::string line = BarText(done, total, width) + ' ' + text.substr(0, columns - width - 2);
    if (line != m_drawn)
        std::cerr << eraseLine << line << std::flush;
    m_drawn = line;
}

void ProgressBar::ShowTenth(std::size_t done, std::size_t total, const std::string &remaining) {
    const std::size_t tenths = Percent(done, total) / 10;
    if (tenths <= m_tenths || Clock::now() < m_firstLine)
        return;
    m_tenths = tenths;
    Print(std::to_string(Percent(done, total)) + " % done" + remaining);
}

} // namespace cli
