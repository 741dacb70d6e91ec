#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace cli {

/// A search's progress on standard error: on a terminal one line with a bar that is drawn over itself, else
/// (a log file, a pipe) a plain line for every tenth of the work; no line in the first two seconds.
class ProgressBar {
public:
    using Clock = std::chrono::steady_clock;

    /// Shows nothing unless `visible`, and no plain line before `silence` has passed. `unit` is what the work
    /// is counted in; without one only the percentage is shown.
    explicit ProgressBar(bool visible, Clock::duration silence = std::chrono::seconds(2),
                         const std::string &unit = "axis");
    ProgressBar(const ProgressBar &) = delete;
    ProgressBar &operator=(const ProgressBar &) = delete;
    /// Takes the bar off the terminal.
    ~ProgressBar();

    /// `done` of `total` units are done, about `seconds` remain; negative: not known yet.
    void Show(std::size_t done, std::size_t total, double seconds);

private:
    void ShowTenth(std::size_t done, std::size_t total, const std::string &remaining);

    bool m_visible;
    bool m_terminal;
    Clock::time_point m_firstLine; ///< of the first plain line
    std::string m_unit;
    std::size_t m_tenths = 0;
    std::string m_drawn;
};

/// The bar as a text of `width` characters.
std::string BarText(std::size_t done, std::size_t total, std::size_t width);

} // namespace cli
