#include "placement/MapInMap.h"

#include "placement/CoarseSearch.h"
#include "placement/Constants.h"
#include "placement/Filter.h"
#include "placement/MapPoints.h"
#include "placement/Refinement.h"

#include <algorithm>
#include <stdexcept>

namespace placement {

namespace {

/// A search for a map's points, in one hand or in both.
class MapSearch {
public:
    MapSearch(const VolumeView &map, const VolumeView &moved, const PlacementParameters &parameters)
        : m_map(map)
        , m_moved(moved)
        , m_parameters(parameters)
        , m_points(PointsOf(moved, parameters.resolution, parameters.threads)) {
        if (m_points.points.empty())
            throw std::invalid_argument("the map holds no density");
        m_parameters.resolution = m_points.resolution;
        m_result.points = m_points.points.size();
        m_result.resolution = m_points.resolution;
    }

    MapInMapResult Find(Monitor &monitor) {
        PartMonitor first(monitor, 0, 0.45), second(monitor, 0.45, 0.9);
        m_result.result = FindPlaces(m_map, m_points.points, m_parameters, first);
        PlacementResult mirrored = FindPlaces(m_map, MirroredPoints(), m_parameters, second);
        m_result.given = m_result.result.confidence;
        m_result.mirrored = mirrored.confidence;
        if (!m_result.result.cancelled && !mirrored.cancelled) {
            m_result.asGiven = FirstHand(m_result.given, m_result.mirrored);
            m_result.hand = HandOf(m_result.asGiven);
        }
        m_result.motion.mirrored = m_result.hand == Hand::Mirrored;
        if (m_result.motion.mirrored)
            m_result.result = std::move(mirrored);
        return Compared(monitor);
    }

    MapInMapResult Refine(Monitor &monitor) {
        PartMonitor first(monitor, 0, 0.9);
        m_result.result = RefinePlace(m_map, m_points.points, m_parameters, first);
        return Compared(monitor);
    }

private:
    std::vector<ModelAtom> MirroredPoints() const {
        std::vector<ModelAtom> points = m_points.points;
        for (ModelAtom &point : points)
            point.position = MirroredIn(m_moved, point.position);
        return points;
    }

    static Hand HandOf(double asGiven) {
        if (asGiven >= declared)
            return Hand::AsGiven;
        return 1 - asGiven >= declared ? Hand::Mirrored : Hand::Unknown;
    }

    /// With the first place brought to where the maps agree best, and their correlation there.
    MapInMapResult Compared(Monitor &monitor) {
        if (!m_result.result.places.empty() && !m_result.result.cancelled) {
            Place &first = m_result.result.places.front();
            Polish(first);
            m_result.motion.motion = {first.pose.rotation, first.translation};
            const Lattice lattice{m_map.count, m_map.spacing, m_map.origin};
            m_result.shells =
                ShellCorrelation(m_map, MovedMap(m_moved, m_result.motion, lattice, m_parameters.threads),
                                 m_parameters.threads);
        }
        monitor.Advance(1);
        return std::move(m_result);
    }

    /// Climbs to where the maps as a whole agree best: the points left out what is dark, which counts as
    /// much.
    void Polish(Place &place) const {
        const double resolution = m_parameters.resolution;
        const Spectrum moved = TransformMap(m_moved, resolution, m_parameters.threads);
        const Spectrum map = TransformMap(m_map, resolution, m_parameters.threads);
        Volume filtered = Synthesise(map.waves, MatchedFilter(map, moved.power), mapVoxel * resolution,
                                     m_parameters.threads, Between::Linear);
        ScaleToUnitPower(filtered, m_parameters.threads);
        const PointModel model = MakePointModel(PointsInUse());
        const ScoredPose best =
            placement::Refine(filtered, AllVoxels(moved, model.centre), model.gyration, place.pose,
                              {finalSteps, firstFinalStep * resolution, longestFinalStep * resolution});
        place.pose = best.pose;
        place.translation = place.pose.centre - place.pose.rotation * model.centre;
    }

    std::vector<ModelAtom> PointsInUse() const {
        return m_result.motion.mirrored ? MirroredPoints() : m_points.points;
    }

    /// The voxels of the moved map's box, with their values as weights, about a centre.
    WeightedPoints AllVoxels(const Spectrum &moved, const Point &centre) const {
        const double resolution = m_parameters.resolution;
        const double volume = moved.box[0] * moved.box[1] * moved.box[2];
        const double voxel = std::max(mapVoxel * resolution, std::cbrt(volume / comparedVoxels));
        Volume density = Synthesise(moved.waves, LowPass(resolution), voxel, m_parameters.threads);
        ScaleToUnitPower(density, m_parameters.threads);
        const auto [nx, ny, nz] = VoxelsInBox(density, moved.box);
        const auto [lowest, highest] = RangeInBox(density, {nx, ny, nz});
        const float empty = float(emptyVoxel) * std::max(highest, -lowest);
        std::vector<Point> points;
        std::vector<double> weights;
        for (std::size_t k = 0; k < nz; ++k)
            for (std::size_t j = 0; j < ny; ++j)
                for (std::size_t i = 0; i < nx; ++i) {
                    const float value = density.values[density.Index(i, j, k)];
                    if (std::abs(value) < empty)
                        continue;
                    const Point p = density.At(i, j, k);
                    points.push_back((m_result.motion.mirrored ? MirroredIn(m_moved, p) : p) - centre);
                    weights.push_back(double(value));
                }
        return {points, weights};
    }

    static RadialCurve LowPass(double resolution) {
        return Sample(cutEnd / resolution, 0.01 / resolution,
                      [&](double k) { return CutOff(k * resolution); });
    }

    const VolumeView &m_map, &m_moved;
    PlacementParameters m_parameters;
    MapPoints m_points;
    MapInMapResult m_result;
};

} // namespace

MapInMapResult FindMapInMap(const VolumeView &map, const VolumeView &moved,
                            const PlacementParameters &parameters, Monitor &monitor) {
    return MapSearch(map, moved, parameters).Find(monitor);
}

MapInMapResult RefineMapInMap(const VolumeView &map, const VolumeView &moved,
                              const PlacementParameters &parameters, Monitor &monitor) {
    return MapSearch(map, moved, parameters).Refine(monitor);
}

} // namespace placement
