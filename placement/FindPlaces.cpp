#include "placement/FindPlaces.h"

#include "placement/AsymmetricUnit.h"
#include "placement/Constants.h"
#include "placement/Filter.h"
#include "placement/Forecast.h"
#include "placement/KnownNeighbours.h"
#include "placement/OccupiedSpace.h"
#include "placement/Parallel.h"
#include "placement/PreparedMap.h"
#include "placement/Rotations.h"
#include "placement/Trim.h"

#include <algorithm>
#include <atomic>
#include <numbers>
#include <stdexcept>

namespace placement {

namespace {

/// Shares of the whole work at which its parts end, about as they take time.
constexpr double transformEnd = 0.05, scanEnd = 0.5;

double RotationStep(const PointModel &model, double scanResolution) {
    constexpr double degree = std::numbers::pi / 180;
    const double step = rotationStep * coarseWidth * scanResolution / std::max(model.gyration, 1.0);
    return std::clamp(step, minRotationStep * degree, maxRotationStep * degree);
}

/// The widths of the levels between the scan's and the finest, each narrower than the one before; the finest
/// comes last.
std::vector<double> LevelWidths(double coarsest, double finest) {
    std::vector<double> widths;
    // A level hardly wider than the finest would add nothing.
    for (double width = coarsest * levelRatio; width > 1.15 * finest; width *= levelRatio)
        widths.push_back(width);
    widths.push_back(finest);
    return widths;
}

std::vector<double> ScoresOf(const std::vector<ScoredPose> &poses) {
    std::vector<double> scores;
    scores.reserve(poses.size());
    for (const ScoredPose &pose : poses)
        scores.push_back(pose.score);
    return scores;
}

std::vector<ScoredPose> NotScored(const std::vector<Pose> &poses) {
    std::vector<ScoredPose> scored;
    scored.reserve(poses.size());
    for (const Pose &pose : poses)
        scored.push_back({pose, 0});
    return scored;
}

/// What two opinions agree on.
Confidence LessSure(const Confidence &a, const Confidence &b) {
    return {.logExpected = std::max(a.logExpected, b.logExpected),
            .place = std::min(a.place, b.place),
            .otherTurns = std::max(a.otherTurns, b.otherTurns),
            .probability = std::min(a.probability, b.probability)};
}

/// Poses about the model's own, a lattice of shifts and turns at the steps of a search.
std::vector<Pose> PosesNearby(const PointModel &model, double width, double rotationStep) {
    const double reach = std::min(nearbyShift, model.radius / 2), step = nearbyStep * width;
    const auto steps = int(reach / step);
    std::vector<Point> shifts;
    for (int k = -steps; k <= steps; ++k)
        for (int j = -steps; j <= steps; ++j)
            for (int i = -steps; i <= steps; ++i)
                if (const Point shift = step * Point{double(i), double(j), double(k)}; Length(shift) <= reach)
                    shifts.push_back(shift);
    constexpr double maxTurn = nearbyTurn * std::numbers::pi / 180;
    std::vector<Matrix> turns{RotationBy({})};
    for (const Matrix &rotation : SpreadRotations(RotationsForStep(rotationStep)))
        if (AngleOf(rotation) <= maxTurn)
            turns.push_back(rotation);
    std::vector<Pose> poses;
    for (const Matrix &turn : turns)
        for (const Point &shift : shifts)
            poses.push_back({turn, model.centre + shift});
    return poses;
}

/// Whether what stands out of the background lies below it.
bool SeemsInverted(const Volume &smoothed, const std::array<std::size_t, 3> &inBox) {
    std::vector<float> values = ValuesInBox(smoothed, inBox);
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    const auto [lowest, highest] = RangeInBox(smoothed, inBox);
    return *middle - lowest > invertedRatio * (highest - *middle);
}

void CheckResolution(double resolution) {
    if (!(resolution > 0) || !std::isfinite(resolution))
        throw std::invalid_argument("the resolution is not a positive number of Å");
}

class Search {
public:
    /// `map` is the part that matters to the model.
    Search(std::shared_ptr<MapPart> map, PointModel model, const PlacementParameters &parameters,
           Monitor &monitor)
        : m_parameters(parameters)
        , m_monitor(monitor)
        , m_model(std::move(model))
        , m_neighbours(parameters.neighbours)
        , m_map(WithoutNeighbours(std::move(map)))
        , m_spectrum(m_map->MapSpectrum())
        , m_points(m_model.points, m_model.weights) {
        m_result.start = m_model.centre;
        m_result.searched = m_map->View().count;
        m_result.predictedSignal = PredictedSignal(m_model.atoms, parameters.resolution);
        m_result.sharpShare = m_spectrum.sharpShare;
        m_result.scanResolution = ScanResolution(m_model, parameters.resolution);
        m_result.rotationStep = RotationStep(m_model, m_result.scanResolution);
        m_coarsest = coarseWidth * m_result.scanResolution;
    }

