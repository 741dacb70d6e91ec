#include "placement/ModelDensity.h"

#include "placement/Constants.h"

#include <algorithm>

namespace placement {

namespace {

/// Atoms as Gaussians of one width, sampled on a lattice row by row: their density is never held as a whole.
class GaussianRows {
public:
    GaussianRows(std::span<const Scatterer> atoms, const Lattice &lattice, double width)
        : m_atoms(atoms)
        , m_lattice(lattice)
        , m_width(width)
        , m_reach(neighbourReach * width)
        , m_binsAlongY(BinOf(LengthAlong(1)) + 1)
        , m_bins(m_binsAlongY * (BinOf(LengthAlong(2)) + 1)) {
        // An atom stands in the bins of all rows that it reaches.
        for (std::uint32_t i = 0; i < atoms.size(); ++i) {
            const Point p = atoms[i].position - lattice.origin;
            if (!IsWithin(p.x, 0) || !IsWithin(p.y, 1) || !IsWithin(p.z, 2))
                continue;
            for (std::size_t z = BinOf(p.z - m_reach); z <= std::min(BinOf(p.z + m_reach), LastBin(2)); ++z)
                for (std::size_t y = BinOf(p.y - m_reach); y <= std::min(BinOf(p.y + m_reach), LastBin(1));
                     ++y)
                    m_bins[y + m_binsAlongY * z].push_back(i);
        }
    }

    void operator()(std::size_t j, std::size_t k, float *row) const {
        const double y = double(j) * m_lattice.spacing[1], z = double(k) * m_lattice.spacing[2];
        std::fill_n(row, m_lattice.count[0], 0.0f);
        for (const std::uint32_t i : m_bins[BinOf(y) + m_binsAlongY * BinOf(z)]) {
            const Point p = m_atoms[i].position - m_lattice.origin;
            if (std::abs(p.y - y) < m_reach && std::abs(p.z - z) < m_reach)
                AddAlongX(p.x, m_atoms[i].electrons * Gaussian(p.y - y) * Gaussian(p.z - z), row);
        }
    }

private:
    double LengthAlong(std::size_t axis) const {
        return double(m_lattice.count[axis]) * m_lattice.spacing[axis];
    }
    bool IsWithin(double x, std::size_t axis) const {
        return x > -m_reach && x < LengthAlong(axis) + m_reach;
    }
    std::size_t BinOf(double x) const { return std::size_t(std::max(0.0, x) / m_reach); }
    std::size_t LastBin(std::size_t axis) const { return BinOf(LengthAlong(axis)); }
    double Gaussian(double x) const { return std::exp(-x * x / (2 * m_width * m_width)); }

    /// Each sample follows from the one before: exp(-(x + h)²/2s²) is exp(-x²/2s²) times a ratio, which
    /// itself shrinks by exp(-h²/s²) from step to step.
    void AddAlongX(double centre, double height, float *row) const {
        const double h = m_lattice.spacing[0];
        const auto first = std::size_t(std::ceil(std::max(0.0, centre - m_reach) / h));
        const auto end = std::min(m_lattice.count[0], std::size_t((centre + m_reach) / h) + 1);
        const double x = double(first) * h - centre;
        double value = height * Gaussian(x);
        double ratio = std::exp(-h * (2 * x + h) / (2 * m_width * m_width));
        const double shrinkage = std::exp(-h * h / (m_width * m_width));
        for (std::size_t i = first; i < end; ++i) {
            row[i] += float(value);
            value *= ratio;
            ratio *= shrinkage;
        }
    }

    std::span<const Scatterer> m_atoms;
    const Lattice &m_lattice;
    double m_width, m_reach;
    std::size_t m_binsAlongY;
    std::vector<std::vector<std::uint32_t>> m_bins; ///< of the rows, as wide as an atom reaches
};

/// [1 2 1]/4, the ends as they are.
void SmoothOnce(std::vector<double> &values) {
    const std::vector<double> old = values;
    for (std::size_t i = 1; i + 1 < values.size(); ++i)
        values[i] = 0.25 * old[i - 1] + 0.5 * old[i] + 0.25 * old[i + 1];
}

} // namespace

std::vector<Scatterer> ScatterersOf(std::span<const ModelAtom> atoms, const Motion &motion) {
    std::vector<Scatterer> scatterers;
    scatterers.reserve(atoms.size());
    for (const ModelAtom &atom : atoms)
        scatterers.push_back({motion * atom.position, atom.electrons});
    return scatterers;
}

Waves TransformAtoms(std::span<const Scatterer> atoms, const Spectrum &like, unsigned threads) {
    const GaussianRows rows(atoms, like.lattice, neighbourWidth * like.resolution);
    return TransformLike(like, std::cref(rows), threads);
}

RadialCurve FittedAmplitude(const Waves &all, const Waves &part, const RadialCurve &shells) {
    RadialCurve common{shells.step, std::vector<double>(shells.values.size())}, own = common;
    ForEachWave(all, [&](double k, std::size_t index, double weight) {
        const auto shell = std::size_t(std::lround(k / shells.step));
        // The wave at k = 0 is a constant, which takes no part in anything.
        if (k == 0 || shell >= common.values.size())
            return;
        const std::complex<double> f(all.values[index]), s(part.values[index]);
        common.values[shell] += weight * (f.real() * s.real() + f.imag() * s.imag());
        own.values[shell] += weight * std::norm(s);
    });
    for (std::size_t i = 0; i < own.values.size(); ++i)
        common.values[i] = own.values[i] > 0 ? std::max(0.0, common.values[i] / own.values[i]) : 0;
    // The first shell holds hardly more than the wave at k = 0.
    common.values[0] = common.values[1];
    // Twice, as the power is.
    SmoothOnce(common.values);
    SmoothOnce(common.values);
    return common;
}

void Subtract(const Waves &part, const RadialCurve &amplitude, Spectrum &spectrum, unsigned threads) {
    ForEachWave(part, [&](double k, std::size_t index, double) {
        if (k > 0)
            spectrum.waves.values[index] -= float(amplitude.At(k)) * part.values[index];
    });
    spectrum.power = RadialPower(spectrum.waves, cutEnd / spectrum.resolution, threads);
}

} // namespace placement
