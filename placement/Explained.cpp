#include "placement/Explained.h"

#include "placement/Constants.h"
#include "placement/Interpolation.h"
#include "placement/Parallel.h"

#include <algorithm>

namespace placement {

namespace {

/// Σ Re(F·conj Fi) over each shell up to the resolution.
std::vector<double> CommonPower(const Spectrum &map, const Waves &part) {
    std::vector<double> common(map.power.values.size());
    ForEachWave(part, [&](double k, std::size_t index, double weight) {
        if (k == 0 || k > 1 / map.resolution)
            return;
        const std::complex<double> f(map.waves.values[index]), s(part.values[index]);
        common[std::size_t(std::lround(k / map.power.step))] +=
            weight * (f.real() * s.real() + f.imag() * s.imag());
    });
    return common;
}

double PowerOf(const Spectrum &map) {
    double sum = 0;
    ForEachWave(map.waves, [&](double k, std::size_t index, double weight) {
        if (k > 0 && k <= 1 / map.resolution)
            sum += weight * double(std::norm(map.waves.values[index]));
    });
    return sum;
}

} // namespace

std::vector<double> ExplainedShares(const Spectrum &map, std::span<const std::vector<Scatterer>> models,
                                    unsigned threads) {
    std::vector<std::vector<double>> common;
    Waves all;
    for (const std::vector<Scatterer> &model : models) {
        Waves own = TransformAtoms(model, map, threads);
        common.push_back(CommonPower(map, own));
        if (all.values.empty())
            all = std::move(own);
        else
            std::ranges::transform(all.values, own.values, all.values.begin(), std::plus());
    }
    std::vector<double> shares(models.size());
    const double power = PowerOf(map);
    if (models.empty() || !(power > 0))
        return shares;
    const RadialCurve amplitude = FittedAmplitude(map.waves, all, map.power);
    for (std::size_t i = 0; i < models.size(); ++i)
        for (std::size_t shell = 0; shell < amplitude.values.size(); ++shell)
            shares[i] += amplitude.values[shell] * common[i][shell] / power;
    return shares;
}

Volume Unexplained(const VolumeView &map, std::span<const Scatterer> atoms, double resolution,
                   unsigned threads) {
    Spectrum spectrum = TransformMap(map, resolution, threads);
    const Waves own = TransformAtoms(atoms, spectrum, threads);
    RadialCurve amplitude = FittedAmplitude(spectrum.waves, own, spectrum.power);
    const double finest = *std::ranges::min_element(map.spacing);
    const Volume explained = Synthesise(own, amplitude, finest, threads, Between::Linear);
    Volume rest{map.count, map.spacing, map.origin, {}};
    rest.values.resize(map.count[0] * map.count[1] * map.count[2]);
    ForEach(map.count[2], threads, [&](std::size_t k, unsigned) {
        for (std::size_t j = 0; j < map.count[1]; ++j)
            for (std::size_t i = 0; i < map.count[0]; ++i)
                rest.values[rest.Index(i, j, k)] =
                    map.values[map.Index(i, j, k)] -
                    float(ValueAt(explained, rest.At(i, j, k) - explained.origin));
    });
    return rest;
}

} // namespace placement
