#include "RandomSearch.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

using namespace VARNO;

namespace {

/// Random numbers that are the same with every standard library.
class Dice {
public:
    explicit Dice(unsigned seed)
        : m_engine(seed) {}

    /// A whole number below `count`.
    unsigned Below(unsigned count) { return unsigned(m_engine() % count); }
    int Between(int low, int high) { return low + int(Below(unsigned(high - low + 1))); }
    double Uniform() { return double(m_engine()) / 4294967296.0; }
    double Uniform(double low, double high) { return low + (high - low) * Uniform(); }
    bool Chance(double p) { return Uniform() < p; }
    /// Roughly normal, of deviation 1.
    double Normal() {
        double sum = -6;
        for (int i = 0; i < 12; ++i)
            sum += Uniform();
        return sum;
    }
    template <class T>
    T OneOf(std::initializer_list<T> choices) {
        return choices.begin()[Below(unsigned(choices.size()))];
    }

private:
    std::mt19937 m_engine;
};

/// One of the kinds of values that a map can hold.
class VoxelMaker {
public:
    explicit VoxelMaker(Dice &dice)
        : m_dice(dice)
        , m_kind(dice.Below(12))
        , m_constant(float(dice.OneOf({0.0, 0.5, -0.25, -1.0, 1e-40, 1e30}))) {}

    float operator()() {
        switch (m_kind) {
        case 0:
            return m_constant;
        case 1: // densities of a simulated map
            return m_dice.Chance(0.6) ? 0.0f : float(m_dice.Uniform());
        case 2: // whole numbers: ties, and scores of exactly -1.0
            return float(m_dice.Between(-2, 2));
        case 3:
            return float(m_dice.Between(-1, 0)) / 4;
        case 4:
            return float(1e30 * m_dice.Normal());
        case 5:
            return float(1e-42 * m_dice.Normal());
        case 6: // a huge range: one sum in many is decided by the small values
            return float(m_dice.Normal() * (m_dice.Chance(0.1) ? 1e20 : 1));
        case 7:
            return -float(m_dice.Uniform());
        case 8:
            return m_dice.Chance(0.01) ? float(m_dice.OneOf({3e38, -3e38})) : 1.0f;
        case 9: // negative zeros
            return m_dice.Chance(0.5) ? -0.0f : float(m_dice.Between(0, 1));
        default:
            return float(m_dice.Normal());
        }
    }

private:
    Dice &m_dice;
    unsigned m_kind;
    float m_constant;
};

std::unique_ptr<Grid> MakeGrid(Dice &dice, unsigned largest, float spacing, double place) {
    unsigned n[3];
    for (unsigned &count : n)
        count = 1 + dice.Below(dice.Chance(0.1) ? 3 : largest);
    float s[3] = {spacing, spacing, spacing}, o[3];
    if (dice.Chance(0.3))
        for (float &one : s)
            one = float(dice.Uniform(0.4, 4));
    for (unsigned i = 0; i < 3; ++i)
        o[i] = float(place - 0.5 * n[i] * s[i] + (dice.Chance(0.5) ? 0 : dice.Uniform(-5, 5)));
    return std::make_unique<Grid>("grid", Vector<unsigned, 3>(n[0], n[1], n[2]),
                                  Vector<float, 3>(o[0], o[1], o[2]), Vector<float, 3>(s[0], s[1], s[2]),
                                  Vector<float, 3>(90, 90, 90));
}

std::unique_ptr<Grid> MakeMap(Dice &dice, double place) {
    auto grid = MakeGrid(dice, 24, float(dice.OneOf({1.0, 1.742, 2.0, dice.Uniform(0.5, 4)})), place);
    VoxelMaker voxel(dice);
    for (float &value : grid->Values())
        value = voxel();
    if (dice.Chance(0.03))
        grid->Values()[dice.Below(unsigned(grid->Values().size()))] =
            dice.OneOf({std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                        -std::numeric_limits<float>::infinity()});
    return grid;
}

std::unique_ptr<Grid> MakeKeepOut(Dice &dice, double place) {
    auto grid = MakeGrid(dice, 16, 2.0f, place);
    const double filled = dice.OneOf({0.0, 0.002, 0.02, 0.2, 1.0});
    for (float &value : grid->Values())
        value = dice.Chance(filled) ? float(dice.OneOf({2.0, 2.01, 6.0, dice.Uniform(0, 6)})) : 0.0f;
    if (dice.Chance(0.03))
        grid->Values()[0] = dice.OneOf(
            {std::numeric_limits<float>::quiet_NaN(), 3e38f, std::numeric_limits<float>::infinity()});
    return grid;
}

Vertex RandomVertex(Dice &dice, double size) {
    return Vertex(float(size * dice.Normal()), float(size * dice.Normal()), float(size * dice.Normal()),
                  false);
}

/// Few points where there are many offsets; else also numbers about the widths of vectors, those from which
/// on levels have to be coarser for their sums to fit into 16 bits, and the most that fit at all.
unsigned PointCount(Dice &dice, double offsets) {
    if (offsets > 2000)
        return 1 + dice.Below(12);
    if (offsets == 1 && dice.Chance(0.05))
        return dice.OneOf({1039u, 1040u, 1041u, 1092u, 1093u, 5000u, 16383u, 16384u});
    if (dice.Chance(0.5))
        return dice.OneOf({1u, 3u, 4u, 5u, 15u, 16u, 17u, 31u, 32u, 33u});
    return 1 + dice.Below(offsets > 100 ? 40 : 150);
}

/// Offsets along a direction: mostly few, now and then numbers about the widths of vectors.
int CubeSide(Dice &dice) {
    if (dice.Chance(0.03))
        return dice.OneOf({15, 17, 31, 33, 35});
    if (dice.Chance(0.002))
        return dice.OneOf({63, 65});
    return dice.OneOf({1, 1, 3, 3, 5, 5, 7, 9, 11, 11, 13});
}

fit::Target MakeTarget(Dice &dice, double offsets, double place) {
    fit::Target target;
    const unsigned count = PointCount(dice, offsets);
    const double size = dice.OneOf({0.0, 1.0, 5.0, 5.0, 12.0, 30.0});
    // Mostly in the map; now and then so far away that the rounding of a coordinate is felt, or beyond
    // measure.
    const double far = dice.Chance(0.9) ? 0 : dice.OneOf({20.0, 1e4, 1e7, 1e18, 1e38});
    Vertex shift;
    shift = RandomVertex(dice, far == 0 ? 2 : far) + Vertex(float(place), float(place), float(place), false);
    Vector<float, 3> sum;
    for (unsigned i = 0; i < count; ++i) {
        const Vertex position = RandomVertex(dice, size);
        Vertex moved;
        moved = position + shift;
        target.points.emplace_back(moved, 'A');
        sum = sum + moved;
    }
    target.centre = Vertex(sum[0] / float(count), sum[1] / float(count), sum[2] / float(count), false);
    if (dice.Chance(0.02))
        target.centre[1] = std::numeric_limits<float>::quiet_NaN();
    for (unsigned i = dice.OneOf({0u, 0u, 1u, 3u}); i > 0; --i)
        target.restraints.emplace_back(RandomVertex(dice, 10), target.points[dice.Below(count)].first);
    return target;
}

Vertex RandomAxis(Dice &dice) {
    const Vertex v = RandomVertex(dice, 1);
    const float length = std::sqrt(v.SquaredLength());
    return length > 0 ? Vertex(v[0] / length, v[1] / length, v[2] / length, false) : Vertex(0, 0, 1, false);
}

} // namespace

