#pragma once

#include <cstddef>
#include <string>

namespace cli {

/// How far a search is, on standard error: on a terminal one line with a bar that is drawn over itself, else
/// (a log file, a pipe) a plain line for every tenth of the work.
class ProgressBar {
public:
    /// Shows nothing unless `visible`.
    explicit ProgressBar(bool visible);
    ProgressBar(const ProgressBar &) = delete;
    ProgressBar &operator=(const ProgressBar &) = delete;
    /// Takes the bar off the terminal.
    ~ProgressBar();

    /// `done` of `total` axes are done, about `seconds` remain; negative: not known yet.
    void Show(std::size_t done, std::size_t total, double seconds);

private:
    void ShowTenth(std::size_t done, std::size_t total, const std::string &remaining);

    bool m_visible;
    bool m_terminal;
    std::size_t m_tenths = 0;
    std::string m_drawn;
};

/// The bar as a text of `width` characters.
std::string BarText(std::size_t done, std::size_t total, std::size_t width);

} // namespace cli
