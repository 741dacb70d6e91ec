#pragma once

#include "placement/Geometry.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace placement {

/// Numbers by position, in cubes of space: finds what lies near without looking at everything.
class Cells {
public:
    /// Cubes `width` Å wide, greater than 0.
    explicit Cells(double width)
        : m_width(width) {}

    void Add(const Point &position, std::size_t number) { m_numbers[CellOf(position)].push_back(number); }

    /// Whether `test(number)` holds for one of the numbers that were added up to `width` away from the
    /// position; some that lie up to twice as far (along each axis) are asked too.
    template <class Test>
    bool AnyNear(const Point &position, Test test) const {
        const Cell home = CellOf(position);
        for (std::int32_t z = -1; z <= 1; ++z)
            for (std::int32_t y = -1; y <= 1; ++y)
                for (std::int32_t x = -1; x <= 1; ++x) {
                    const auto cell = m_numbers.find({home[0] + x, home[1] + y, home[2] + z});
                    if (cell != m_numbers.end() && std::ranges::any_of(cell->second, test))
                        return true;
                }
        return false;
    }

private:
    using Cell = std::array<std::int32_t, 3>;
    struct CellHash {
        // Large odd factors spread neighbouring cells (Teschner et al. 2003).
        std::size_t operator()(const Cell &cell) const {
            return std::size_t(cell[0]) * 73856093u ^ std::size_t(cell[1]) * 19349663u ^
                   std::size_t(cell[2]) * 83492791u;
        }
    };

    Cell CellOf(const Point &p) const { return {IndexOf(p.x), IndexOf(p.y), IndexOf(p.z)}; }
    /// What lies beyond all molecules, or nowhere, shares the outermost cells.
    std::int32_t IndexOf(double x) const {
        constexpr double farthest = 1e9;
        const double index = std::floor(x / m_width);
        return std::int32_t(index > -farthest ? std::min(index, farthest) : -farthest);
    }

    double m_width;
    std::unordered_map<Cell, std::vector<std::size_t>, CellHash> m_numbers;
};

} // namespace placement
