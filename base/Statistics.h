#pragma once

#include <cstddef>
#include <span>

namespace base {

/// Mean and spread of some values; all 0 where there are none.
struct Statistics {
    std::size_t count = 0;
    double mean = 0;
    double squares = 0; ///< sum of the squared deviations from the mean

    /// The standard deviation of the values as they are: the root of squares / count.
    double Deviation() const;
    /// The standard deviation of what the values are a sample of: the root of squares / (count - 1); 0 for
    /// fewer than two values.
    double SampleDeviation() const;
};

/// Of those values that are finite. Two passes in double, from the first value to the last.
Statistics StatisticsOf(std::span<const float> values);
Statistics StatisticsOf(std::span<const double> values);

} // namespace base
