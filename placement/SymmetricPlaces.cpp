#include "placement/SymmetricPlaces.h"

#include "placement/Constants.h"
#include "placement/Filter.h"
#include "placement/MapAverage.h"
#include "placement/SymmetricRefinement.h"
#include "placement/Trim.h"

#include <algorithm>

namespace placement {

namespace {

/// Shares of the whole work at which its parts end, about as they take time.
constexpr double aloneEnd = 0.3, symmetryEnd = 0.6, togetherEnd = 0.95;

std::vector<Pose> SurePoses(const PlacementResult &result) {
    std::vector<Pose> poses;
    if (FoundCopies(result) > 0)
        for (const Place &place : result.places)
            if (!place.otherTurn && place.probability >= declared)
                poses.push_back(place.pose);
    return poses;
}

/// A box in space.
struct Box {
    Point low, high;

    explicit Box(const VolumeView &map)
        : low(map.origin)
        , high(map.origin + Point{double(map.count[0]) * map.spacing[0],
                                  double(map.count[1]) * map.spacing[1],
                                  double(map.count[2]) * map.spacing[2]}) {}

    Point Middle() const { return 0.5 * (low + high); }
    double Diagonal() const { return Length(high - low); }
    bool Holds(const Point &p) const {
        const Point from = p - low, to = high - p;
        return std::min({from.x, from.y, from.z, to.x, to.y, to.z}) >= 0;
    }
};

/// Whether nearly all of a model lies in a box.
bool HoldsWhole(const Box &box, const PointModel &model, const Pose &pose) {
    const auto within =
        std::ranges::count_if(model.points, [&](const Point &p) { return box.Holds(MotionInto(pose) * p); });
    return double(within) >= wholeCopy * double(model.points.size());
}

/// A symmetry that lies in a map.
class SymmetryInMap {
public:
    SymmetryInMap(const VolumeView &map, const Symmetry &symmetry, const Pose &frame)
        : m_box(map)
        , m_symmetry(symmetry)
        , m_frame(frame) {
        // Copies are counted from the middle of the map on.
        if (symmetry.IsHelical()) {
            const Point axis = frame.rotation * Point{0, 0, 1};
            m_frame.centre = frame.centre + Dot(m_box.Middle() - frame.centre, axis) * axis;
            m_reach = int(m_box.Diagonal() / symmetry.rise);
        }
    }

    const Box &InBox() const { return m_box; }
    const Pose &Frame() const { return m_frame; }

    /// Motions that bring something in the map to another place in it.
    std::vector<Motion> Motions() const {
        std::vector<Motion> motions;
        for (const SymmetryOperator &op : OperatorsOf(m_symmetry, m_reach / 2))
            motions.push_back(MotionOf(op, m_symmetry, m_frame));
        return motions;
    }

    /// The operators that leave a model's centre in the map.
    std::vector<SymmetryOperator> OperatorsFor(const Pose &pose) const {
        std::vector<SymmetryOperator> operators = OperatorsOf(m_symmetry, m_reach);
        std::erase_if(operators, [&](const SymmetryOperator &op) {
            return !m_box.Holds(MotionOf(op, m_symmetry, m_frame) * pose.centre);
        });
        return operators;
    }

private:
    Box m_box;
    Symmetry m_symmetry;
    Pose m_frame;
    int m_reach = 0; ///< steps along a helix through the map
};

class Together {
public:
    Together(const VolumeView &map, const std::vector<ModelAtom> &atoms,
             const PlacementParameters &parameters, const SymmetryRequest &request)
        : m_atoms(atoms)
        , m_parameters(parameters)
        , m_request(request)
        , m_model(MakePointModel(atoms))
        , m_map(Trimmed(map, m_model, parameters.resolution, parameters.threads))
        , m_points(m_model.points, m_model.weights) {}