    PlacementResult Run() {
        const double resolution = m_parameters.resolution;
        if (m_spectrum.strongest > 0) {
            m_monitor.Advance(transformEnd);
            const std::vector<Pose> candidates = Scan();
            RefineAll(Distinct(m_model, candidates, samePlace * resolution, refinedPoses));
        }
        m_result.cancelled = m_monitor.IsCancelled();
        return std::move(m_result);
    }

    JudgedPlaces RunForAll() {
        JudgedPlaces all;
        if (m_spectrum.strongest > 0) {
            m_monitor.Advance(transformEnd);
            std::vector<Pose> starts =
                Distinct(m_model, Scan(), samePlace * m_parameters.resolution, refinedPoses);
            starts.insert(starts.end(), m_parameters.starts.begin(), m_parameters.starts.end());
            all.places = JudgeAll(starts);
        }
        if (!all.places.empty())
            all.verdict = VerdictOf(all.places.front().confidence);
        all.cancelled = m_monitor.IsCancelled();
        return all;
    }

    PlacementResult RunNearby() {
        if (m_spectrum.strongest > 0)
            RefineNearby();
        m_result.cancelled = m_monitor.IsCancelled();
        return std::move(m_result);
    }

private:
    using FilteredMap = std::shared_ptr<const Volume>;
    using Use = FilteredKind::Use;

    std::shared_ptr<MapPart> WithoutNeighbours(std::shared_ptr<MapPart> map) const {
        if (m_parameters.neighbours.empty())
            return map;
        return MapPart::Changed(std::move(map), [&](Spectrum &spectrum) {
            m_neighbours.SubtractFrom(spectrum, m_parameters.threads);
        });
    }

    std::vector<Pose> Scan() {
        const double scan = m_result.scanResolution;
        const FilteredMap level = m_map->Filtered({Use::Scan, m_coarsest}, [&] {
            return MakeLevel(LevelFilter(m_spectrum, m_coarsest), coarseVoxel * scan, Between::Nothing);
        });
        const double smoothing = MaskWidth(m_model, m_parameters.resolution);
        const Volume smoothed = MakeDensity(Smoothing(smoothing), coarseVoxel * scan);
        const std::array<std::size_t, 3> inBox = InBox(*level);
        const FilteredMap extremes = m_map->Filtered({Use::Extremes, maskWidth * scan}, [&] {
            return MakeDensity(Smoothing(maskWidth * scan), coarseVoxel * scan);
        });
        m_result.seemsInverted = SeemsInverted(*extremes, inBox);
        m_result.rotations = RotationsForStep(m_result.rotationStep);
        const std::vector<Matrix> rotations = SpreadRotations(m_result.rotations);
        PartMonitor monitor(m_monitor, transformEnd, scanEnd);
        return CoarseSearch({.level = *level,
                             .places = PlacesOnce(smoothed, inBox),
                             .inBox = inBox,
                             .points = m_model.scanPoints,
                             .rotations = rotations},
                            m_parameters.threads, monitor);
    }