RandomSearch::RandomSearch(unsigned seed) {
    Dice dice(seed);
    // Far from the frame's origin even neighbouring offsets are rounded.
    const double place = dice.Chance(0.05) ? dice.OneOf({3e5, 4e6, 1.6e7}) : 0;
    map = MakeMap(dice, place);
    if (dice.Chance(0.4))
        keepOut = MakeKeepOut(dice, place);
    fit.map = map.get();
    fit.keepOut = keepOut.get();
    const int side = CubeSide(dice);
    const double step = dice.OneOf({0.0, 1e-4, 0.3, 1.0, 1.0, 2.0, 2.0, 3.0, 3.0, 5.0, 20.0, 1e6, -1.5, -4.0,
                                    dice.Chance(0.1) ? std::numeric_limits<double>::infinity() : 2.5});
    fit.offsets = fit::TranslationOffsets(side, step);
    fit.target = MakeTarget(dice, double(fit.offsets.size()), place);
    const double poses = double(fit.offsets.size()) * double(fit.target.points.size());
    const int maxRotations = std::clamp(int(2e5 / poses), 1, 60);
    fit.angleStep =
        side > 30 ? dice.OneOf({3.2, 7.0}) : dice.OneOf({0.5, 1.0, 1.5707963267948966, 2.0, 3.2, 7.0});
    const int angles = std::max(1, int(6.2831853 / fit.angleStep));
    for (int i = dice.Between(0, std::max(1, maxRotations / angles)); i > 0; --i)
        fit.axes.push_back(RandomAxis(dice));
    keep = dice.OneOf({0, 1, 2, 5, 10, 30, 100, 1000, 100000, -3, dice.Between(1, 200)});
    const int earlierCount = dice.OneOf({0, 0, 0, 1, 7, 40});
    const double scale = std::abs(double(map->Values()[0])) * double(fit.target.points.size());
    for (int i = 0; i < earlierCount; ++i) {
        SolutionScore solution;
        solution.score = dice.OneOf({0.0, -1.0, 1.0, scale, dice.Normal(), scale * dice.Normal()});
        solution.extraScores.assign(1, double(i));
        earlier.push_back(solution);
    }
    if (dice.Chance(0.02) && !earlier.empty())
        earlier.front().score = std::numeric_limits<double>::quiet_NaN();
    if (dice.Chance(0.5))
        cancelAt = dice.Below(unsigned(fit.axes.size()) + 1);
}
