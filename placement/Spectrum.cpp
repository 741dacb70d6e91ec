#include "placement/Spectrum.h"

#include "placement/Constants.h"
#include "placement/Parallel.h"

#include <algorithm>
#include <numbers>
#include <numeric>

namespace placement {

namespace {

double Squared(double x) {
    return x * x;
}

/// 1 up to `begin`, then half a cosine down to 0 at `end`.
double LetDown(double x, double begin, double end) {
    if (x <= begin)
        return 1;
    return x >= end ? 0 : 0.5 * (1 + std::cos(std::numbers::pi * (x - begin) / (end - begin)));
}

RowSource RowsOf(const VolumeView &volume) {
    return [&volume](std::size_t j, std::size_t k, float *row) { std::ranges::copy(volume.Row(j, k), row); };
}

double NumberOf(const VolumeView &map) {
    return double(map.count[0]) * double(map.count[1]) * double(map.count[2]);
}

/// The sum of term(section) over sections. Each is a sum of its own, so that the total does not depend on the
/// threads.
template <class Term>
auto SumOverSections(std::size_t sections, unsigned threads, Term term) {
    std::vector<decltype(term(sections))> terms(sections);
    ForEach(sections, threads, [&](std::size_t section, unsigned) { terms[section] = term(section); });
    return std::accumulate(terms.begin(), terms.end(), decltype(term(sections)){});
}

/// The sum of term(value) over all values.
template <class Term>
double SumOverValues(const VolumeView &map, unsigned threads, Term term) {
    return SumOverSections(map.count[2], threads, [&](std::size_t k) {
        double sum = 0;
        for (std::size_t j = 0; j < map.count[1]; ++j)
            for (const float value : map.Row(j, k))
                sum += term(double(value));
        return sum;
    });
}

/// Mean square of the values about their mean.
double Variance(const VolumeView &map, unsigned threads) {
    const double mean = SumOverValues(map, threads, [](double value) { return value; }) / NumberOf(map);
    return SumOverValues(map, threads, [&](double value) { return Squared(value - mean); }) / NumberOf(map);
}

/// How many waves there are in some part of reciprocal space, and their power.
struct Power {
    double waves = 0, sum = 0;

    void Add(double number, double power) {
        waves += number;
        sum += power;
    }
    friend Power operator+(Power a, const Power &b) {
        a.Add(b.waves, b.sum);
        return a;
    }
};

/// The power of the waves below a wavenumber and in a band that begins there.
struct BandPower {
    Power below, band;