    PlacementResult Search(const UsedSymmetry &used, Monitor &monitor) const {
        const SymmetryInMap symmetry(m_map, used.symmetry, used.frame);
        PlacementParameters parameters = m_parameters;
        parameters.mates = symmetry.Motions();
        const Volume mean =
            AverageOver(parameters.mates, m_map, m_parameters.resolution, m_parameters.threads);
        return FindPlaces(mean, m_atoms, parameters, monitor);
    }

    /// Refines the places that were found with all their copies, and puts the copies in their stead.
    void Expand(PlacementResult &result, UsedSymmetry &used) const {
        const Volume finest = Finest();
        std::vector<Place> copies, others;
        SymmetricFreedom freedom = m_request.Freedom(true);
        for (const Place &place : result.places) {
            if (place.otherTurn || place.probability < declared) {
                others.push_back(place);
                continue;
            }
            const SymmetricPose refined = Refined(finest, place.pose, used, freedom);
            used.symmetry = refined.symmetry;
            used.frame = refined.frame;
            freedom = {.axis = false, .turn = false, .centre = false, .helix = false};
            AddCopies(place, refined.pose, used, copies);
            ++used.places;
        }
        used.copies = copies.size();
        result.places = std::move(copies);
        result.places.insert(result.places.end(), others.begin(), others.end());
    }

private:
    Volume Finest() const {
        const double resolution = m_parameters.resolution, width = finestWidth * resolution;
        const Spectrum spectrum = TransformMap(m_map, resolution, m_parameters.threads);
        const RadialCurve power = DebyePower(m_model, cutEnd / resolution, spectrum.power.step / 2);
        return Synthesise(spectrum.waves, MatchedFilter(spectrum, power), finestVoxel * width,
                          m_parameters.threads, Between::Linear);
    }

    SymmetricPose Refined(const Volume &finest, const Pose &pose, const UsedSymmetry &used,
                          const SymmetricFreedom &freedom) const {
        const double resolution = m_parameters.resolution;
        const SymmetryInMap symmetry(m_map, used.symmetry, used.frame);
        return RefineSymmetric({finest, m_points, m_model.gyration, symmetry.OperatorsFor(pose), freedom},
                               {pose, used.symmetry, symmetry.Frame(), 0},
                               {finalSteps, firstFinalStep * resolution, longestFinalStep * resolution});
    }

    /// The copies of a place that lie in the map, itself first; those that come to lie upon one another once.
    void AddCopies(const Place &place, const Pose &pose, const UsedSymmetry &used,
                   std::vector<Place> &copies) const {
        const SymmetryInMap symmetry(m_map, used.symmetry, used.frame);
        DistinctPlaces distinct(m_model, samePlace * m_parameters.resolution);
        for (const SymmetryOperator &op : symmetry.OperatorsFor(pose)) {
            Place copy = place;
            copy.pose = Moved(MotionOf(op, used.symmetry, symmetry.Frame()), pose);
            copy.translation = copy.pose.centre - copy.pose.rotation * m_model.centre;
            const bool isWhole = HoldsWhole(symmetry.InBox(), m_model, copy.pose);
            if (distinct.Add(copy.pose) && (isWhole || distinct.Size() == 1))
                copies.push_back(copy);
        }
    }

