#include "OnlyTarget.h"
#include "PlainKernels.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <random>

namespace {

using fast::lookUpOffsets;
using fast::PaddedPoints;
using fast::WindowShape;

/// Odd ones, and those about the widths of vectors.
constexpr std::size_t pointCounts[] = {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 32, 33, 61, 64, 65, 375};

/// Bytes of the widest vector.
constexpr std::size_t vectorBytes = 64;

/// Random numbers that are the same with every standard library.
class Dice {
public:
    explicit Dice(unsigned seed)
        : m_engine(seed) {}

    int Between(int low, int high) { return low + int(m_engine() % unsigned(high - low + 1)); }
    double Uniform(double low, double high) { return low + (high - low) * double(m_engine()) / 4294967296.0; }
    bool Chance(double p) { return Uniform(0, 1) < p; }

private:
    std::mt19937 m_engine;
};

/// An array that begins `shift` entries behind the start of a vector, between guards that say whether
/// anything was written beside it.
template <class T>
class Array {
public:
    Array(std::size_t size, std::size_t shift, T value = {})
        : m_bytes((size + 3 * perVector) * sizeof(T) + vectorBytes, guard)
        , m_size(size) {
        const auto address = std::bit_cast<std::uintptr_t>(m_bytes.data());
        m_first = (vectorBytes - address % vectorBytes) % vectorBytes + vectorBytes + shift * sizeof(T);
        std::fill_n(data(), size, value);
    }

    T *data() { return reinterpret_cast<T *>(m_bytes.data() + m_first); }
    std::size_t size() const { return m_size; }
    T &operator[](std::size_t i) { return data()[i]; }
    T *begin() { return data(); }
    T *end() { return data() + m_size; }

    /// The same bits, and both between whole guards.
    bool operator==(const Array &other) const {
        return m_size == other.m_size && IsWhole() && other.IsWhole() &&
               std::memcmp(m_bytes.data() + m_first, other.m_bytes.data() + other.m_first,
                           m_size * sizeof(T)) == 0;
    }

    static constexpr std::size_t perVector = vectorBytes / sizeof(T);

private:
    static constexpr std::uint8_t guard = 0xA5;

    bool IsWhole() const {
        const auto isGuard = [](std::uint8_t byte) { return byte == guard; };
        const auto first = m_bytes.begin() + std::ptrdiff_t(m_first);
        return std::all_of(m_bytes.begin(), first, isGuard) &&
               std::all_of(first + std::ptrdiff_t(m_size * sizeof(T)), m_bytes.end(), isGuard);
    }

    std::vector<std::uint8_t> m_bytes;
    std::size_t m_first = 0, m_size;
};

/// Calls `test` for every number of points, with the arrays of each at another alignment, until all
/// alignments of that type have been met with short and with long arrays.
template <class T>
void ForEachCase(const std::function<void(PaddedPoints, std::size_t shift, Dice &)> &test) {
    unsigned seed = 0;
    for (const std::size_t count : pointCounts)
        for (std::size_t shift = 0; shift < Array<T>::perVector; ++shift) {
            SCOPED_TRACE(std::to_string(count) + " points, shifted by " + std::to_string(shift));
            Dice dice(++seed);
            ASSERT_NO_FATAL_FAILURE(test(PaddedPoints(count), shift, dice));
        }
}

fast::GridAxis RandomAxis(Dice &dice, std::int32_t stride) {
    return {float(dice.Uniform(-50, 50)), float(dice.Uniform(0.3, 4)), dice.Between(1, 60), stride};
}

/// Coordinates in, about and beyond the grid, some of them exactly between two voxels.
void FillCoordinates(Array<float> &coordinates, const fast::GridAxis &axis, Dice &dice) {
    for (float &p : coordinates) {
        const double index = dice.Chance(0.3) ? dice.Between(-4, 2 * axis.count + 8) / 2.0
                                              : dice.Uniform(-20, axis.count + 20);
        p = float(axis.origin + index * axis.spacing);
    }
}

/// Coordinates about the places where one voxel's share ends and the next one's begins, the grid's own ends
/// among them, each with the next floats below and above.
std::vector<float> CriticalCoordinates(const fast::GridAxis &axis) {
    std::vector<float> coordinates;
    for (int i = -3; i <= axis.count + 2; i += i > 100 && i < axis.count - 100 ? 997 : 1)
        for (const double part : {0.0, 0.5}) {
            float p = float(axis.origin + (i + part) * axis.spacing);
            for (int step = 0; step < 3; ++step)
                p = std::nextafter(p, -INFINITY);
            for (int step = 0; step < 7; ++step, p = std::nextafter(p, INFINITY))
                coordinates.push_back(p);
        }
    return coordinates;
}

std::vector<WindowShape> WindowShapes() {
    std::vector<WindowShape> shapes = {{16, 1}, {16, 2}};
    if (fast::LargestWindow() == 32)
        shapes.insert(shapes.end(), {{32, 1}, {32, 2}});
    return shapes;
}

/// The translations of a unit that ascends or descends by about `stride`.
fast::UnitTranslations RandomUnit(std::size_t count, double stride, Dice &dice) {
    fast::UnitTranslations translations;
    const double first = dice.Uniform(-20, 20), step = dice.Chance(0.5) ? stride : -stride;
    for (std::size_t i = 0; i < translations.size(); ++i)
        translations[i] = float(first + double(std::min(i, count - 1)) * step);
    return translations;
}

/// The arrays of windows.
struct WindowArrays {
    WindowArrays(PaddedPoints points, WindowShape windowShape, std::size_t shift)
        : shape(windowShape)
        , starts(points.Entries(), shift % Array<std::int32_t>::perVector)
        , scratch(points.Entries(), shift % Array<std::int32_t>::perVector)
        , patterns(points.Entries() * shape.PatternBytes(), shift) {
        std::fill(patterns.data() + points.Points() * shape.PatternBytes(), patterns.end(),
                  std::uint8_t(0x80));
    }

