#include "placement/ShellCorrelation.h"

#include "placement/Spectrum.h"

#include <algorithm>
#include <cmath>

namespace placement {

std::vector<Shell> ShellCorrelation(const VolumeView &a, const VolumeView &b, unsigned threads) {
    const double coarsest = *std::ranges::max_element(a.spacing), end = 0.5 / coarsest;
    const Waves f = TransformPadded(a, 4 * coarsest, end, threads);
    const Waves g = TransformPadded(b, 4 * coarsest, end, threads);
    const double step = 1 / *std::ranges::min_element(f.length);
    struct Sums {
        double common = 0, first = 0, second = 0;
    };
    std::vector<Sums> sums(std::size_t(end / step) + 1);
    ForEachWave(f, [&](double k, std::size_t index, double weight) {
        const auto shell = std::size_t(k / step + 0.5);
        if (shell == 0 || shell >= sums.size())
            return;
        const std::complex<double> x(f.values[index]), y(g.values[index]);
        sums[shell].common += weight * (x.real() * y.real() + x.imag() * y.imag());
        sums[shell].first += weight * std::norm(x);
        sums[shell].second += weight * std::norm(y);
    });
    std::vector<Shell> shells;
    for (std::size_t shell = 1; shell < sums.size(); ++shell) {
        const auto &[common, first, second] = sums[shell];
        const double power = std::sqrt(first * second);
        shells.push_back({double(shell) * step, power > 0 ? common / power : 0});
    }
    return shells;
}

double ResolutionAt(const std::vector<Shell> &shells, double threshold) {
    if (shells.empty() || shells.front().correlation < threshold)
        return 0;
    for (std::size_t i = 1; i < shells.size(); ++i) {
        const Shell &above = shells[i - 1], &below = shells[i];
        if (below.correlation >= threshold)
            continue;
        const double part = (above.correlation - threshold) / (above.correlation - below.correlation);
        return 1 / (above.wavenumber + part * (below.wavenumber - above.wavenumber));
    }
    return 1 / shells.back().wavenumber;
}

} // namespace placement
