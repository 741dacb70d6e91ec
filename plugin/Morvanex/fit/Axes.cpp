#include "fit/Axes.h"

#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <unordered_set>

using namespace VARNO;

namespace {

constexpr float a = float(0.5257311121191336);
constexpr float b = float(0.8506508083520399);

constexpr std::array<std::array<float, 3>, 12> icosahedron = {{{-a, 0, b},
                                                               {a, 0, b},
                                                               {-a, 0, -b},
                                                               {a, 0, -b},
                                                               {0, b, a},
                                                               {0, b, -a},
                                                               {0, -b, a},
                                                               {0, -b, -a},
                                                               {b, a, 0},
                                                               {-b, a, 0},
                                                               {b, -a, -0.0f},
                                                               {-b, -a, 0}}};

constexpr std::array<std::array<unsigned, 3>, 20> faces = {
    {{0, 4, 1}, {0, 9, 4},  {9, 5, 4},  {4, 5, 8},  {4, 8, 1},  {8, 10, 1}, {8, 3, 10},
     {5, 3, 8}, {5, 2, 3},  {2, 7, 3},  {7, 10, 3}, {7, 6, 10}, {7, 11, 6}, {11, 0, 6},
     {0, 1, 6}, {6, 1, 10}, {9, 0, 11}, {9, 11, 2}, {9, 2, 5},  {7, 2, 11}}};

Vertex Corner(unsigned i) {
    return Vertex(icosahedron[i].data(), false);
}

/// Whether v is the upper one of the pair {v, -v}: the first coordinate that is not 0 decides.
bool IsUpper(const Vertex &v) {
    constexpr double epsilon = std::numeric_limits<float>::epsilon();
    for (const unsigned i : {0u, 1u}) {
        if (double(v[i]) < -epsilon)
            return false;
        if (double(v[i]) >= epsilon)
            return true;
    }
    return !(double(v[2]) < -epsilon);
}

/// The sum of two corners, scaled to unit length; a sum of length 0 stays as it is.
Vertex Midpoint(const Vertex &u, const Vertex &v) {
    Vertex middle;
    middle = u + v;
    const double length = std::sqrt(double(middle.SquaredLength()));
    if (length > 0)
        middle.setValue(float(middle[0] / length), float(middle[1] / length), float(middle[2] / length),
                        false);
    return middle;
}

struct VertexHash {
    std::size_t operator()(const Vertex &v) const {
        std::size_t hash = 0;
        for (const unsigned i : {0u, 1u, 2u})
            hash = hash * 1000003 + std::hash<float>()(v[i]); // equal floats hash alike, 0.0 and -0.0 too
        return hash;
    }
};

/// The list under construction. Beside the list stands a set of its elements: a search through the list for
/// every candidate would take minutes at depth 8.
class AxisList {
public:
    explicit AxisList(std::vector<Vertex> &axes)
        : m_axes(axes)
        , m_known(axes.begin(), axes.end()) {}

    void Offer(const Vertex &candidate) {
        if (IsUpper(candidate) && m_known.insert(candidate).second)
            m_axes.push_back(candidate);
    }

    void Subdivide(const Vertex &u, const Vertex &v, const Vertex &w, int depth) {
        if (depth <= 0)
            return;
        const Vertex uv = Midpoint(u, v), vw = Midpoint(v, w), wu = Midpoint(w, u);
        Offer(uv);
        Offer(vw);
        Offer(wu);
        Subdivide(u, uv, wu, depth - 1);
        Subdivide(v, vw, uv, depth - 1);
        Subdivide(w, wu, vw, depth - 1);
        Subdivide(uv, vw, wu, depth - 1);
    }

private:
    std::vector<Vertex> &m_axes;
    std::unordered_set<Vertex, VertexHash> m_known;
};

} // namespace

void Subdivide(const Vertex &u, const Vertex &v, const Vertex &w, int depth, std::vector<Vertex> &axes) {
    AxisList(axes).Subdivide(u, v, w, depth);
}

std::vector<Vertex> fit::RotationAxes(int depth) {
    std::vector<Vertex> axes;
    AxisList list(axes);
    for (unsigned i = 0; i < icosahedron.size(); ++i)
        list.Offer(Corner(i));
    for (const auto &face : faces)
        list.Subdivide(Corner(face[0]), Corner(face[1]), Corner(face[2]), depth);
    return axes;
}