    fast::Windows Get() { return {shape, starts.data(), scratch.data(), patterns.data()}; }

    /// Clears what stands beyond the first `count` offsets of each point: a kernel may write there.
    void ClearBeyond(PaddedPoints points, std::size_t count) {
        for (std::size_t i = 0; i < points.Points() * shape.lookUps; ++i)
            for (std::size_t byte = 0; byte < shape.bytes; ++byte)
                if (i % shape.lookUps * lookUpOffsets + byte % 16 >= count)
                    patterns[i * shape.bytes + byte] = 0;
    }

    WindowShape shape;
    Array<std::int32_t> starts, scratch;
    Array<std::uint8_t> patterns;
};

/// Patterns as `MapWindows` makes them: each offset reads one byte of the window, or none.
void FillPatterns(WindowArrays &windows, PaddedPoints points, Dice &dice) {
    const std::size_t bytes = windows.shape.bytes;
    for (std::size_t i = 0; i < points.Points() * windows.shape.lookUps; ++i)
        for (std::size_t offset = 0; offset < lookUpOffsets; ++offset) {
            std::uint8_t *pattern = &windows.patterns[i * bytes + offset];
            const int place = dice.Chance(0.1) ? 0x80 : dice.Between(0, int(bytes) - 1);
            pattern[0] = std::uint8_t(place < 16 ? place : place | 0x80);
            if (bytes == 32)
                pattern[16] = std::uint8_t(place == 0x80 ? 0x80 : place - 16);
        }
}

/// Tables of indices, each of them `size` long, with values from -reach to reach.
class Tables {
public:
    Tables(std::size_t count, std::size_t size, std::size_t shift, int reach, Dice &dice) {
        for (std::size_t i = 0; i < count; ++i) {
            m_tables.emplace_back(size, (shift + i) % Array<std::int32_t>::perVector);
            for (std::int32_t &index : m_tables.back())
                index = dice.Between(-reach, reach);
        }
        for (auto &table : m_tables)
            m_pointers.push_back(table.data());
    }

    std::span<const std::int32_t *const> Get() const { return m_pointers; }
    const std::int32_t *operator[](std::size_t i) const { return m_pointers[i]; }

private:
    std::vector<Array<std::int32_t>> m_tables;
    std::vector<const std::int32_t *> m_pointers;
};

/// A grid whose voxels are reached by the sum of three indices between -reach and reach and a window.
constexpr int reach = 700;
constexpr std::size_t gridSize = 6 * reach + 32, gridFirst = 3 * reach;

/// A range that begins and ends at some of the sums, beside them, or nowhere.
template <class Range, class Sum>
Range RandomRange(Dice &dice, Sum low, Sum high) {
    Range range;
    if (dice.Chance(0.2))
        return range;
    range.first = decltype(range.first)(dice.Between(low, high));
    range.last = decltype(range.last)(dice.Between(range.first, high));
    return range;
}

class KernelsOn : public testing::TestWithParam<std::int64_t> {
    const OnlyTarget m_target{GetParam()};
};

} // namespace

