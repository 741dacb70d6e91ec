// Single poses and whole searches, fast and pose by pose. Arguments that are no options name real cases: NAME
// MAP STRUCTURE CHAIN.

#include "Cases.h"
#include "Parameters.h"
#include "RunFit.h"
#include "fit/Axes.h"
#include "fit/Rotations.h"
#include "search/PoseScorer.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>

#include <malloc.h>

using namespace VARNO;

namespace {

/// Å; one and a half voxels of the synthetic map.
constexpr double offsetStep = 3;
/// Points looked up by a search that scores pose by pose, at least: a fifth of a second.
constexpr double plainLookUps = 5e7;

class Silence : public search::FitMonitor {
    void Started(const fit::Preparation &) override {}
    bool IsCancelled() override { return false; }
    void IdentityDone(std::size_t) override {}
    void AxisDone(std::size_t, std::size_t, double) override {}
    void Cancelled() override {}
    void Finished() override {}
};

search::PoseCounts Search(const fit::Preparation &fit, int keep, const SearchOptions &options) {
    fit::FitParameters parameters;
    parameters.keep = keep;
    std::list<SolutionScore> solutions;
    search::PoseCounts counts;
    Silence silence;
    RunSearch(fit, parameters, solutions, silence, counts, options);
    return counts;
}

/// The rotations of a search as users run it: the fewer the translations, the finer the rotations.
fit::Preparation Prepare(const Case &searched, int offsets) {
    fit::Preparation fit;
    fit.map = searched.map;
    fit.keepOut = searched.keepOut;
    fit.target = searched.target;
    fit.offsets = fit::TranslationOffsets(offsets, offsetStep);
    fit.axes = fit::RotationAxes(offsets < 11 ? 3 : 2);
    const double degrees = offsets == 1 ? 1 : offsets == 3 ? 5 : 10;
    fit.angleStep = degrees * fit::fullTurn / 360;
    return fit;
}

/// The same with so few rotations that pose by pose takes no longer than needed to measure it.
fit::Preparation PrepareFew(const Case &searched, int offsets) {
    fit::Preparation fit = Prepare(searched, offsets);
    const double rotations =
        std::ceil(plainLookUps / (double(fit.offsets.size()) * double(fit.target.points.size())));
    const double axes = std::ceil(rotations / double(fit::Angles(fit.angleStep).Count()));
    if (axes < double(fit.axes.size()))
        fit.axes.resize(std::size_t(axes));
    if (axes <= 1)
        fit.angleStep = fit::fullTurn / (rotations + 0.5);
    return fit;
}

/// What scoring a pose on its own costs, with nothing around it.
void MeasureScoring(benchmark::State &state, const Case &searched, int offsets) {
    const fit::Preparation fit = Prepare(searched, offsets);
    search::PoseScorer scorer(fit);
    scorer.Rotate(fit::RotationAbout(Vertex(0.6f, 0, 0.8f, false), 0.5));
    for (auto _ : state)
        for (const Vertex &offset : fit.offsets)
            benchmark::DoNotOptimize(scorer.Score(offset));
    const double poses = double(state.iterations()) * double(fit.offsets.size());
    state.counters["poses"] = benchmark::Counter(poses, benchmark::Counter::kIsRate);
    state.counters["point"] = benchmark::Counter(poses * double(fit.target.points.size()),
                                                 benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void MeasureSearch(benchmark::State &state, const Case &searched, int offsets, int keep, bool poseByPose) {
    const fit::Preparation fit = poseByPose ? PrepareFew(searched, offsets) : Prepare(searched, offsets);
    search::PoseCounts counts;
    for (auto _ : state)
        counts = Search(fit, keep, {.poseByPose = poseByPose});
    state.counters["poses"] = benchmark::Counter(double(counts.tried), benchmark::Counter::kIsRate);
    state.counters["exact"] = double(counts.scoredExactly) / double(counts.tried);
    state.counters["accepted"] = double(counts.accepted) / double(counts.tried);
}

/// Searches of a second and more: shorter ones are mostly preparation, and need no threads.
void MeasureThreads(benchmark::State &state, const Case &searched, int offsets, unsigned threads) {
    fit::Preparation fit = Prepare(searched, offsets);
    fit.axes = fit::RotationAxes(3);
    for (auto _ : state)
        Search(fit, 100, {.threads = threads});
    state.counters["rate"] = benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
}

/// What a second core gives to work that shares nothing: the measure for the search on two threads.
void PureComputing(benchmark::State &state) {
    double x = 0.5;
    for (auto _ : state) {
        for (int i = 0; i < 20'000'000; ++i)
            x = 3.9 * x * (1 - x);
        benchmark::DoNotOptimize(x);
    }
    state.counters["rate"] = benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
}

/// A figure of this process in kB, as the kernel keeps it.
double StatusOf(const std::string &key) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (double figure; word == key + ":" && status >> figure)
            return figure;
    return NAN;
}

/// The peak of what a search takes beside the map and what else stood in memory before.
void MeasureMemory(benchmark::State &state, const Case &searched, int offsets, unsigned threads) {
    const fit::Preparation fit = Prepare(searched, offsets);
    for (auto _ : state) {
        malloc_trim(0);
        std::ofstream("/proc/self/clear_refs") << 5; // the peak starts again from here
        const double before = StatusOf("VmRSS");
        Search(fit, 5000, {.threads = threads});
        state.counters["beside"] = (StatusOf("VmHWM") - before) / 1024;
    }
    state.counters["map"] = double(searched.map->Values().size_bytes()) / 1024 / 1024;
}

/// Cases are made when their benchmark runs, and stay for those that follow.
using MakeCase = std::function<const Case &()>;

MakeCase Once(std::function<Case()> make) {
    return [make = std::move(make), made = std::make_shared<std::optional<Case>>()]() -> const Case & {
        if (!*made)
            *made = make();
        return **made;
    };
}

void RegisterRatios(const std::string &name, bool solid, const MakeCase &make) {
    for (const int offsets : {1, 3, 5, 11, 21, 31})
        for (const int keep : {10, 100, 5000})
            for (const bool poseByPose : {true, false}) {
                const std::string full = "search/" + name + "/solid:" + std::to_string(solid) +
                                         "/offsets:" + std::to_string(offsets) +
                                         "/keep:" + std::to_string(keep) +
                                         (poseByPose ? "/pose_by_pose" : "/fast");
                benchmark::RegisterBenchmark(full.c_str(),
                                             [=](benchmark::State &state) {
                                                 if (solid && !make().keepOut)
                                                     return state.SkipWithError(
                                                         "nothing stands beside the target");
                                                 MeasureSearch(state, make(), offsets, keep, poseByPose);
                                             })
                    ->Iterations(1)
                    ->Unit(benchmark::kMillisecond);
            }
}

void RegisterThreads(const MakeCase &make) {
    for (const unsigned threads : {1u, 2u}) {
        const std::string number = std::to_string(threads);
        for (const int offsets : {11, 21})
            benchmark::RegisterBenchmark(
                ("threads/search, " + std::to_string(offsets) + " offsets/" + number).c_str(),
                [=](benchmark::State &state) { MeasureThreads(state, make(), offsets, threads); })
                ->UseRealTime()
                ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("threads/computing alone/" + number).c_str(), PureComputing)
            ->Threads(int(threads))
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond);
    }
}

