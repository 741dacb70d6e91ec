#pragma once

#include <random>

namespace hosts {

/// A number of mean 0 and variance 1, close to a normal distribution: the sum of twelve uniform ones, less
/// six. The library's normal distribution differs between machines, as logarithm and cosine do; additions do
/// not.
inline double NormalNumber(std::mt19937_64 &random) {
    double sum = -6;
    for (int i = 0; i < 12; ++i)
        sum += double(random() >> 11) * 0x1p-53;
    return sum;
}

} // namespace hosts
