#include "placement/Resolution.h"

#include "placement/Constants.h"
#include "placement/Spectrum.h"
#include "placement/Trim.h"

#include <algorithm>

namespace placement {

double EstimateResolution(const VolumeView &map, const PointModel &model, unsigned threads) {
    const double end =
        std::min(1 / finestEstimate, 0.5 * usableNyquist / *std::ranges::max_element(map.spacing));
    const Waves waves = TransformPadded(Trimmed(map, model, resolutionGuess, threads),
                                        padding * resolutionGuess, end, threads);
    const RadialCurve power = RadialPower(waves, end, threads);
    const RadialCurve modelPower = DebyePower(model, end, power.step);
    const auto perPoint = [&](std::size_t shell) {
        return power.values[shell] / modelPower.At(double(shell) * power.step);
    };
    const auto first = std::size_t(std::max(1.0, 1 / (longestSpectralWave * power.step)));
    const auto last = std::min(power.values.size() - 1, std::size_t(end / power.step));
    std::size_t weakest = first;
    double strongest = 0;
    for (std::size_t shell = first; shell <= last; ++shell) {
        weakest = perPoint(shell) < perPoint(weakest) ? shell : weakest;
        strongest = std::max(strongest, perPoint(shell));
    }
    const double noise = power.values[weakest];
    std::size_t shell = weakest;
    while (shell > first && (power.values[shell] < noise * (1 + 1 / noisePerSignal) ||
                             perPoint(shell) - perPoint(weakest) < spectralFallOff * strongest))
        --shell;
    return std::clamp(1 / (double(shell) * power.step), std::max(finestEstimate, 1 / end), coarsestEstimate);
}

} // namespace placement