TEST_P(KernelsOn, RotatePointsAsThePlainLoopDoes) {
    ForEachCase<double>([](PaddedPoints points, std::size_t shift, Dice &dice) {
        std::array<double, 9> matrix;
        for (double &entry : matrix)
            entry = dice.Uniform(-1, 1);
        Array<double> x(points.Entries(), shift), y(x), z(x);
        for (auto *coordinates : {&x, &y, &z})
            for (double &c : *coordinates)
                c = double(float(dice.Uniform(-300, 300)));
        // Where a sum cancels, what is left tells how its parts were rounded.
        for (std::size_t i = 0; i < points.Entries(); i += 2)
            z[i] = -(matrix[0] * x[i] + matrix[1] * y[i]) / matrix[2];
        const fast::CoordinateArrays<const double> p = {x.data(), y.data(), z.data()};
        using Floats = Array<float>;
        std::vector<Floats> found(3, Floats(points.Entries(), shift)), expected(found);
        fast::RotatePoints(matrix, p, points, {found[0].data(), found[1].data(), found[2].data()});
        plain::RotatePoints(matrix, p, points, {expected[0].data(), expected[1].data(), expected[2].data()});
        ASSERT_TRUE(found == expected);
    });
}

TEST_P(KernelsOn, MapCoordinatesAsThePlainLoopDoes) {
    ForEachCase<float>([](PaddedPoints points, std::size_t shift, Dice &dice) {
        const fast::GridAxis axis = RandomAxis(dice, dice.Between(1, 5000));
        Array<float> coordinates(points.Entries(), shift);
        FillCoordinates(coordinates, axis, dice);
        const float translation = dice.Chance(0.3) ? 0.0f : float(dice.Uniform(-20, 20));
        Array<std::int32_t> found(points.Entries(), shift), expected(found);
        fast::MapCoordinates(coordinates.data(), points, translation, axis, found.data());
        plain::MapCoordinates(coordinates.data(), points, translation, axis, expected.data());
        ASSERT_TRUE(found == expected);
    });
}

TEST_P(KernelsOn, MapCoordinatesOnTheEdgesOfVoxelsAsThePlainLoopDoes) {
    for (const fast::GridAxis axis : {fast::GridAxis{0, 1, 7, 1}, fast::GridAxis{0, 1, 1 << 22, 3},
                                      fast::GridAxis{-3.25f, 1.742f, 100, 10},
                                      fast::GridAxis{1e4f, 0.3f, 300, 1}, fast::GridAxis{5, 1e-6f, 20, 1}}) {
        std::vector<float> coordinates = CriticalCoordinates(axis);
        const PaddedPoints points(coordinates.size());
        coordinates.resize(points.Entries());
        std::vector<std::int32_t> found(points.Entries()), expected(found);
        fast::MapCoordinates(coordinates.data(), points, 0, axis, found.data());
        plain::MapCoordinates(coordinates.data(), points, 0, axis, expected.data());
        for (std::size_t i = 0; i < coordinates.size(); ++i)
            ASSERT_EQ(found[i], expected[i]) << coordinates[i] << " on an axis of spacing " << axis.spacing;
    }
}

TEST_P(KernelsOn, MapWindowsAsThePlainLoopDoes) {
    int fitting = 0, tooWide = 0;
    ForEachCase<std::uint8_t>([&](PaddedPoints points, std::size_t shift, Dice &dice) {
        for (const WindowShape shape : WindowShapes()) {
            const auto count = std::size_t(dice.Between(1, int(shape.MaxOffsets())));
            const fast::GridAxis axis = RandomAxis(dice, 1);
            // Offsets that just fit, and now and then one too many.
            const double widest = double(shape.bytes - (dice.Chance(0.2) ? 0 : 2));
            const double stride = dice.Chance(0.2) ? 0 : widest / double(std::max(count, std::size_t(2)) - 1);
            const auto translations = RandomUnit(count, stride * double(axis.spacing), dice);
            Array<float> coordinates(points.Entries(), shift % Array<float>::perVector);
            FillCoordinates(coordinates, axis, dice);
            WindowArrays found(points, shape, shift), expected(found);
            const bool fits =
                fast::MapWindows(coordinates.data(), points, translations, count, axis, found.Get());
            ASSERT_EQ(fits, plain::MapWindows(coordinates.data(), points, translations, count, axis,
                                              expected.Get()));
            ASSERT_TRUE(found.starts == expected.starts);
            ++(fits ? fitting : tooWide);
            if (fits) {
                found.ClearBeyond(points, count);
                ASSERT_TRUE(found.patterns == expected.patterns);
            }
        }
    });
    EXPECT_GT(fitting, 1000);
    EXPECT_GT(tooWide, 10);
}