    /// Where the centre of one of a place's copies may lie.
    std::vector<bool> PlacesOnce(const Volume &smoothed, const std::array<std::size_t, 3> &inBox) const {
        std::vector<bool> places = DensePlaces(smoothed, inBox, m_parameters.region);
        // A point in general position, which is on no axis.
        const Point reference = smoothed.origin + Point{0.53 * m_spectrum.box[0], 0.55 * m_spectrum.box[1],
                                                        0.58 * m_spectrum.box[2]};
        const AsymmetricUnit unit(m_parameters.mates, reference);
        const double margin = 2 * Length({smoothed.spacing[0], smoothed.spacing[1], smoothed.spacing[2]});
        for (std::size_t k = 0; k < inBox[2]; ++k)
            for (std::size_t j = 0; j < inBox[1]; ++j)
                for (std::size_t i = 0; i < inBox[0]; ++i)
                    if (const std::size_t index = smoothed.Index(i, j, k); places[index])
                        places[index] = unit.Holds(smoothed.At(i, j, k), margin);
        return places;
    }

    /// Poses near the model's own, those that score best on the coarsest level.
    std::vector<ScoredPose> BestNearby() {
        const Volume level =
            MakeLevel(LevelFilter(m_spectrum, m_coarsest), coarseVoxel * m_result.scanResolution);
        const std::vector<double> equal(m_model.scanPoints.size(), 1);
        const WeightedPoints scanned(m_model.scanPoints, equal);
        std::vector<ScoredPose> poses;
        for (const Pose &pose : PosesNearby(m_model, m_coarsest, m_result.rotationStep))
            poses.push_back({pose, ScorePose(level, scanned, pose).score});
        return DistinctBest(m_model, std::move(poses), samePlace * m_parameters.resolution, nearbyPoses);
    }

    std::array<std::size_t, 3> InBox(const Volume &volume) const {
        return VoxelsInBox(volume, m_spectrum.box);
    }

    RadialCurve Smoothing(double width) const {
        return GaussianFilter(width, cutEnd / m_parameters.resolution);
    }

    /// Density smoothed by a filter.
    Volume MakeDensity(const RadialCurve &filter, double voxel) const {
        return Synthesise(m_spectrum.waves, filter, LevelVoxel(m_spectrum, voxel), m_parameters.threads);
    }

    /// The map under which poses are scored.
    Volume MakeLevel(const RadialCurve &filter, double voxel, Between between = Between::Linear) const {
        Volume level = Synthesise(m_spectrum.waves, filter, LevelVoxel(m_spectrum, voxel),
                                  m_parameters.threads, between);
        m_neighbours.KeepFree(level);
        return level;
    }

    void RefineNearby() {
        std::vector<ScoredPose> poses = BestNearby();
        const double before = RefineThroughLevels(poses);
        const Volume finest = MakeFinest(MatchedFilter(m_spectrum, ModelPower()));
        poses = Finish(poses, finest, before);
        // Outside of the map nothing scores.
        if (poses.empty() || !(poses.front().score > 0))
            return;
        m_result.places.push_back(PlaceOf(poses.front()));
        m_result.verdict = Verdict::Refined;
        AddProfile(finest);
        AddDensityShares();
    }

    void RefineAll(const std::vector<Pose> &starts) {
        std::vector<ScoredPose> poses = NotScored(starts);
        const double before = RefineThroughLevels(poses);
        std::optional<std::vector<ScoredPose>> withoutModel;
        if (m_parameters.ruleOut)
            withoutModel = Finish(poses, *FinestWithoutModel(), before);
        if (withoutModel && IsRuledOut(*withoutModel))
            ListRuledOut(*withoutModel);
        else
            ListJudged(poses, before, std::move(withoutModel));
        if (m_result.places.empty())
            return;
        DropOverlapping();
        AddDensityShares();
    }

