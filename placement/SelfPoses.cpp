#include "placement/SelfPoses.h"

#include "placement/CoarseSearch.h"
#include "placement/Constants.h"
#include "placement/DistinctPlaces.h"
#include "placement/Filter.h"
#include "placement/Parallel.h"
#include "placement/Rotations.h"

#include <algorithm>
#include <numbers>

namespace placement {

namespace {

/// The map, smoothed, and which of its voxels hold density.
struct Density {
    Volume smoothed;
    std::vector<bool> dense;
    double volume = 0; ///< Å³
};

Density DensityOf(const VolumeView &map, double resolution, unsigned threads) {
    const double width = selfMaskWidth * resolution;
    Density density;
    const Waves waves = TransformPadded(map, padding * resolution, gaussianEnd / width, threads);
    density.smoothed =
        Synthesise(waves, GaussianFilter(width, gaussianEnd / width), trimVoxel * width, threads);
    std::array<double, 3> box;
    for (std::size_t axis = 0; axis < 3; ++axis)
        box[axis] = double(map.count[axis]) * map.spacing[axis];
    density.dense = DensePlaces(density.smoothed, VoxelsInBox(density.smoothed, box), {});
    const auto &voxel = density.smoothed.spacing;
    density.volume = double(std::ranges::count(density.dense, true)) * voxel[0] * voxel[1] * voxel[2];
    return density;
}

bool IsDense(const Density &density, const Point &p) {
    const Point from = p - density.smoothed.origin;
    const std::array<double, 3> at{from.x, from.y, from.z};
    std::array<std::size_t, 3> voxel;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const long i = std::lround(at[axis] / density.smoothed.spacing[axis]);
        if (i < 0 || std::size_t(i) >= density.smoothed.count[axis])
            return false;
        voxel[axis] = std::size_t(i);
    }
    return density.dense[density.smoothed.Index(voxel[0], voxel[1], voxel[2])];
}

/// The places of a cubic lattice where there is density, as a body of equal points.
PointModel BodyOf(const Density &density, const std::array<double, 3> &box, double spacing) {
    std::vector<ModelAtom> atoms;
    for (double z = 0; z < box[2]; z += spacing)
        for (double y = 0; y < box[1]; y += spacing)
            for (double x = 0; x < box[0]; x += spacing)
                if (const Point at = density.smoothed.origin + Point{x, y, z}; IsDense(density, at))
                    atoms.push_back({at, 1, unsigned(atoms.size()), 0, true});
    return atoms.empty() ? PointModel{} : MakePointModel(atoms);
}

/// A volume at the body's points in a pose.
std::vector<double> ValuesAt(const Volume &volume, const PointModel &body, const Pose &pose) {
    std::vector<double> values;
    values.reserve(body.points.size());
    const double one = 1;
    for (const Point &p : body.points)
        values.push_back(ScorePose(volume, WeightedPoints({&p, 1}, {&one, 1}), pose).score);
    return values;
}

/// The voxels where density stands out most.
std::vector<Point> StrongestOf(const Density &density, const Volume &coarse, const Point &centre) {
    std::vector<std::pair<float, Point>> voxels;
    for (std::size_t k = 0; k < coarse.count[2]; ++k)
        for (std::size_t j = 0; j < coarse.count[1]; ++j)
            for (std::size_t i = 0; i < coarse.count[0]; ++i) {
                const Point at = coarse.At(i, j, k);
                const float value = coarse.values[coarse.Index(i, j, k)];
                if (value > 0 && IsDense(density, at))
                    voxels.emplace_back(value, at - centre);
            }
    std::ranges::stable_sort(voxels, std::ranges::greater(), &std::pair<float, Point>::first);
    voxels.resize(std::min(voxels.size(), selfScanPoints));
    std::vector<Point> points;
    for (const auto &[value, at] : voxels)
        points.push_back(at);
    return points;
}

/// Which voxels may hold the body's centre after a motion: those within its radius of gyration.
std::vector<bool> PlacesOf(const SelfMap &map, const std::array<std::size_t, 3> &inBox) {
    std::vector<bool> places(map.coarse.values.size());
    const Sphere reach{map.body.centre, map.body.gyration};
    for (std::size_t k = 0; k < inBox[2]; ++k)
        for (std::size_t j = 0; j < inBox[1]; ++j)
            for (std::size_t i = 0; i < inBox[0]; ++i)
                places[map.coarse.Index(i, j, k)] = reach.Holds(map.coarse.At(i, j, k));
    return places;
}

std::vector<ScoredPose> RefinedAll(std::vector<ScoredPose> poses, const Volume &volume, const SelfMap &map,
                                   const std::vector<double> &weights, const RefinementSteps &steps,
                                   unsigned threads) {
    const WeightedPoints points(map.body.points, weights);
    ForEach(poses.size(), threads, [&](std::size_t i, unsigned) {
        poses[i] = Refine(volume, points, map.body.gyration, poses[i].pose, steps);
    });
    return poses;
}

} // namespace