TEST_P(KernelsOn, SumRowsAsThePlainLoopDoes) {
    ForEachCase<std::uint8_t>([](PaddedPoints points, std::size_t shift, Dice &dice) {
        Array<std::uint8_t> grid(gridSize, shift);
        for (std::uint8_t &level : grid)
            level = std::uint8_t(dice.Between(0, fast::highestLevel));
        for (const WindowShape shape : WindowShapes()) {
            WindowArrays windows(points, shape, shift);
            FillPatterns(windows, points, dice);
            for (std::int32_t &start : windows.starts)
                start = dice.Between(-reach, reach);
            const auto xCount = std::size_t(dice.Between(1, 3));
            std::vector<std::uint32_t> rowsBegin = {0};
            for (std::size_t x = 0; x < xCount; ++x)
                rowsBegin.push_back(rowsBegin.back() + std::uint32_t(dice.Between(0, 3)));
            const Tables xs(xCount, points.Entries(), shift, reach, dice);
            const Tables ys(rowsBegin.back(), points.Entries(), shift, reach, dice);
            Array<std::uint16_t> found(rowsBegin.back() * shape.MaxOffsets(),
                                       shift % Array<std::uint16_t>::perVector, 0xFFFF);
            Array<std::uint16_t> expected(found);
            const fast::GridValues<std::uint8_t> levels = {{grid.data(), grid.size()}, gridFirst};
            fast::SumRows({levels, points, windows.Get(), xs.Get(), rowsBegin, ys.Get(), found});
            plain::SumRows({levels, points, windows.Get(), xs.Get(), rowsBegin, ys.Get(), expected});
            ASSERT_TRUE(found == expected);
        }
    });
}

TEST_P(KernelsOn, SumRowsUpToTheLargestSum) {
    const PaddedPoints points(65535 / fast::highestLevel);
    Array<std::uint8_t> grid(gridSize, 0, fast::highestLevel);
    const std::vector<std::int32_t> zeros(points.Entries());
    const std::vector<const std::int32_t *> table = {zeros.data()};
    const std::vector<std::uint32_t> rowsBegin = {0, 1};
    for (const WindowShape shape : WindowShapes()) {
        WindowArrays windows(points, shape, 0);
        std::fill_n(windows.patterns.data(), points.Points() * shape.PatternBytes(), std::uint8_t(0x80));
        for (std::size_t i = 0; i < points.Points(); ++i)
            windows.patterns[i * shape.PatternBytes()] = 3;
        std::vector<std::uint16_t> sums(shape.MaxOffsets());
        fast::SumRows(
            {{{grid.data(), grid.size()}, gridFirst}, points, windows.Get(), table, rowsBegin, table, sums});
        EXPECT_EQ(sums[0], points.Points() * fast::highestLevel);
        EXPECT_EQ(sums[1], 0);
    }
}

TEST_P(KernelsOn, MarkSumsAsThePlainLoopDoes) {
    for (unsigned seed = 0; seed < 1000; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        const std::size_t shift = seed % Array<std::uint16_t>::perVector;
        const auto lookUps = std::size_t(dice.Between(0, 9));
        const int low = dice.Chance(0.5) ? 0 : dice.Between(0, 65500);
        const int high = dice.Chance(0.5) ? 65535 : std::min(low + 20, 65535);
        Array<std::uint16_t> sums(lookUps * lookUpOffsets, shift);
        for (std::uint16_t &sum : sums)
            sum = std::uint16_t(dice.Between(low, high));
        const auto a = RandomRange<fast::SumRange>(dice, low, high);
        const auto b = RandomRange<fast::SumRange>(dice, low, high);
        Array<std::uint16_t> found(lookUps, shift, 0xFFFF), expected(found);
        fast::MarkSums(sums, a, b, found);
        plain::MarkSums(sums, a, b, expected);
        ASSERT_TRUE(found == expected);
    }
}