    friend BandPower operator+(const BandPower &a, const BandPower &b) {
        return {a.below + b.below, a.band + b.band};
    }
};

/// The wave at k = 0, the map's mean, is left out.
BandPower PowerAbout(const Waves &waves, double begin, double end, unsigned threads) {
    return SumOverSections(waves.Rows(2), threads, [&](std::size_t section) {
        BandPower power;
        ForEachWaveIn(waves, section, [&](double k, std::size_t index, double weight) {
            if (k > 0 && k <= end)
                (k > begin ? power.band : power.below)
                    .Add(weight, weight * double(std::norm(waves.values[index])));
        });
        return power;
    });
}

/// Tells how much of the map's power lies beyond the filter's end, and how strong a wave is there.
void MeasureSharpness(const Waves &waves, const VolumeView &map, Spectrum &spectrum, unsigned threads) {
    const double begin = cutBegin / spectrum.resolution, end = cutEnd / spectrum.resolution;
    const auto [below, band] = PowerAbout(waves, begin, end, threads);
    const Power within = below + band;
    const double all = Variance(map, threads), number = NumberOf(map);
    if (!(all > 0 && band.sum > 0 && number > within.waves + 1))
        return;
    const double beyond = std::max(0.0, all - within.sum);
    spectrum.sharpShare = beyond / all;
    spectrum.sharpness = beyond / (number - 1 - within.waves) / (band.sum / band.waves);
}

/// Mean of the values on the six faces.
double BorderMean(const VolumeView &map) {
    const auto [nx, ny, nz] = map.count;
    double sum = 0;
    std::size_t number = 0;
    for (std::size_t k = 0; k < nz; ++k)
        for (std::size_t j = 0; j < ny; ++j) {
            const bool whole = k == 0 || k + 1 == nz || j == 0 || j + 1 == ny;
            for (std::size_t i = 0; i < nx; i += whole || nx == 1 ? 1 : nx - 1) {
                sum += double(map.values[map.Index(i, j, k)]);
                ++number;
            }
        }
    return sum / double(number);
}

/// A sample of the padded axis as a mixture of two samples of the map: behind the last one follows a smooth
/// step to the first.
struct Mixture {
    std::size_t first, second;
    float share; ///< of the second
};

Mixture MixtureAt(std::size_t i, std::size_t count, std::size_t padded) {
    if (i < count)
        return {i, i, 0};
    const double w = double(i - count + 1) / double(padded - count + 1);
    return {count - 1, 0, float(w * w * (3 - 2 * w))};
}

/// The rows of a padded box.
RowSource PaddedRows(const RowSource &rows, const std::array<std::size_t, 3> &count,
                     const std::array<std::size_t, 3> &padded, float border) {
    return [&rows, count, padded, border](std::size_t j, std::size_t k, float *row) {
        const std::size_t nx = count[0];
        std::fill_n(row, nx, -border);
        std::vector<float> values(nx);
        const auto add = [&](std::size_t y, std::size_t z, float weight) {
            if (weight == 0)
                return;
            rows(y, z, values.data());
            for (std::size_t i = 0; i < nx; ++i)
                row[i] += weight * values[i];
        };
        const Mixture y = MixtureAt(j, count[1], padded[1]), z = MixtureAt(k, count[2], padded[2]);
        add(y.first, z.first, (1 - y.share) * (1 - z.share));
        add(y.second, z.first, y.share * (1 - z.share));
        add(y.first, z.second, (1 - y.share) * z.share);
        add(y.second, z.second, y.share * z.share);
        for (std::size_t i = nx; i < padded[0]; ++i) {
            const Mixture x = MixtureAt(i, nx, padded[0]);
            row[i] = (1 - x.share) * row[x.first] + x.share * row[x.second];
        }
    };
}

Waves TransformPadded(const Lattice &lattice, const RowSource &rows, float border, double pad, double cutOff,
                      unsigned threads) {
    std::array<std::size_t, 3> padded;
    for (std::size_t axis = 0; axis < 3; ++axis)
        padded[axis] =
            TransformSize(lattice.count[axis] + std::size_t(std::ceil(pad / lattice.spacing[axis])));
    return Transform(padded, lattice.spacing, lattice.origin, PaddedRows(rows, lattice.count, padded, border),
                     cutOff, threads);
}

double Smallest(const std::array<double, 3> &v) {
    return *std::ranges::min_element(v);
}

double Largest(const std::array<double, 3> &v) {
    return *std::ranges::max_element(v);
}

void Smooth(std::vector<double> &values) {
    const std::vector<double> old = values;
    const auto logarithm = [&](std::size_t i) { return std::log(old[i] + 1e-300); };
    // The first shells hold the box's shape rather than the spectrum and stay as they are.
    for (std::size_t i = 2; i + 1 < values.size(); ++i)
        values[i] = std::exp(0.25 * logarithm(i - 1) + 0.5 * logarithm(i) + 0.25 * logarithm(i + 1));
}

} // namespace

bool IsConstant(const VolumeView &map) {
    for (std::size_t k = 0; k < map.count[2]; ++k)
        for (std::size_t j = 0; j < map.count[1]; ++j)
            for (const float value : map.Row(j, k))
                if (value != map.values.front())
                    return false;
    return true;
}

Waves TransformPadded(const VolumeView &map, double pad, double cutOff, unsigned threads) {
    return TransformPadded({map.count, map.spacing, map.origin}, RowsOf(map), float(BorderMean(map)), pad,
                           cutOff, threads);
}

RadialCurve RadialPower(const Waves &waves, double end, unsigned threads) {
    RadialCurve power{1 / Smallest(waves.length), {}};
    const std::size_t shells = std::size_t(end / power.step) + 3;
    std::vector<std::vector<Power>> sections(waves.Rows(2), std::vector<Power>(shells));
    ForEach(sections.size(), threads, [&](std::size_t section, unsigned) {
        ForEachWaveIn(waves, section, [&](double k, std::size_t index, double weight) {
            if (const auto shell = std::size_t(k / power.step + 0.5); shell < shells)
                sections[section][shell].Add(weight, weight * double(std::norm(waves.values[index])));
        });
    });
    for (std::size_t shell = 0; shell < shells; ++shell) {
        Power all;
        for (const std::vector<Power> &section : sections)
            all = all + section[shell];
        power.values.push_back(all.waves > 0 ? all.sum / all.waves : shell > 0 ? power.values.back() : 0);
    }
    Smooth(power.values);
    Smooth(power.values);
    return power;
}

Spectrum TransformMap(const VolumeView &map, double resolution, unsigned threads) {
    Spectrum spectrum;
    spectrum.resolution = resolution;
    spectrum.nyquist = 0.5 / Largest(map.spacing);
    for (std::size_t axis = 0; axis < 3; ++axis)
        spectrum.box[axis] = double(map.count[axis]) * map.spacing[axis];
    const bool holdsMore = 0.5 / Smallest(map.spacing) > bandBegin / resolution;
    if (holdsMore) {
        Waves own = Transform(map.count, map.spacing, map.origin, RowsOf(map), bandEnd / resolution, threads);
        MeasureSharpness(own, map, spectrum, threads);
        const RadialCurve band = Sample(bandEnd / resolution, 0.01 / resolution, [&](double k) {
            return LetDown(k * resolution, bandBegin, bandEnd);
        });
        const double voxel = std::max(Smallest(map.spacing), bandVoxel * resolution);
        const Volume limited = Synthesise(own, band, voxel, threads);
        own = {};
        spectrum.lattice = {limited.count, limited.spacing, limited.origin};
        spectrum.waves = TransformPadded(limited, padding * resolution, cutEnd / resolution, threads);
    } else {
        spectrum.lattice = {map.count, map.spacing, map.origin};
        spectrum.waves = TransformPadded(map, padding * resolution, cutEnd / resolution, threads);
    }
    spectrum.power = RadialPower(spectrum.waves, cutEnd / resolution, threads);
    if (!IsConstant(map))
        spectrum.strongest = *std::ranges::max_element(spectrum.power.values);
    return spectrum;
}

Waves TransformLike(const Spectrum &spectrum, const RowSource &rows, unsigned threads) {
    // A constant, which the border's mean is, would change the wave at k = 0 alone.
    return TransformPadded(spectrum.lattice, rows, 0, padding * spectrum.resolution,
                           cutEnd / spectrum.resolution, threads);
}

} // namespace placement
