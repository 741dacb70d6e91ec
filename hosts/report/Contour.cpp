#include "hosts/report/Contour.h"

#include <array>
#include <unordered_map>
#include <unordered_set>

namespace report {

namespace {

/// Marching squares (Lorensen and Cline's cubes in two dimensions). Every crossing lies on an edge between
/// two neighbouring pixels; a cell joins its crossings in pairs, always with the higher values to the same
/// side, so that each crossing has one that follows it.
class Tracer {
public:
    Tracer(std::span<const float> values, std::size_t width, float level)
        : m_values(values)
        , m_width(width)
        , m_height(width > 0 ? values.size() / width : 0)
        , m_level(level) {}

    std::vector<Line> Trace() {
        for (std::size_t y = 0; y + 1 < m_height; ++y)
            for (std::size_t x = 0; x + 1 < m_width; ++x)
                JoinCell(x, y);
        std::unordered_set<std::size_t> followers;
        for (const auto &[from, to] : m_next)
            followers.insert(to);
        std::vector<std::size_t> starts, others;
        for (const auto &[from, to] : m_next)
            (followers.contains(from) ? others : starts).push_back(from);
        std::vector<Line> lines;
        for (const std::vector<std::size_t> &group : {starts, others})
            for (const std::size_t start : group)
                if (m_next.contains(start))
                    lines.push_back(Follow(start));
        return lines;
    }

private:
    bool IsHigh(std::size_t x, std::size_t y) const { return m_values[x + m_width * y] >= m_level; }
    /// The edge from a pixel to the next one along x, or down along y.
    std::size_t Along(std::size_t x, std::size_t y) const { return 2 * (x + m_width * y); }
    std::size_t Down(std::size_t x, std::size_t y) const { return 2 * (x + m_width * y) + 1; }

    void JoinCell(std::size_t x, std::size_t y) {
        const std::array<std::size_t, 4> edges{Along(x, y), Down(x + 1, y), Along(x, y + 1), Down(x, y)};
        const std::array<bool, 4> high{IsHigh(x, y), IsHigh(x + 1, y), IsHigh(x + 1, y + 1),
                                       IsHigh(x, y + 1)};
        // Edge i joins corner i and the next one. Round each run of high corners a line goes from the edge
        // behind it to the edge before it.
        for (std::size_t corner = 0; corner < 4; ++corner) {
            if (!high[corner] || high[(corner + 3) % 4])
                continue;
            std::size_t last = corner;
            while (high[(last + 1) % 4])
                last = (last + 1) % 4;
            m_next[edges[last]] = edges[(corner + 3) % 4];
        }
    }

    PicturePoint PointOn(std::size_t edge) const {
        const std::size_t pixel = edge / 2, x = pixel % m_width, y = pixel / m_width;
        const bool isDown = edge % 2 == 1;
        const double a = double(m_values[pixel]), b = double(m_values[pixel + (isDown ? m_width : 1)]);
        const double share = (double(m_level) - a) / (b - a), part = share >= 0 && share <= 1 ? share : 0.5;
        return {double(x) + (isDown ? 0 : part), double(y) + (isDown ? part : 0)};
    }

    Line Follow(std::size_t edge) {
        Line line{PointOn(edge)};
        for (auto next = m_next.find(edge); next != m_next.end(); next = m_next.find(edge)) {
            edge = next->second;
            line.push_back(PointOn(edge));
            m_next.erase(next);
        }
        return line;
    }

    std::span<const float> m_values;
    std::size_t m_width, m_height;
    float m_level;
    std::unordered_map<std::size_t, std::size_t> m_next; ///< by a crossing's edge that of the one behind it
};

} // namespace

std::vector<Line> Contours(std::span<const float> values, std::size_t width, float level) {
    return Tracer(values, width, level).Trace();
}

} // namespace report
