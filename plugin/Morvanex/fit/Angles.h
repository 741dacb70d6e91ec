#pragma once

#include <cstdint>
#include <iterator>

namespace fit {

/// 2π as a double.
constexpr double fullTurn = 6.283185307179586;

/// Whether repeated addition of the step reaches a full turn: false for a step so small that a sum near the
/// full turn absorbs it.
inline bool GrowsToFullTurn(double step) {
    return step > 0 && fullTurn - step < fullTurn;
}

/// The angles about each axis in radians: step, step + step, ... below a full turn, each got by adding the
/// step to the one before (in double), never as a product. Where the step divides the turn, rounding decides
/// whether the last sum still lies below it.
class Angles {
public:
    class Iterator {
    public:
        using difference_type = std::ptrdiff_t;
        using value_type = double;

        explicit Iterator(double step)
            : m_step(step)
            , m_angle(step) {}

        double operator*() const { return m_angle; }
        Iterator &operator++() {
            m_angle += m_step;
            return *this;
        }
        bool operator==(std::default_sentinel_t) const { return !(m_angle < fullTurn); }

    private:
        double m_step, m_angle;
    };

    /// The step must grow to a full turn.
    explicit Angles(double step)
        : m_step(step) {}

    Iterator begin() const { return Iterator(m_step); }
    std::default_sentinel_t end() const { return {}; }

    std::uint64_t Count() const {
        std::uint64_t count = 0;
        for (Iterator angle = begin(); angle != end(); ++angle)
            ++count;
        return count;
    }

private:
    double m_step;
};

} // namespace fit