    /// Whether the best place is so much like wrong ones that the matched filter cannot make it sure either.
    bool IsRuledOut(const std::vector<ScoredPose> &withoutModel) const {
        const Confidence confidence =
            ConfidenceOf(m_model, withoutModel, FitWrongTail(ScoresOf(withoutModel)));
        return confidence.logExpected > std::log(ruledOut) && VerdictOf(confidence) == Verdict::NothingFound;
    }

    void ListRuledOut(const std::vector<ScoredPose> &withoutModel) {
        ListPlaces(withoutModel);
        AddProfile(*FinestWithoutModel());
        m_result.verdict = Verdict::RuledOut;
    }

    /// The places of the matched filter, judged by both. Those of the other one are found where they are not
    /// given.
    void ListJudged(const std::vector<ScoredPose> &poses, double before,
                    std::optional<std::vector<ScoredPose>> withoutModel) {
        Volume finest = MakeFinest(MatchedFilter(m_spectrum, ModelPower()));
        const std::vector<ScoredPose> places = Finish(poses, finest, before);
        if (places.empty())
            return;
        ListPlaces(places);
        AddProfile(finest);
        finest = {}; // before the next one takes as much memory
        const FilteredMap second = FinestWithoutModel();
        if (!withoutModel)
            withoutModel = Finish(poses, *second, before);
        m_result.confidence =
            LessSure(m_result.confidence, SecondOpinion(places.front().pose, *withoutModel, *second));
        m_result.verdict = VerdictOf(m_result.confidence);
    }

    /// Every distinct place with what both filters say of it.
    std::vector<JudgedPlace> JudgeAll(const std::vector<Pose> &starts) {
        std::vector<ScoredPose> poses = NotScored(starts);
        const double before = RefineThroughLevels(poses);
        const std::vector<ScoredPose> places =
            Finish(poses, MakeFinest(MatchedFilter(m_spectrum, ModelPower())), before);
        const WrongTail tail = FitWrongTail(ScoresOf(places));
        const FilteredMap finest = FinestWithoutModel();
        const std::vector<ScoredPose> seconds = Finish(poses, *finest, before);
        std::vector<JudgedPlace> judged;
        for (const ScoredPose &place : places) {
            std::vector<ScoredPose> list = places;
            std::swap(list.front(), list[judged.size()]);
            Confidence confidence = ConfidenceOf(m_model, list, tail);
            // A second opinion only lessens a probability: there is none to ask of what one filter rules out.
            if (confidence.place >= unsureTurn)
                confidence = LessSure(confidence, SecondOpinion(place.pose, seconds, *finest));
            judged.push_back({PlaceOf(place), confidence});
            judged.back().place.probability = confidence.probability;
            judged.back().place.logExpected = confidence.logExpected;
        }
        return judged;
    }

    RadialCurve ModelPower() const {
        return DebyePower(m_model, cutEnd / m_parameters.resolution, m_spectrum.power.step / 2);
    }

    /// Takes the poses through the levels between the scan's and the finest. Returns the last one's width.
    double RefineThroughLevels(std::vector<ScoredPose> &poses) {
        const std::vector<double> widths = LevelWidths(m_coarsest, finestWidth * m_parameters.resolution);
        // Each level between is one list to refine; either of the two filters at the end has two.
        m_lists = widths.size() - 1 + 4;
        const std::vector<double> equal(m_model.scanPoints.size(), 1);
        const WeightedPoints scanned(m_model.scanPoints, equal);
        double before = m_coarsest;
        for (auto width = widths.begin(); width + 1 != widths.end(); before = *width++) {
            const FilteredMap level = m_map->Filtered({Use::Level, *width}, [&] {
                return MakeLevel(LevelFilter(m_spectrum, *width), levelVoxel * *width);
            });
            RefineList(poses, *level, *width > pointWidth ? scanned : m_points,
                       {levelSteps, firstLevelStep * before, longestLevelStep * before});
            poses = DistinctBest(m_model, std::move(poses), mergedAtLevel * *width,
                                 std::size_t(survivors * double(refinedPoses)), m_parameters.mates);
        }
        return before;
    }

