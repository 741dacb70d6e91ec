#include "Scoring.h"

#include <QTextStream>

#include <benchmark/benchmark.h>

#include <random>

namespace {

constexpr int points = 375, offsets = 11, edge = 100;

std::mt19937 generator(1); // the same case in every run

void FillWithNoise(Grid &map) {
    std::normal_distribution<float> density(0, 1);
    for (float &value : map.Values())
        value = density(generator);
}

/// A ball of points about the map's centre (voxels of 2 Å), as large as a chain with that many residues.
std::vector<TaggedPoint> MakeTarget() {
    std::normal_distribution<float> coordinate(0, 15);
    std::vector<TaggedPoint> target;
    for (int i = 0; i < points; ++i)
        target.emplace_back(
            Vertex(coordinate(generator), coordinate(generator), coordinate(generator), false), 'A');
    return target;
}

/// All offsets of one rotation, each pose scored on its own.
void ScorePoseByPose(benchmark::State &state) {
    Grid map("map", {edge, edge, edge}, {-edge, -edge, -edge}, {2, 2, 2}, {90, 90, 90});
    FillWithNoise(map);
    const std::vector<TaggedPoint> target = MakeTarget();
    std::vector<TaggedPoint> moved = target;
    std::vector<double> extraScores;
    QTextStream noLog;
    Quaternion rotation;
    rotation.Set(0.5, Vertex(0.6f, 0, 0.8f, false));
    for (auto _ : state)
        for (int pose = 0; pose < offsets * offsets * offsets; ++pose) {
            const int x = pose % offsets, y = pose / offsets % offsets, z = pose / (offsets * offsets);
            const Vertex offset(5.0f * float(x - 5), 5.0f * float(y - 5), 5.0f * float(z - 5), false);
            benchmark::DoNotOptimize(
                DoScores(rotation, offset, &map, target, nullptr, {}, moved, extraScores, noLog, false));
        }
    const double poses = double(state.iterations()) * offsets * offsets * offsets;
    state.counters["poses"] = benchmark::Counter(poses, benchmark::Counter::kIsRate);
    state.counters["point"] =
        benchmark::Counter(poses * points, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(ScorePoseByPose)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
