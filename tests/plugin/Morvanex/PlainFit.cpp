#include "PlainFit.h"

#include <cmath>
#include <cstdint>
#include <cstdio>

namespace {

template <class... Numbers>
std::string Printed(const char *format, Numbers... numbers) {
    char text[2000];
    std::snprintf(text, sizeof(text), format, numbers...);
    return text;
}

/// As printf has it, but for the sign of a NaN, which is nobody's to choose.
std::string Fixed(const char *format, double number) {
    return Printed(format, std::isnan(number) ? NAN : number);
}

std::string Line(const PlainRecord &record) {
    std::string line;
    for (const double number : record.rotation)
        line += Fixed("%6.2f ", number);
    for (const float number : record.translation)
        line += Fixed("%6.2f ", number);
    line += Fixed("%9.3f", record.score);
    for (const double number : record.extraScores)
        line += Fixed(" %6.2f", number);
    return line + "\n";
}

struct Vertices {
    Point corner[12];
    int face[20][3] = {{0, 4, 1}, {0, 9, 4},  {9, 5, 4},  {4, 5, 8},  {4, 8, 1},  {8, 10, 1}, {8, 3, 10},
                       {5, 3, 8}, {5, 2, 3},  {2, 7, 3},  {7, 10, 3}, {7, 6, 10}, {7, 11, 6}, {11, 0, 6},
                       {0, 1, 6}, {6, 1, 10}, {9, 0, 11}, {9, 11, 2}, {9, 2, 5},  {7, 2, 11}};