    const std::vector<ModelAtom> &m_atoms;
    const PlacementParameters &m_parameters;
    const SymmetryRequest &m_request;
    PointModel m_model;
    VolumeView m_map; ///< the part of it that matters
    WeightedPoints m_points;
};

std::size_t OrderOf(const Symmetry &symmetry, const PlaceSymmetry &places) {
    return symmetry.IsHelical() ? places.places : OperatorsOf(symmetry).size();
}

/// Whether an operator brings each of several places upon each other one.
bool Relates(const Symmetry &symmetry, const Pose &frame, std::span<const Pose> places,
             const PointModel &model, double tolerance) {
    const std::vector<Motion> motions = MotionsOf(symmetry, frame, farthestSteps);
    const auto related = [&](const Pose &from, const Pose &to) {
        return std::ranges::any_of(motions, [&](const Motion &motion) {
            return SquaredRmsd(model, Moved(motion, from), to) < tolerance * tolerance;
        });
    };
    return places.size() > 1 && std::ranges::all_of(places.subspan(1), [&](const Pose &place) {
               return related(places.front(), place);
           });
}

/// The symmetry to be used: that of the map, or that of the places where it is larger or the map has none; or
/// what the map shows best, where the places agree or the request leaves no other.
std::optional<UsedSymmetry> Chosen(const SymmetricResult &result, const SymmetryRequest &request,
                                   const PointModel &model, double resolution) {
    const PlaceSymmetry &places = result.ofPlaces;
    const MapSymmetry &map = result.ofMap;
    const bool isHeld = request.axis || request.centre || request.frame;
    const bool ofPlaces = !isHeld && !places.symmetry.IsNone() && request.Asks(places.symmetry) &&
                          (!map.found || (!map.symmetry.IsHelical() &&
                                          OrderOf(places.symmetry, places) > OrderOf(map.symmetry, places)));
    if (ofPlaces)
        return UsedSymmetry{places.symmetry, places.frame, SymmetrySource::Places};
    if (map.found)
        return UsedSymmetry{map.symmetry, map.frame, SymmetrySource::Map};
    if (map.tried && map.probability >= likelySymmetry &&
        Relates(*map.tried, map.frame, SurePoses(result.placement), model, samePlace * resolution))
        return UsedSymmetry{*map.tried, map.frame, SymmetrySource::Both};
    if (map.tried && request.IsHeld())
        return UsedSymmetry{*map.tried, map.frame, SymmetrySource::Given};
    return std::nullopt;
}

/// Whether what the mean over the copies shows is to be believed.
bool IsConvincing(const PlacementResult &together, const PlacementResult &alone, SymmetrySource source) {
    return FoundCopies(together) > 0 && !together.cancelled &&
           (source != SymmetrySource::Given ||
            together.confidence.logExpected < alone.confidence.logExpected);
}

/// Why a symmetry, if there was one to be used, was not.
NotUsed ReasonOf(const PlacementResult &alone, const std::optional<UsedSymmetry> &used) {
    if (alone.cancelled)
        return NotUsed::NotFinished;
    if (!used || used->source == SymmetrySource::Given)
        return NotUsed::NotFound;
    return alone.verdict == Verdict::NotJudged ? NotUsed::NotJudged : NotUsed::NoPlace;
}

} // namespace

SymmetricResult FindSymmetricPlaces(const VolumeView &map, const std::vector<ModelAtom> &atoms,
                                    const PlacementParameters &parameters, const SymmetryRequest &request,
                                    Monitor &monitor) {
    SymmetricResult result;
    PartMonitor alone(monitor, 0, aloneEnd);
    result.placement = FindPlaces(map, atoms, parameters, alone);
    if (!monitor.IsCancelled())
        result.ofMap = FindMapSymmetry(map, parameters.resolution, request, parameters.threads, monitor);
    monitor.Advance(symmetryEnd);
    const PointModel model = MakePointModel(atoms);
    result.ofPlaces = FindPlaceSymmetry(model, SurePoses(result.placement), parameters.resolution);
    std::optional<UsedSymmetry> used = Chosen(result, request, model, parameters.resolution);
    if (used && result.placement.verdict != Verdict::NotJudged && !monitor.IsCancelled()) {
        const Together together(map, atoms, parameters, request);
        PartMonitor part(monitor, symmetryEnd, togetherEnd);
        PlacementResult placement = together.Search(*used, part);
        if (IsConvincing(placement, result.placement, used->source)) {
            together.Expand(placement, *used);
            placement.searched = result.placement.searched;
            placement.sharpShare = result.placement.sharpShare;
            placement.seemsInverted = result.placement.seemsInverted;
            result.placement = std::move(placement);
            result.used = used;
        }
    }
    result.placement.cancelled |= monitor.IsCancelled();
    if (!result.used)
        result.reason = ReasonOf(result.placement, used);
    return result;
}

} // namespace placement
