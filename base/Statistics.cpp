#include "base/Statistics.h"

#include <cmath>

namespace base {

namespace {

template <class Number>
Statistics Sum(std::span<const Number> values) {
    Statistics sum;
    for (const Number value : values)
        if (std::isfinite(value)) {
            sum.mean += value;
            ++sum.count;
        }
    if (sum.count == 0)
        return {};
    sum.mean /= double(sum.count);
    for (const Number value : values)
        if (std::isfinite(value))
            sum.squares += (value - sum.mean) * (value - sum.mean);
    return sum;
}

} // namespace

double Statistics::Deviation() const {
    return count == 0 ? 0 : std::sqrt(squares / double(count));
}

double Statistics::SampleDeviation() const {
    return count < 2 ? 0 : std::sqrt(squares / double(count - 1));
}

Statistics StatisticsOf(std::span<const float> values) {
    return Sum(values);
}

Statistics StatisticsOf(std::span<const double> values) {
    return Sum(values);
}

} // namespace base
