#include "placement/KnownNeighbours.h"

#include "placement/Constants.h"

#include <algorithm>

namespace placement {

namespace {

/// Atoms as Gaussians of one width, sampled on a lattice row by row: their density is never held as a whole.
class GaussianRows {
public:
    GaussianRows(std::span<const KnownNeighbours::Scatterer> atoms, const Lattice &lattice, double width)
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

    std::span<const KnownNeighbours::Scatterer> m_atoms;
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

/// A(k): the amplitude of some waves that explains the most of others.
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

/// Sets the values within 4 Å of a position, taken from the volume's first voxel, to at most 0.
void FlattenNear(const Point &position, Volume &volume) {
    const std::array<double, 3> at{position.x, position.y, position.z};
    std::array<std::size_t, 3> first, end;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double low = std::ceil((at[axis] - keptFree) / volume.spacing[axis]);
        const double high = std::floor((at[axis] + keptFree) / volume.spacing[axis]) + 1;
        const auto count = double(volume.count[axis]);
        first[axis] = std::size_t(std::clamp(low, 0.0, count));
        end[axis] = std::size_t(std::clamp(high, 0.0, count));
    }
    for (std::size_t k = first[2]; k < end[2]; ++k)
        for (std::size_t j = first[1]; j < end[1]; ++j)
            for (std::size_t i = first[0]; i < end[0]; ++i) {
                float &value = volume.values[volume.Index(i, j, k)];
                if (value > 0 && Length(volume.At(i, j, k) - volume.origin - position) < keptFree)
                    value = 0;
            }
}

} // namespace

KnownNeighbours::KnownNeighbours(std::span<const ModelAtom> atoms)
    : m_cells(keptFree) {
    for (auto first = atoms.begin(); first != atoms.end();) {
        const auto end = std::find_if(first, atoms.end(), [&](const ModelAtom &atom) {
            return atom.residue != first->residue || atom.chain != first->chain;
        });
        // A residue without a backbone stands for itself.
        const bool hasBackbone = std::any_of(first, end, [](const ModelAtom &a) { return a.inBackbone; });
        Point sum;
        double weight = 0;
        for (auto atom = first; atom != end; ++atom) {
            m_atoms.push_back({atom->position, atom->electrons});
            if (atom->inBackbone == hasBackbone) {
                sum = sum + atom->electrons * atom->position;
                weight += atom->electrons;
            }
        }
        const Point centre = 1 / weight * sum;
        if (std::isfinite(Length(centre))) {
            m_cells.Add(centre, m_residues.size());
            m_residues.push_back(centre);
        }
        first = end;
    }
}

void KnownNeighbours::SubtractFrom(Spectrum &spectrum, unsigned threads) const {
    const GaussianRows rows(m_atoms, spectrum.lattice, neighbourWidth * spectrum.resolution);
    const Waves own = TransformLike(spectrum, std::cref(rows), threads);
    const RadialCurve amplitude = FittedAmplitude(spectrum.waves, own, spectrum.power);
    ForEachWave(own, [&](double k, std::size_t index, double) {
        if (k > 0)
            spectrum.waves.values[index] -= float(amplitude.At(k)) * own.values[index];
    });
    spectrum.power = RadialPower(spectrum.waves, cutEnd / spectrum.resolution, threads);
}

void KnownNeighbours::KeepFree(Volume &filtered) const {
    for (const Point &residue : m_residues)
        FlattenNear(residue - filtered.origin, filtered);
}

double KnownNeighbours::Overlap(const PointModel &model, const Pose &pose) const {
    if (m_residues.empty())
        return 0;
    double near = 0, all = 0;
    for (std::size_t i = 0; i < model.points.size(); ++i) {
        all += model.weights[i];
        const Point p = pose.rotation * model.points[i] + pose.centre;
        if (m_cells.AnyNear(p, [&](std::size_t r) { return Length(m_residues[r] - p) < keptFree; }))
            near += model.weights[i];
    }
    return near / all;
}

} // namespace placement