double SelfMap::Correlation(const Pose &pose) const {
    const std::vector<double> there = ValuesAt(fine, body, pose);
    const Point end = fine.origin + Point{box[0], box[1], box[2]};
    double all = 0, within = 0, moved = 0, product = 0;
    for (std::size_t i = 0; i < body.points.size(); ++i) {
        const Point p = pose.rotation * body.points[i] + pose.centre, from = p - fine.origin, to = end - p;
        const double square = fineWeights[i] * fineWeights[i];
        const bool isWithin = std::min({from.x, from.y, from.z, to.x, to.y, to.z}) >= 0;
        all += square;
        within += isWithin ? square : 0;
        moved += there[i] * there[i];
        product += fineWeights[i] * there[i];
    }
    const double least = minOverlap * all;
    return product / std::sqrt(std::max(within, least) * std::max(moved, least));
}

SelfMap MakeSelfMap(const VolumeView &map, double resolution, unsigned threads) {
    SelfMap self;
    const Density density = DensityOf(map, std::max(resolution, finestScan), threads);
    self.resolution = std::max(resolution, std::cbrt(density.volume / selfPoints) / coarseVoxel);
    const Spectrum spectrum = TransformMap(map, self.resolution, threads);
    if (!(spectrum.strongest > 0))
        return self;
    self.box = spectrum.box;
    self.body = BodyOf(density, self.box, coarseVoxel * self.resolution);
    if (self.IsEmpty())
        return self;
    self.scanResolution = std::max(self.resolution, scanPerRadius * self.body.gyration);
    const double finest = finestWidth * self.resolution;
    self.coarse = Synthesise(spectrum.waves, WhiteFilter(spectrum, coarseWidth * self.scanResolution),
                             coarseVoxel * self.scanResolution, threads, Between::Linear);
    self.fine = Synthesise(spectrum.waves, WhiteFilter(spectrum, finest), finestVoxel * finest, threads,
                           Between::Linear);
    self.strongest = StrongestOf(density, self.coarse, self.body.centre);
    const Pose atRest{RotationBy({}), self.body.centre};
    self.coarseWeights = ValuesAt(self.coarse, self.body, atRest);
    self.fineWeights = ValuesAt(self.fine, self.body, atRest);
    return self;
}

std::vector<ScoredPose> FindSelfPoses(const SelfMap &map, unsigned threads, Monitor &monitor) {
    constexpr double degree = std::numbers::pi / 180;
    const double width = coarseWidth * map.scanResolution;
    const double step = std::clamp(rotationStep * width / std::max(map.body.gyration, 1.0),
                                   minRotationStep * degree, maxRotationStep * degree);
    const std::vector<Matrix> rotations = SpreadRotations(RotationsForStep(step));
    const std::array<std::size_t, 3> inBox = VoxelsInBox(map.coarse, map.box);
    std::vector<Pose> candidates = CoarseSearch({.level = map.coarse,
                                                 .places = PlacesOf(map, inBox),
                                                 .inBox = inBox,
                                                 .points = map.strongest,
                                                 .rotations = rotations},
                                                threads, monitor);
    if (monitor.IsCancelled())
        return {};
    const double same = samePlace * map.resolution;
    const auto hardlyMoves = [&](const Pose &pose) {
        const double rmsd = map.resolution;
        return SquaredRmsd(map.body, pose, {RotationBy({}), map.body.centre}) < rmsd * rmsd;
    };
    std::erase_if(candidates, hardlyMoves);
    std::vector<ScoredPose> poses;
    for (const Pose &pose : Distinct(map.body, candidates, same, selfPoses))
        poses.push_back({pose, 0});
    // The best ones may all lead to a symmetry's operators; what is wrong has to be known too.
    for (const Matrix &rotation : SpreadRotations(selfSpread))
        poses.push_back({{rotation, map.body.centre}, 0});
    poses = RefinedAll(std::move(poses), map.coarse, map, map.coarseWeights,
                       {levelSteps, firstLevelStep * width, longestLevelStep * width}, threads);
    poses = DistinctBest(map.body, std::move(poses), same, 2 * selfMotions);
    poses = RefinedAll(std::move(poses), map.fine, map, map.fineWeights,
                       {finalSteps, firstLevelStep * width, longestLevelStep * width}, threads);
    std::erase_if(poses, [&](const ScoredPose &pose) { return hardlyMoves(pose.pose); });
    for (ScoredPose &pose : poses)
        pose.score = map.Correlation(pose.pose);
    return DistinctBest(map.body, std::move(poses), same, selfMotions);
}

} // namespace placement