    Vertices() {
        const float a = float(0.5257311121191336), b = float(0.8506508083520399), o = 0;
        const Point given[12] = {{-a, o, b}, {a, o, b},   {-a, o, -b}, {a, o, -b}, {o, b, a},   {o, b, -a},
                                 {o, -b, a}, {o, -b, -a}, {b, a, o},   {-b, a, o}, {b, -a, -o}, {-b, -a, o}};
        for (int i = 0; i < 12; ++i)
            corner[i] = given[i];
    }
};

void Offer(std::vector<Point> &axes, const Point &p) {
    const double epsilon = 1.1920928955078125e-07;
    const double x = p[0], y = p[1], z = p[2];
    bool upper = !(z < -epsilon);
    if (y < -epsilon)
        upper = false;
    else if (y >= epsilon)
        upper = true;
    if (x < -epsilon)
        upper = false;
    else if (x >= epsilon)
        upper = true;
    if (!upper)
        return;
    for (const Point &known : axes)
        if (known == p)
            return;
    axes.push_back(p);
}

Point Halfway(const Point &u, const Point &v) {
    Point m = {u[0] + v[0], u[1] + v[1], u[2] + v[2]};
    const float squared = m[0] * m[0] + m[1] * m[1] + m[2] * m[2];
    const double length = std::sqrt(double(squared));
    if (length > 0)
        for (float &c : m)
            c = float(double(c) / length);
    return m;
}

void Divide(std::vector<Point> &axes, const Point &u, const Point &v, const Point &w, int depth) {
    if (depth == 0)
        return;
    const Point uv = Halfway(u, v), vw = Halfway(v, w), wu = Halfway(w, u);
    Offer(axes, uv);
    Offer(axes, vw);
    Offer(axes, wu);
    Divide(axes, u, uv, wu, depth - 1);
    Divide(axes, v, vw, uv, depth - 1);
    Divide(axes, w, wu, vw, depth - 1);
    Divide(axes, uv, vw, wu, depth - 1);
}

Point Turned(const std::array<double, 4> &q, const Point &p) {
    const double w = q[0], x = q[1], y = q[2], z = q[3];
    const double n = w * w + x * x + y * y + z * z;
    const double m[3][3] = {
        {1 - 2 * (y * y + z * z) / n, 2 * (x * y - w * z) / n, 2 * (x * z + w * y) / n},
        {2 * (x * y + w * z) / n, 1 - 2 * (x * x + z * z) / n, 2 * (y * z - w * x) / n},
        {2 * (x * z - w * y) / n, 2 * (y * z + w * x) / n, 1 - 2 * (x * x + y * y) / n},
    };
    Point turned;
    for (int row = 0; row < 3; ++row)
        turned[row] = float(m[row][0] * double(p[0]) + m[row][1] * double(p[1]) + m[row][2] * double(p[2]));
    return turned;
}

Point Moved(const PlainRecord &pose, const Point &p) {
    Point moved = Turned(pose.rotation, p);
    for (int i = 0; i < 3; ++i)
        moved[i] += pose.translation[i];
    return moved;
}

double Distance(const Point &a, const Point &b) {
    const float x = a[0] - b[0], y = a[1] - b[1], z = a[2] - b[2];
    return std::sqrt(double(x * x + y * y + z * z));
}

/// The value at the voxel nearest to p; nothing outside the map.
std::optional<float> ValueAt(const PlainMap &map, const Point &p) {
    std::size_t index[3];
    for (int i = 0; i < 3; ++i) {
        const float d = p[i] - map.origin[i];
        const double q = double(d / map.spacing[i]) + 0.5;
        if (std::isnan(q) || std::fabs(q) > 1e18)
            return {};
        const std::int64_t truncated = std::int64_t(q);
        if (truncated < 0 || truncated >= std::int64_t(map.size[i]))
            return {};
        index[i] = std::size_t(truncated);
    }
    return map.values[index[0] + map.size[0] * (index[1] + map.size[1] * index[2])];
}

Point Centre(const std::vector<Point> &points) {
    Point sum = {0, 0, 0};
    for (const Point &p : points)
        for (int i = 0; i < 3; ++i)
            sum[i] += p[i];
    for (float &c : sum)
        c = float(double(c) / double(points.size()));
    return sum;
}

std::string Key(const PlainResidue &residue) {
    const std::string key = residue.name + residue.sequenceId;
    const auto first = key.find_first_not_of(" \t\n");
    return first == std::string::npos ? "" : key.substr(first, key.find_last_not_of(" \t\n") - first + 1);
}

/// The keep-out grid of the residues near the centre: every node looks at every residue.
std::optional<PlainMap> KeepOut(const FitInput &input, const Point &centre) {
    std::vector<Point> near;
    for (const PlainResidue &residue : input.solid)
        if (residue.position && Distance(*residue.position, centre) < double(input.inclusionDistance))
            near.push_back(*residue.position);
    if (near.empty())
        return {};
    PlainMap grid;
    for (int i = 0; i < 3; ++i) {
        float low = near[0][i], high = near[0][i];
        for (const Point &p : near) {
            low = p[i] < low ? p[i] : low;
            high = p[i] > high ? p[i] : high;
        }
        low -= 8.5f;
        high += 8.5f;
        const float extent = high - low;
        const int whole = int(double(extent) / 2.0);
        grid.size[i] = unsigned(whole + 2);
        grid.origin[i] = float(double(low) - (2.0 * (whole + 1) - double(extent)) * 0.5);
        grid.spacing[i] = 2;
    }
    for (unsigned k = 0; k < grid.size[2]; ++k)
        for (unsigned j = 0; j < grid.size[1]; ++j)
            for (unsigned i = 0; i < grid.size[0]; ++i) {
                const Point node = {grid.origin[0] + float(i) * 2, grid.origin[1] + float(j) * 2,
                                    grid.origin[2] + float(k) * 2};
                float deepest = 0;
                for (const Point &p : near)
                    deepest = std::fmax(deepest, float(6.0 - Distance(p, node)));
                grid.values.push_back(deepest);
            }
    return grid;
}

/// Smallest scores first, equal ones in the order in which they stand; then only the last ones stay.
void Trim(std::vector<PlainRecord> &list, int keep) {
    const std::size_t kept = keep > 0 ? std::size_t(keep) : 0;
    if (list.size() < kept)
        return;
    std::vector<PlainRecord> sorted;
    for (const PlainRecord &record : list) {
        auto place = sorted.end();
        while (place != sorted.begin() && record.score < (place - 1)->score)
            --place;
        sorted.insert(place, record);
    }
    list.assign(sorted.end() - std::ptrdiff_t(kept), sorted.end());
}

} // namespace

std::vector<Point> PlainAxes(int depth) {
    const Vertices icosahedron;
    std::vector<Point> axes;
    for (const Point &corner : icosahedron.corner)
        Offer(axes, corner);
    for (const auto &face : icosahedron.face)
        Divide(axes, icosahedron.corner[face[0]], icosahedron.corner[face[1]], icosahedron.corner[face[2]],
               depth);
    return axes;
}

