#include "SyntheticModel.h"

#include <algorithm>

using namespace placement;

namespace {

Point RandomStep(std::mt19937 &random, double length) {
    std::normal_distribution<double> normal;
    const Point p{normal(random), normal(random), normal(random)};
    return length / Length(p) * p;
}

} // namespace

std::vector<ModelAtom> RandomModel(std::size_t residues, unsigned seed) {
    std::mt19937 random(seed);
    // A protein of n residues fills a ball of about this radius.
    const double radius = 4 + 3.2 * std::cbrt(double(residues));
    std::vector<ModelAtom> atoms;
    Point at;
    for (unsigned residue = 0; residue < residues; ++residue) {
        Point next = at + RandomStep(random, 3.8);
        while (Length(next) > radius)
            next = at + RandomStep(random, 3.8) - 0.2 * at;
        at = next;
        for (unsigned i = 0; i < 4; ++i)
            atoms.push_back({at + RandomStep(random, 1.2), 6.5, residue, 0, true});
        const Point side = at + RandomStep(random, 3);
        for (unsigned i = 0; i < random() % 5; ++i)
            atoms.push_back({side + RandomStep(random, 1), 6, residue, 0, false});
    }
    return atoms;
}

std::vector<ModelAtom> Moved(std::vector<ModelAtom> atoms, const Matrix &rotation, const Point &translation) {
    for (ModelAtom &atom : atoms)
        atom.position = rotation * atom.position + translation;
    return atoms;
}

Volume DensityOf(const std::vector<ModelAtom> &atoms, double resolution, const std::array<double, 3> &voxel,
                 double margin) {
    Point low = atoms.front().position, high = low;
    for (const ModelAtom &atom : atoms) {
        const Point &p = atom.position;
        low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
    }
    Volume map;
    map.spacing = voxel;
    map.origin = low - Point{margin, margin, margin};
    const Point edge = high - low + Point{2 * margin, 2 * margin, 2 * margin};
    map.count = {std::size_t(edge.x / voxel[0]) + 1, std::size_t(edge.y / voxel[1]) + 1,
                 std::size_t(edge.z / voxel[2]) + 1};
    map.values.assign(map.count[0] * map.count[1] * map.count[2], 0);
    AddDensity(atoms, resolution, map);
    return map;
}

void AddDensity(const std::vector<ModelAtom> &atoms, double resolution, Volume &map) {
    const std::array<double, 3> &voxel = map.spacing;
    const double width = 0.225 * resolution, reach = 4 * width;
    for (const ModelAtom &atom : atoms) {
        const Point p = atom.position - map.origin;
        const std::array<double, 3> r{p.x, p.y, p.z};
        std::array<std::size_t, 3> first, end;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            first[axis] = std::size_t(std::max(0.0, std::ceil((r[axis] - reach) / voxel[axis])));
            end[axis] = std::min(map.count[axis],
                                 std::size_t(std::max(0.0, std::floor((r[axis] + reach) / voxel[axis]) + 1)));
        }
        for (std::size_t k = first[2]; k < end[2]; ++k)
            for (std::size_t j = first[1]; j < end[1]; ++j)
                for (std::size_t i = first[0]; i < end[0]; ++i) {
                    const Point d = map.At(i, j, k) - atom.position;
                    map.values[map.Index(i, j, k)] +=
                        float(atom.electrons * std::exp(-Dot(d, d) / (2 * width * width)));
                }
    }
}

void AddNoise(Volume &map, double part, unsigned seed) {
    double mean = 0, squares = 0;
    for (const float value : map.values)
        mean += double(value) / double(map.values.size());
    for (const float value : map.values)
        squares += (double(value) - mean) * (double(value) - mean) / double(map.values.size());
    std::mt19937 random(seed);
    std::normal_distribution<float> noise(0, float(part * std::sqrt(squares)));
    for (float &value : map.values)
        value += noise(random);
}

Matrix RandomRotation(std::mt19937 &random) {
    std::normal_distribution<double> normal;
    return MatrixOf({normal(random), normal(random), normal(random), normal(random)});
}