    Volume MakeFinest(const RadialCurve &filter) const {
        double voxel = finestVoxel * finestWidth * m_parameters.resolution;
        // Of a large map, finer voxels than its own would take more memory than the map itself.
        const VolumeView &map = m_map->View();
        if (map.count[0] * map.count[1] * map.count[2] > largeMap)
            voxel = std::max(voxel, *std::ranges::min_element(map.spacing));
        Volume finest = MakeLevel(filter, voxel);
        ScaleToUnitPower(finest, m_parameters.threads);
        return finest;
    }

    /// The finest level under the filter without the model.
    FilteredMap FinestWithoutModel() {
        const double width = finestWidth * m_parameters.resolution;
        return m_map->Filtered({Use::Finest, width},
                               [&] { return MakeFinest(LevelFilter(m_spectrum, width)); });
    }

    /// Climbs to the maxima of the finest level; returns distinct places, best first.
    std::vector<ScoredPose> Finish(std::vector<ScoredPose> poses, const Volume &finest, double before) {
        const double resolution = m_parameters.resolution;
        RefineList(poses, finest, m_points, {levelSteps, firstLevelStep * before, longestLevelStep * before});
        poses =
            DistinctBest(m_model, std::move(poses), mergedAtEnd * resolution, finalPoses, m_parameters.mates);
        RefineList(poses, finest, m_points,
                   {finalSteps, firstFinalStep * resolution, longestFinalStep * resolution});
        // A climb may have left the region.
        if (m_parameters.region)
            std::erase_if(poses,
                          [&](const ScoredPose &p) { return !m_parameters.region->Holds(p.pose.centre); });
        std::erase_if(poses, [&](const ScoredPose &p) { return OverlapsItsMates(p.pose); });
        return BroughtTogether(
            DistinctBest(m_model, std::move(poses), samePlace * resolution, finalPoses, m_parameters.mates));
    }

    /// Of each place the copy that is nearest to the best place, so that other turns in its hole stand there.
    std::vector<ScoredPose> BroughtTogether(std::vector<ScoredPose> places) const {
        for (ScoredPose &place : places) {
            const Pose own = place.pose;
            for (const Motion &mate : m_parameters.mates) {
                const Pose copy = Moved(mate, own);
                const Point &best = places.front().pose.centre;
                if (Length(copy.centre - best) < Length(place.pose.centre - best))
                    place.pose = copy;
            }
        }
        return places;
    }

    /// Whether copies of a place would stand in it, other than the place itself.
    bool OverlapsItsMates(const Pose &pose) const {
        const double same = samePlace * m_parameters.resolution;
        OccupiedSpace own;
        own.Add(m_model, pose);
        return std::ranges::any_of(m_parameters.mates, [&](const Motion &mate) {
            const Pose copy = Moved(mate, pose);
            return Length(copy.centre - pose.centre) < 2 * m_model.radius &&
                   SquaredRmsd(m_model, copy, pose) > same * same && own.Overlap(m_model, copy) > maxOverlap;
        });
    }

    /// Refines each pose; a cancelled search only scores those that it has not come to.
    void RefineList(std::vector<ScoredPose> &poses, const Volume &level, const WeightedPoints &points,
                    const RefinementSteps &steps) {
        std::atomic<std::size_t> done = 0;
        ForEach(poses.size(), m_parameters.threads, [&](std::size_t i, unsigned worker) {
            if (m_monitor.IsCancelled())
                poses[i].score = ScorePose(level, points, poses[i].pose).score;
            else
                poses[i] = Refine(level, points, m_model.gyration, poses[i].pose, steps);
            const double lists = double(m_listsDone) + double(++done) / double(poses.size());
            if (worker == 0)
                m_monitor.Advance(scanEnd + (1 - scanEnd) * lists / double(m_lists));
        });
        ++m_listsDone;
    }

