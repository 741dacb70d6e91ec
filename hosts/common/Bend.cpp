#include "hosts/common/Bend.h"

#include "hosts/common/NormalNumber.h"

#include <algorithm>
#include <array>
#include <numbers>
#include <stdexcept>

using namespace placement;
using VARNO::Vertex;

namespace hosts {

namespace {

constexpr int waves = 6;

Point PointOf(const Vertex &v) {
    return {double(v[0]), double(v[1]), double(v[2])};
}

Point Cross(const Point &a, const Point &b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

Point RandomVector(std::mt19937_64 &random) {
    const double x = NormalNumber(random), y = NormalNumber(random), z = NormalNumber(random);
    return {x, y, z};
}

/// From 0 to 1.
double UniformNumber(std::mt19937_64 &random) {
    return double(random() >> 11) * 0x1p-53;
}

double LongestExtent(const std::vector<Point> &points) {
    double longest = 0;
    for (double Point::*axis : {&Point::x, &Point::y, &Point::z}) {
        const auto [low, high] = std::ranges::minmax_element(points, {}, axis);
        longest = std::max(longest, (*high).*axis - (*low).*axis);
    }
    return longest;
}

/// The columns of the points' inertia tensor, of which each weighs 1.
std::array<Point, 3> Inertia(const std::vector<Point> &points) {
    std::array<Point, 3> columns;
    for (const Point &p : points) {
        const double square = Dot(p, p);
        columns[0] = columns[0] + Point{square, 0, 0} - p.x * p;
        columns[1] = columns[1] + Point{0, square, 0} - p.y * p;
        columns[2] = columns[2] + Point{0, 0, square} - p.z * p;
    }
    return columns;
}

double Determinant(const std::array<Point, 3> &columns) {
    return Dot(columns[0], Cross(columns[1], columns[2]));
}

/// Solves columns·x = right by Cramer's rule.
Point Solution(const std::array<Point, 3> &columns, const Point &right) {
    const auto &[a, b, c] = columns;
    return 1 / Determinant(columns) *
           Point{Dot(right, Cross(b, c)), Dot(a, Cross(right, c)), Dot(a, Cross(b, right))};
}

} // namespace

Bend::Bend(std::span<const Vertex> atoms, double rmsd, std::uint64_t seed) {
    std::vector<Point> points;
    std::ranges::transform(atoms, std::back_inserter(points), PointOf);
    const double number = double(points.size());
    for (const Point &p : points)
        m_centre = m_centre + 1 / number * p;
    for (Point &p : points)
        p = p - m_centre;
    const double size = points.empty() ? 0 : LongestExtent(points);
    const std::array<Point, 3> inertia = Inertia(points);
    if (!(Determinant(inertia) > 1e-9 * std::pow(number * size * size, 3)))
        throw std::invalid_argument("atoms on one line cannot be bent");

    std::mt19937_64 random(~seed); // not the numbers that noise of this seed takes
    for (int i = 0; i < waves; ++i) {
        const Point direction = RandomVector(random), amplitude = RandomVector(random);
        const double wavelength = size * (1 + UniformNumber(random));
        m_waves.push_back({2 * std::numbers::pi / (wavelength * Length(direction)) * direction, amplitude,
                           2 * std::numbers::pi * UniformNumber(random)});
    }
    Point shift, torque;
    for (const Point &p : points) {
        shift = shift + 1 / number * Displacement(p);
        torque = torque + Cross(p, Displacement(p));
    }
    m_shift = shift;
    m_turn = Solution(inertia, torque);
    double squares = 0;
    for (const Point &p : points)
        squares += Dot(Displacement(p), Displacement(p));
    const double scale = rmsd / std::sqrt(squares / number);
    for (Wave &wave : m_waves)
        wave.amplitude = scale * wave.amplitude;
    m_shift = scale * m_shift;
    m_turn = scale * m_turn;
}

Point Bend::Displacement(const Point &fromCentre) const {
    Point displacement = -1 * (m_shift + Cross(m_turn, fromCentre));
    for (const Wave &wave : m_waves)
        displacement =
            displacement + std::sin(Dot(wave.wavevector, fromCentre) + wave.phase) * wave.amplitude;
    return displacement;
}

Vertex Bend::operator()(const Vertex &position) const {
    const Point p = PointOf(position);
    const Point moved = p + Displacement(p - m_centre);
    return Vertex(float(moved.x), float(moved.y), float(moved.z), position.IsValid());
}

} // namespace hosts
