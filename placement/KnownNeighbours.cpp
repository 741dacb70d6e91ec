#include "placement/KnownNeighbours.h"

#include "placement/Constants.h"
#include "placement/ModelDensity.h"

#include <algorithm>

namespace placement {

namespace {

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
    const Waves own = TransformAtoms(m_atoms, spectrum, threads);
    Subtract(own, FittedAmplitude(spectrum.waves, own, spectrum.power), spectrum, threads);
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