    void ListPlaces(const std::vector<ScoredPose> &places) {
        m_result.tail = FitWrongTail(ScoresOf(places));
        m_result.confidence = ConfidenceOf(m_model, places, m_result.tail);
        for (const ScoredPose &place : places) {
            m_result.places.push_back(PlaceOf(place));
            m_result.places.back().probability = m_result.tail.Probability(place.score);
            m_result.places.back().logExpected = m_result.tail.LogExpected(place.score);
        }
    }

    Place PlaceOf(const ScoredPose &scored) const {
        return {.pose = scored.pose,
                .translation = scored.pose.centre - scored.pose.rotation * m_model.centre,
                .score = scored.score,
                .overlap = m_neighbours.Overlap(m_model, scored.pose)};
    }

    void DropOverlapping() {
        OccupiedSpace occupied;
        std::vector<Place> kept;
        for (Place &place : m_result.places) {
            const bool isCopy = occupied.Overlap(m_model, place.pose) <= maxOverlap;
            if (isCopy)
                AddWithMates(place.pose, occupied);
            else
                place.otherTurn = IsOtherTurn(place);
            if (isCopy || place.otherTurn)
                kept.push_back(place);
        }
        m_result.places = std::move(kept);
    }

    void AddWithMates(const Pose &pose, OccupiedSpace &occupied) const {
        occupied.Add(m_model, pose);
        for (const Motion &mate : m_parameters.mates)
            occupied.Add(m_model, Moved(mate, pose));
    }

    /// Whether a place is the first one in another turn, which the map does not tell from it.
    bool IsOtherTurn(const Place &place) const {
        const Place &first = m_result.places.front();
        return m_result.verdict == Verdict::TurnUnsure &&
               Length(place.pose.centre - first.pose.centre) < sameHole * m_model.gyration &&
               TurnWeight(first.score, place.score, m_result.tail) > unsureTurn;
    }

    /// How sure a pose is by the filter without the model, among the places that this filter finds: not at
    /// all where it climbs from there to another place.
    Confidence SecondOpinion(const Pose &pose, const std::vector<ScoredPose> &places,
                             const Volume &finest) const {
        const double resolution = m_parameters.resolution;
        std::vector<ScoredPose> list{
            Refine(finest, m_points, m_model.gyration, pose,
                   {finalSteps, firstFinalStep * resolution, longestFinalStep * resolution})};
        const WrongTail tail = FitWrongTail(ScoresOf(places));
        const Pose own = list.front().pose;
        const double same = samePlace * resolution;
        const auto isOther = [&](const Pose &other) {
            return SquaredRmsd(m_model, other, own) >= same * same;
        };
        if (isOther(pose))
            return {.logExpected = std::log(double(std::max<std::size_t>(tail.number, 1)))};
        for (const ScoredPose &place : places)
            if (isOther(place.pose))
                list.push_back(place);
        return ConfidenceOf(m_model, list, tail);
    }

    /// The first place's score, residue by residue.
    void AddProfile(const Volume &finest) {
        std::vector<double> weights(m_model.residues);
        m_result.profile.assign(m_model.residues, 0);
        for (std::size_t i = 0; i < m_model.points.size(); ++i) {
            const WeightedPoints one({&m_model.points[i], 1}, {&m_model.weights[i], 1});
            m_result.profile[m_model.residue[i]] +=
                ScorePose(finest, one, m_result.places.front().pose).score;
            weights[m_model.residue[i]] += m_model.weights[i];
        }
        for (std::size_t i = 0; i < weights.size(); ++i)
            m_result.profile[i] /= weights[i];
    }

    /// 1 where there is density, else 0.
    Volume MakeMask(double width) const {
        Volume density = MakeDensity(Smoothing(width), levelVoxel * width);
        const auto threshold = float(DensityThreshold(density, InBox(density)));
        for (float &value : density.values)
            value = value > threshold ? 1.0f : 0.0f;
        return density;
    }

