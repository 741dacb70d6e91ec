#include "placement/Filter.h"

#include "placement/Constants.h"
#include "placement/Parallel.h"

#include <numbers>
#include <numeric>
#include <span>

namespace placement {

namespace {

double Gaussian(double variance, double k) {
    const double omega = 2 * std::numbers::pi * k;
    return std::exp(-0.5 * variance * omega * omega);
}

/// The share of signal over the map's whitened power, as an amplitude: c·sqrt(C/S); 0 at k = 0, and where the
/// map holds nothing.
RadialCurve WhitenedSignal(const Spectrum &spectrum, const std::function<double(double k)> &factor) {
    const double resolution = spectrum.resolution;
    return Sample(cutEnd / resolution, spectrum.power.step / 2, [&](double k) {
        const double x = k * resolution;
        if (k == 0 || x >= cutEnd || k > usableNyquist * spectrum.nyquist)
            return 0.0;
        const double power = spectrum.power.At(k) + powerFloor * spectrum.strongest;
        return CutOff(x) * std::sqrt(SignalShare(x) / power) * factor(k);
    });
}

} // namespace

double SignalShare(double x) {
    return 1 / (1 + noisePerSignal * std::exp(signalFallOff * (x * x - 1)));
}

double CutOff(double x) {
    if (x <= cutBegin)
        return 1;
    return x >= cutEnd ? 0 : 0.5 * (1 + std::cos(std::numbers::pi * (x - cutBegin) / (cutEnd - cutBegin)));
}

RadialCurve MatchedFilter(const Spectrum &spectrum, const RadialCurve &modelPower) {
    return WhitenedSignal(spectrum, [&](double k) { return 1 / std::sqrt(modelPower.At(k)); });
}

RadialCurve LevelFilter(const Spectrum &spectrum, double sigma) {
    const double finest = finestWidth * spectrum.resolution;
    const double variance = sigma * sigma - finest * finest;
    return WhitenedSignal(spectrum, [&](double k) { return k * Gaussian(variance, k); });
}

RadialCurve WhiteFilter(const Spectrum &spectrum, double sigma) {
    const double finest = finestWidth * spectrum.resolution;
    const double variance = sigma * sigma - finest * finest;
    return WhitenedSignal(spectrum, [&](double k) { return Gaussian(variance, k); });
}

RadialCurve GaussianFilter(double sigma, double end) {
    constexpr double samples = 500;
    return Sample(end, end / samples, [&](double k) { return k < end ? Gaussian(sigma * sigma, k) : 0.0; });
}

double LevelVoxel(const Spectrum &spectrum, double wanted) {
    const double end = std::min(cutEnd / spectrum.resolution, usableNyquist * spectrum.nyquist);
    return std::max(wanted, voxelPerWave / end);
}

void ScaleToUnitPower(Volume &volume, unsigned threads) {
    // Sums of sections, so that the order in which they are added does not depend on the threads.
    const std::size_t size = volume.count[0] * volume.count[1];
    const auto section = [&](std::size_t k) { return std::span(volume.values).subspan(k * size, size); };
    std::vector<double> squares(volume.count[2]);
    ForEach(squares.size(), threads, [&](std::size_t k, unsigned) {
        for (const float value : section(k))
            squares[k] += double(value) * double(value);
    });
    const double sum = std::accumulate(squares.begin(), squares.end(), 0.0);
    if (sum == 0)
        return;
    const auto scale = float(std::sqrt(double(volume.values.size()) / sum));
    ForEach(squares.size(), threads, [&](std::size_t k, unsigned) {
        for (float &value : section(k))
            value *= scale;
    });
}

} // namespace placement
