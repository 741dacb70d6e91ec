#pragma once

#include <cstddef>
#include <functional>
#include <vector>

namespace placement {

/// A function of the wavenumber k (1/Å), linear between equally spaced ones.
struct RadialCurve {
    double step = 1;            ///< 1/Å
    std::vector<double> values; ///< at 0, step, 2·step, …

    /// The value at k >= 0; behind the last one that is held, the last.
    double At(double k) const {
        const double x = k / step;
        const auto i = std::size_t(x);
        if (i + 1 >= values.size())
            return values.back();
        const double part = x - double(i);
        return values[i] * (1 - part) + values[i + 1] * part;
    }
    double End() const { return step * double(values.size() - 1); }
};

/// The function, sampled from 0 to beyond `end`.
RadialCurve Sample(double end, double step, const std::function<double(double k)> &function);

} // namespace placement