    /// How much of the model lies in density, for each place.
    void AddDensityShares() {
        const double width = finestWidth * m_parameters.resolution;
        const FilteredMap density = m_map->Filtered({Use::Density, width}, [&] { return MakeMask(width); });
        double all = 0;
        for (const double weight : m_model.weights)
            all += weight;
        for (Place &place : m_result.places)
            place.inDensity = ScorePose(*density, m_points, place.pose).score / all;
    }

    Verdict VerdictOf(const Confidence &confidence) const {
        if (m_spectrum.sharpShare > maxSharpShare && m_spectrum.sharpness > maxSharpness)
            return Verdict::NotJudged;
        if (confidence.probability >= declared)
            return Verdict::Placed;
        if (confidence.place >= declaredPlace && confidence.otherTurns > unsureTurn)
            return Verdict::TurnUnsure;
        return Verdict::NothingFound;
    }

    const PlacementParameters &m_parameters;
    Monitor &m_monitor;
    PointModel m_model;
    KnownNeighbours m_neighbours;
    std::shared_ptr<MapPart> m_map; ///< the part of it that matters
    const Spectrum &m_spectrum;
    WeightedPoints m_points;
    double m_coarsest = 0;                    ///< width of the scan's level, Å
    std::size_t m_lists = 1, m_listsDone = 0; ///< of poses that are refined, for the progress
    PlacementResult m_result;
};

} // namespace

std::size_t FoundCopies(const PlacementResult &result) {
    if (result.verdict != Verdict::Placed && result.verdict != Verdict::TurnUnsure)
        return 0;
    return std::size_t(std::ranges::count_if(
        result.places, [](const Place &place) { return !place.otherTurn && place.probability >= declared; }));
}

namespace {

Search SearchIn(const VolumeView &map, const std::vector<ModelAtom> &atoms,
                const PlacementParameters &parameters, Monitor &monitor) {
    CheckResolution(parameters.resolution);
    PointModel model = MakePointModel(atoms);
    auto part = std::make_shared<MapPart>(Trimmed(map, model, parameters.resolution, parameters.threads),
                                          parameters.resolution, parameters.threads);
    return {std::move(part), std::move(model), parameters, monitor};
}

Search SearchIn(PreparedMap &map, const std::vector<ModelAtom> &atoms, const PlacementParameters &parameters,
                Monitor &monitor) {
    CheckResolution(parameters.resolution);
    if (parameters.resolution != map.Resolution())
        throw std::invalid_argument("the map is prepared for another resolution");
    PointModel model = MakePointModel(atoms);
    std::shared_ptr<MapPart> part = map.PartFor(model);
    return {std::move(part), std::move(model), parameters, monitor};
}

} // namespace

PlacementResult FindPlaces(const VolumeView &map, const std::vector<ModelAtom> &atoms,
                           const PlacementParameters &parameters, Monitor &monitor) {
    return SearchIn(map, atoms, parameters, monitor).Run();
}

PlacementResult FindPlaces(PreparedMap &map, const std::vector<ModelAtom> &atoms,
                           const PlacementParameters &parameters, Monitor &monitor) {
    return SearchIn(map, atoms, parameters, monitor).Run();
}

JudgedPlaces FindJudgedPlaces(PreparedMap &map, const std::vector<ModelAtom> &atoms,
                              const PlacementParameters &parameters, Monitor &monitor) {
    return SearchIn(map, atoms, parameters, monitor).RunForAll();
}

PlacementResult RefinePlace(const VolumeView &map, const std::vector<ModelAtom> &atoms,
                            const PlacementParameters &parameters, Monitor &monitor) {
    PlacementParameters own = parameters;
    own.region.reset();
    return SearchIn(map, atoms, own, monitor).RunNearby();
}

} // namespace placement
