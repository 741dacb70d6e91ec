#include "RandomFit.h"

#include <cmath>
#include <random>

namespace {

/// Numbers from the generator alone: the standard's distributions differ between libraries.
class Dice {
public:
    explicit Dice(unsigned seed)
        : m_generator(seed) {}

    /// 0 ... sides - 1
    unsigned Roll(unsigned sides) { return unsigned(m_generator() % sides); }
    bool Chance(unsigned percent) { return Roll(100) < percent; }
    float Between(float low, float high) {
        return low + (high - low) * float(m_generator() % 65536u) / 65536.0f;
    }
    template <class T>
    T OneOf(const std::vector<T> &choices) {
        return choices[Roll(unsigned(choices.size()))];
    }
    Point Near(const Point &p, float reach) {
        return {p[0] + Between(-reach, reach), p[1] + Between(-reach, reach), p[2] + Between(-reach, reach)};
    }

private:
    std::mt19937 m_generator;
};

std::vector<PlainResidue> Residues(Dice &dice, std::size_t count, const Point &about, float reach,
                                   bool whole) {
    std::vector<PlainResidue> residues;
    for (std::size_t i = 0; i < count; ++i) {
        Point p = dice.Near(about, reach);
        if (whole)
            for (float &c : p)
                c = std::round(c);
        PlainResidue residue{dice.OneOf<std::string>({"ALA", "GLY", " G", "DA"}), std::to_string(i / 2), p};
        if (dice.Chance(10))
            residue.position.reset();
        residues.push_back(residue);
    }
    return residues;
}

std::vector<PlainRestraint> Restraints(Dice &dice, const std::vector<PlainResidue> &target,
                                       const Point &about) {
    std::vector<PlainRestraint> records;
    for (unsigned i = dice.Roll(4); i > 0; --i) {
        const PlainResidue &residue = dice.OneOf(target);
        std::string key = residue.name + residue.sequenceId;
        key = dice.Chance(20) ? "TRP999" : key.substr(key.find_first_not_of(' '));
        records.push_back({key, dice.Near(about, 8)});
    }
    return records;
}

PlainMap Map(Dice &dice, const Point &about, bool whole) {
    PlainMap map;
    for (int i = 0; i < 3; ++i) {
        map.size[i] = 1 + dice.Roll(12);
        map.spacing[i] = whole ? 1 : dice.Between(0.5f, 4);
        map.origin[i] = about[i] - map.spacing[i] * float(map.size[i]) * dice.Between(0, 1);
        if (whole)
            map.origin[i] = std::round(map.origin[i]);
    }
    const unsigned kind = dice.Roll(4);
    for (unsigned i = map.size[0] * map.size[1] * map.size[2]; i > 0; --i)
        switch (kind) {
        case 0: // small whole numbers: many equal scores, many of exactly -1
            map.values.push_back(float(dice.Roll(4)) - 2);
            break;
        case 1: // one value everywhere
            map.values.push_back(map.values.empty() ? dice.Between(-2, 2) : map.values.front());
            break;
        case 2: // sums that round
            map.values.push_back(std::ldexp(dice.Between(-1, 1), int(dice.Roll(60)) - 20));
            break;
        default:
            map.values.push_back(dice.Between(-0.2f, 1));
        }
    return map;
}

std::vector<PlainRecord> Earlier(Dice &dice) {
    std::vector<PlainRecord> records;
    for (unsigned i = dice.Roll(30); i > 0; --i) {
        PlainRecord record;
        for (double &c : record.rotation)
            c = dice.Between(-1, 1);
        record.translation = dice.Near({0, 0, 0}, 100);
        record.score = dice.Chance(50) ? dice.Between(-3, 3) : std::round(dice.Between(-3, 3));
        record.extraScores.assign(dice.Roll(3), dice.Between(0, 9));
        records.push_back(record);
    }
    return records;
}

} // namespace

FitInput RandomFit(unsigned seed) {
    constexpr double degree = 3.141592653589793 / 180;
    Dice dice(seed);
    FitInput input;
    Point about = dice.Near({0, 0, 0}, dice.OneOf<float>({1, 60, 3000}));
    const bool whole = dice.Chance(25);
    input.target = Residues(dice, 1 + dice.Roll(12), about, 8, whole);
    if (dice.Chance(40))
        input.solid = Residues(dice, 1 + dice.Roll(6), about, 14, whole);
    input.inclusionDistance = dice.OneOf<float>({0, 6, 12.5f, 60});
    if (dice.Chance(50))
        input.restraints = Restraints(dice, input.target, about);
    if (dice.Chance(90))
        input.map = Map(dice, about, whole);
    if (dice.Chance(40))
        input.earlier = Earlier(dice);
    input.translationCount = dice.OneOf<int>({-3, -2, 0, 1, 3, 4});
    const bool small = input.translationCount < 4;
    input.axisDepth = small && dice.Chance(30) ? 1 : 0;
    input.angleStep = dice.OneOf<double>({45, 60, 77, 90, 100, 180, 360, 400}) * degree;
    input.step = dice.OneOf<double>({0, 0.37, 1, 2.5, 1e-9, 1e7});
    input.keep = dice.OneOf<int>({-5, 0, 1, 10, 10, 150, 100000});
    input.logging = dice.Chance(50);
    if (dice.Chance(30))
        input.cancelAfter = dice.Roll(8);
    return input;
}