void RegisterMemory(const MakeCase &make) {
    for (const unsigned threads : {1u, 2u})
        benchmark::RegisterBenchmark(
            ("memory/threads:" + std::to_string(threads)).c_str(),
            [=](benchmark::State &state) { MeasureMemory(state, make(), 21, threads); })
            ->Iterations(1)
            ->Unit(benchmark::kMillisecond);
}

} // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    if (argc % 4 != 1) {
        std::cerr << "usage: bench_search [OPTION]... [NAME MAP STRUCTURE CHAIN]...\n";
        return 2;
    }
    const MakeCase usual = Once([] { return SyntheticCase(375, false); });
    benchmark::RegisterBenchmark("scoring/one pose at a time",
                                 [=](benchmark::State &state) { MeasureScoring(state, usual(), 11); });
    RegisterMemory(usual);
    RegisterThreads(usual);
    for (const bool solid : {false, true}) {
        for (const unsigned points : {150u, 375u, 1000u})
            RegisterRatios("noise, " + std::to_string(points) + " points", solid,
                           Once([=] { return SyntheticCase(points, solid); }));
        for (int i = 1; i < argc; i += 4)
            RegisterRatios(argv[i], solid,
                           Once([=] { return RealCase(argv[i + 1], argv[i + 2], argv[i + 3], solid); }));
    }
    benchmark::RunSpecifiedBenchmarks();
}