TEST_P(KernelsOn, MarkFineSumsAsThePlainLoopDoes) {
    for (unsigned seed = 0; seed < 1000; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        const std::size_t shift = seed % Array<std::uint16_t>::perVector;
        const auto lookUps = std::size_t(dice.Between(0, 9));
        const int highest = dice.Chance(0.5) ? 65535 : 10, fineSteps = 1 << dice.Between(0, 6);
        Array<std::uint16_t> sums(lookUps * lookUpOffsets, shift), fineSums(sums);
        for (std::uint16_t &sum : sums)
            sum = std::uint16_t(dice.Between(0, highest));
        for (std::uint16_t &sum : fineSums)
            sum = std::uint16_t(dice.Between(0, highest));
        const auto a = RandomRange<fast::FineRange>(dice, -highest, fineSteps * highest);
        const auto b = RandomRange<fast::FineRange>(dice, -highest, fineSteps * highest);
        Array<std::uint16_t> found(lookUps, shift, 0xFFFF), expected(found);
        fast::MarkFineSums(sums, fineSums, fineSteps, a, b, found);
        plain::MarkFineSums(sums, fineSums, fineSteps, a, b, expected);
        ASSERT_TRUE(found == expected);
    }
}

TEST_P(KernelsOn, TouchesAsThePlainLoopDoes) {
    int touching = 0, free = 0;
    ForEachCase<std::int32_t>([&](PaddedPoints points, std::size_t shift, Dice &dice) {
        const double filled = dice.Chance(0.5) ? 1.0 / double(points.Points()) : dice.Uniform(0, 0.01);
        Array<std::uint8_t> grid(gridSize, shift);
        for (std::uint8_t &level : grid)
            level = dice.Chance(filled);
        const Tables tables(3, points.Entries(), shift, reach, dice);
        const fast::GridValues<std::uint8_t> levels = {{grid.data(), grid.size()}, gridFirst};
        const fast::PoseIndices pose = {tables[0], tables[1], tables[2]};
        const bool expected = plain::Touches(levels, points, pose);
        ASSERT_EQ(fast::Touches(levels, points, pose), expected);
        ++(expected ? touching : free);
    });
    EXPECT_GT(touching, 20);
    EXPECT_GT(free, 20);
}

TEST_P(KernelsOn, TouchesWithTheLastPointAlone) {
    for (const std::size_t count : pointCounts) {
        const PaddedPoints points(count);
        std::vector<std::int32_t> zeros(points.Entries()), last(zeros);
        const std::vector<std::uint8_t> grid = {0, 1};
        last[count - 1] = 1;
        EXPECT_TRUE(fast::Touches({grid, 0}, points, {zeros.data(), zeros.data(), last.data()})) << count;
        std::fill(last.begin() + std::ptrdiff_t(count), last.end(), 1);
        last[count - 1] = 0; // fillers do not touch
        EXPECT_FALSE(fast::Touches({grid, 0}, points, {zeros.data(), zeros.data(), last.data()})) << count;
    }
}

TEST_P(KernelsOn, ScorePosesAsThePlainLoopDoes) {
    ForEachCase<std::int32_t>([](PaddedPoints points, std::size_t shift, Dice &dice) {
        Array<float> grid(gridSize, shift);
        for (float &voxel : grid) // of very different size: every sum rounds
            voxel = float(std::ldexp(dice.Uniform(-1, 1), dice.Between(-40, 40)));
        const auto count = std::size_t(dice.Between(0, 9));
        const Tables tables(3 * count, points.Entries(), shift, reach, dice);
        std::vector<fast::PoseIndices> poses;
        for (std::size_t i = 0; i < count; ++i)
            poses.push_back({tables[3 * i], tables[3 * i + 1], tables[3 * i + 2]});
        Array<double> found(count, shift % Array<double>::perVector), expected(found);
        const fast::GridValues<float> voxels = {{grid.data(), grid.size()}, gridFirst};
        fast::ScorePoses(voxels, points, poses, found);
        plain::ScorePoses(voxels, points, poses, expected);
        ASSERT_TRUE(found == expected);
    });
}

INSTANTIATE_TEST_SUITE_P(Targets, KernelsOn, testing::ValuesIn(Targets()), NameOf);