std::vector<double> PlainAngles(double step) {
    std::vector<double> angles;
    double angle = step;
    while (angle < 6.283185307179586) {
        angles.push_back(angle);
        angle = angle + step;
    }
    return angles;
}

std::string PlainResults(const std::vector<PlainRecord> &records) {
    std::string text = "# w Rx Ry Rz Tx Ty Tz score [extra scores...]\n";
    for (const PlainRecord &record : records)
        text += Line(record);
    return text;
}

std::string FullPrecision(const std::vector<PlainRecord> &records) {
    std::string text;
    for (const PlainRecord &record : records) {
        for (const double number : record.rotation)
            text += Fixed("%a ", number);
        for (const float number : record.translation)
            text += Fixed("%a ", number);
        text += Fixed("%a", record.score);
        for (const double number : record.extraScores)
            text += Fixed(" %a", number);
        text += '\n';
    }
    return text;
}

FitOutcome PlainFit(const FitInput &input) {
    FitOutcome outcome;
    const int count = input.translationCount % 2 == 0 ? input.translationCount + 1 : input.translationCount;
    outcome.translationCount = count;

    std::vector<Point> points;
    std::vector<std::pair<Point, Point>> pairs;
    for (const PlainResidue &residue : input.target) {
        if (!residue.position)
            continue;
        for (const PlainRestraint &restraint : input.restraints)
            if (restraint.key == Key(residue))
                pairs.emplace_back(restraint.preferred, *residue.position);
        points.push_back(*residue.position);
    }
    const Point centre = Centre(points);
    const std::optional<PlainMap> keepOut = KeepOut(input, centre);
    if (keepOut)
        outcome.keepOut = keepOut->values;

    std::vector<PlainRecord> list = input.earlier;
    const auto tryPose = [&](double angle, const Point &axis, int i, int j, int k) {
        PlainRecord pose;
        const double sine = std::sin(angle / 2);
        pose.rotation = {std::cos(angle / 2), sine * double(axis[0]), sine * double(axis[1]),
                         sine * double(axis[2])};
        const Point turned = Turned(pose.rotation, centre);
        const int place[3] = {i, j, k}, middle = count / 2;
        for (int c = 0; c < 3; ++c)
            pose.translation[c] = (centre[c] - turned[c]) + float((place[c] - middle) * input.step);
        double inside = 0, density = 0;
        for (const Point &p : points) {
            const Point moved = Moved(pose, p);
            if (const auto value = keepOut ? ValueAt(*keepOut, moved) : std::nullopt; value && *value > 2.0f)
                inside += double(*value);
            if (const auto value = input.map ? ValueAt(*input.map, moved) : std::nullopt)
                density += double(*value);
        }
        if (inside >= 0.01)
            return;
        pose.score = density;
        for (const auto &[preferred, point] : pairs)
            pose.extraScores.push_back(Distance(preferred, Moved(pose, point)));
        if (input.logging)
            outcome.log += Line(pose);
        if (pose.score != -1.0)
            list.push_back(pose);
    };
    const auto tryOffsets = [&](double angle, const Point &axis, bool trim) {
        for (int i = 0; i < count; ++i)
            for (int j = 0; j < count; ++j)
                for (int k = 0; k < count; ++k) {
                    tryPose(angle, axis, i, j, k);
                    if (trim && list.size() > 2 * std::size_t(input.keep > 0 ? input.keep : 0))
                        Trim(list, input.keep);
                }
    };

    tryOffsets(0, {1, 0, 0}, false);
    outcome.finished = input.cancelAfter != 0u;
    std::size_t done = 0;
    if (outcome.finished)
        for (const Point &axis : PlainAxes(input.axisDepth)) {
            for (const double angle : PlainAngles(input.angleStep))
                tryOffsets(angle, axis, true);
            if (input.cancelAfter == ++done) {
                outcome.finished = false;
                break;
            }
        }
    if (outcome.finished)
        Trim(list, input.keep);
    outcome.results = PlainResults(list);
    outcome.list = FullPrecision(list);
    return outcome;
}
