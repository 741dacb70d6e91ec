#include "placement/EqualTurns.h"

#include <gemmi/qcp.hpp>

#include <algorithm>

namespace placement {

namespace {

using Positions = std::span<const gemmi::Position>;

std::vector<gemmi::Position> AsPositions(std::span<const Point> points) {
    std::vector<gemmi::Position> positions;
    positions.reserve(points.size());
    for (const Point &p : points)
        positions.emplace_back(p.x, p.y, p.z);
    return positions;
}

double SquaredRmsd(Positions a, Positions b, const gemmi::Transform &motion) {
    double squares = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        squares += (gemmi::Vec3(b[i]) - motion.apply(a[i])).length_sq();
    return squares / double(a.size());
}

std::vector<Positions> ChainsOf(const std::vector<gemmi::Position> &positions,
                                const std::vector<unsigned> &chains) {
    std::vector<Positions> spans;
    for (std::size_t first = 0; first < positions.size();) {
        const auto begin = chains.begin() + std::ptrdiff_t(first);
        const auto end = std::find_if(begin, chains.end(), [&](unsigned chain) { return chain != *begin; });
        const auto size = std::size_t(end - begin);
        spans.emplace_back(positions.data() + first, size);
        first += size;
    }
    return spans;
}

/// Whether each chain comes to lie on one that no other comes to lie on.
bool LaysUponItself(const std::vector<Positions> &chains, const gemmi::Transform &motion, double tolerance) {
    std::vector<bool> taken(chains.size());
    for (const Positions &chain : chains) {
        const auto on = std::ranges::find_if(chains, [&](const Positions &other) {
            return !taken[std::size_t(&other - chains.data())] && other.size() == chain.size() &&
                   SquaredRmsd(chain, other, motion) < tolerance * tolerance;
        });
        if (on == chains.end())
            return false;
        taken[std::size_t(on - chains.begin())] = true;
    }
    return true;
}

} // namespace

std::vector<Matrix> EqualTurns(const ResidueCentres &residues, const Point &centre, double tolerance) {
    std::vector<Matrix> turns{RotationBy({})};
    const std::vector<gemmi::Position> positions = AsPositions(residues.positions);
    const std::vector<Positions> chains = ChainsOf(positions, residues.chains);
    // A rotation is not to be told from fewer than three points.
    if (chains.size() < 2 || chains.front().size() < 3)
        return turns;
    for (const Positions &other : std::span(chains).subspan(1)) {
        if (other.size() != chains.front().size())
            continue;
        const gemmi::SupResult laid =
            gemmi::superpose_positions(other.data(), chains.front().data(), other.size(), nullptr);
        const gemmi::Vec3 middle(centre.x, centre.y, centre.z);
        if (!((laid.transform.apply(middle) - middle).length() < tolerance) ||
            !LaysUponItself(chains, laid.transform, tolerance))
            continue;
        const auto &m = laid.transform.mat.a;
        turns.push_back({m[0][0], m[0][1], m[0][2], m[1][0], m[1][1], m[1][2], m[2][0], m[2][1], m[2][2]});
    }
    return turns;
}

bool AreEqual(std::span<const Point> a, std::span<const Point> b, double tolerance) {
    if (a.size() != b.size() || a.empty())
        return false;
    const std::vector<gemmi::Position> first = AsPositions(a), second = AsPositions(b);
    return gemmi::superpose_positions(first.data(), second.data(), first.size(), nullptr).rmsd < tolerance;
}

} // namespace placement
