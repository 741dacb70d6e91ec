#include "hosts/common/SymmetryRecord.h"

#include "base/Numbers.h"
#include "base/Words.h"

#include "hosts/common/PlaceRecord.h"

using namespace placement;

namespace hosts {

namespace {

std::string Fixed(double value, int decimals) {
    return base::PlainFixed(value, decimals);
}

std::string PointText(const Point &p, int decimals) {
    return Fixed(p.x, decimals) + ", " + Fixed(p.y, decimals) + ", " + Fixed(p.z, decimals);
}

Point AxisOf(const Pose &frame) {
    return frame.rotation * Point{0, 0, 1};
}

bool HasCentre(const Symmetry &symmetry) {
    return symmetry.kind != SymmetryKind::Cyclic && !symmetry.IsHelical();
}

/// How far a point is from the centre, or from an axis without one, Å.
double DistanceFrom(const Symmetry &symmetry, const Pose &frame, const Point &p) {
    const Point off = p - frame.centre, axis = AxisOf(frame);
    return Length(HasCentre(symmetry) ? off : off - Dot(off, axis) * axis);
}

/// "C5", "a helix with a rise of 27.59 Å and a twist of -166.62°".
std::string PlainName(const Symmetry &symmetry) {
    if (!symmetry.IsHelical())
        return NameOf(symmetry);
    const std::string about =
        symmetry.fold > 1 ? " and C" + std::to_string(symmetry.fold) + " about its axis" : "";
    return "a helix with a rise of " + Fixed(symmetry.rise, 2) + " Å, a twist of " +
           Fixed(symmetry.twist, 2) + "°" + about;
}

/// What was asked for, "C7"; empty where any symmetry was.
std::string AskedName(const SymmetryRequest &request) {
    if (!request.symmetry)
        return "";
    return request.IsAnyHelix() ? "a helix" : PlainName(*request.symmetry);
}

std::string Correlations(const MapSymmetry &map) {
    return "correlation " + Fixed(map.correlation, 2) + " after its operators, at least " +
           Fixed(map.weakest, 2) + ", and up to " + Fixed(map.wrong, 2) + " after other motions, at " +
           Fixed(map.resolution, 1) + " Å (probability " + AboveOrOf(map.probability) + ")";
}

/// What the map says by itself.
std::string MapText(const SymmetryRecord &record) {
    const MapSymmetry &map = record.ofMap;
    const std::string asked = AskedName(record.request);
    if (map.found)
        return PlainName(map.symmetry) + ", of the map: " + Correlations(map);
    if (record.used && record.used->source == SymmetrySource::Both)
        return PlainName(*map.tried) + ", of the map, and the places agree: " + Correlations(map);
    if (record.used && record.used->source == SymmetrySource::Given)
        return PlainName(*map.tried) +
               ", as given; of the map by itself it is not sure: " + Correlations(map);
    if (record.reason == NotUsed::NotFinished && !map.tried)
        return "not looked for to the end";
    const std::string none = asked.empty() ? "none" : "the map does not have " + asked;
    if (!map.tried)
        return none + ": no motion lays it upon itself";
    return none + ": " + (asked.empty() ? "the nearest is " + PlainName(*map.tried) + ", " : "") +
           Correlations(map);
}

std::string PlacesText(const PlaceSymmetry &places) {
    if (places.symmetry.IsNone())
        return "the " + base::Counted(places.places, "place") + " found without it have none";
    return "the " + base::Counted(places.places, "place") + " found without it have " +
           PlainName(places.symmetry) + ", RMSD " + Fixed(places.rmsd, 2) + " Å";
}

std::string FrameText(const SymmetryRecord &record) {
    const UsedSymmetry &used = *record.used;
    const auto from = [&](const Point &p) {
        return Fixed(DistanceFrom(used.symmetry, used.frame, p), 1) + " Å";
    };
    return std::string(HasCentre(used.symmetry) ? "centre " : "through ") + PointText(used.frame.centre, 2) +
           " Å, main axis along " + PointText(AxisOf(used.frame), 4) + ", in the map's coordinates; " +
           from(record.middle) + " from the map's middle voxel, " + from({}) +
           " from the coordinates' origin";
}

std::string CopiesText(const UsedSymmetry &used) {
    return base::Counted(used.places, "place") + " found in the map's mean over all copies, " +
           std::to_string(used.copies) + " with those that follow";
}

std::string NotUsedText(NotUsed reason) {
    switch (reason) {
    case NotUsed::NotFound:
        return "the model is placed without a symmetry";
    case NotUsed::NoPlace:
        return "in the mean over its copies no place stands out: the model is placed without it";
    case NotUsed::NotJudged:
        return "the map is too sharp for it to be used";
    case NotUsed::NotFinished:
        return "it is not used, since the search was stopped";
    }
    return {};
}

std::string SourceName(SymmetrySource source) {
    switch (source) {
    case SymmetrySource::Map:
        return "map";
    case SymmetrySource::Places:
        return "places";
    case SymmetrySource::Both:
        return "both";
    case SymmetrySource::Given:
        return "given";
    }
    return {};
}

Json NumberOrNull(bool known, double number) {
    return known ? Json(number) : Json(nullptr);
}

Json MapJson(const MapSymmetry &map) {
    const Symmetry &symmetry = map.tried ? *map.tried : map.symmetry;
    return {{"found", map.found},
            {"name", symmetry.IsNone() ? Json(nullptr) : Json(NameOf(symmetry))},
            {"correlation", map.correlation},
            {"weakest", map.weakest},
            {"wrong", map.wrong},
            {"probability", map.probability},
            {"logExpected", map.logExpected},
            {"resolution", map.resolution}};
}

Json PlacesJson(const PlaceSymmetry &places) {
    return {{"name", places.symmetry.IsNone() ? Json(nullptr) : Json(NameOf(places.symmetry))},
            {"places", places.places},
            {"share", places.share},
            {"rmsd", places.rmsd}};
}

} // namespace

SymmetryRecord MakeSymmetryRecord(const SymmetryRequest &request, const SymmetricResult &result,
                                  const VolumeView &map) {
    SymmetryRecord record{request, result.ofMap, result.ofPlaces, result.used, result.reason, map.origin};
    const auto voxel = [&](std::size_t axis) {
        const std::size_t half = map.count[axis] / 2;
        return double(half) * map.spacing[axis];
    };
    record.middle = map.origin + Point{voxel(0), voxel(1), voxel(2)};
    return record;
}

std::vector<std::string> SymmetryTexts(const SymmetryRecord &record) {
    std::vector<std::string> texts{MapText(record)};
    if (record.ofPlaces.places > 1)
        texts.push_back(PlacesText(record.ofPlaces));
    if (!record.used) {
        texts.push_back(NotUsedText(record.reason));
        return texts;
    }
    if (record.used->symmetry.IsHelical())
        texts.push_back("refined to a rise of " + Fixed(record.used->symmetry.rise, 2) +
                        " Å and a twist of " + Fixed(record.used->symmetry.twist, 2) + "°");
    texts.push_back(FrameText(record));
    texts.push_back(CopiesText(*record.used));
    return texts;
}

Json SymmetryJson(const SymmetryRecord &record) {
    const UsedSymmetry none, &used = record.used ? *record.used : none;
    const bool isHelix = used.symmetry.IsHelical();
    return {
        {"asked", record.request.symmetry
                      ? Json(record.request.IsAnyHelix() ? "H" : NameOf(*record.request.symmetry))
                      : Json("auto")},
        {"name", record.used ? Json(NameOf(used.symmetry)) : Json(nullptr)},
        {"statement", SymmetryTexts(record)},
        {"source", record.used ? Json(SourceName(used.source)) : Json(nullptr)},
        {"fold", record.used ? Json(used.symmetry.fold) : Json(nullptr)},
        {"rise", NumberOrNull(isHelix, used.symmetry.rise)},
        {"twist", NumberOrNull(isHelix, used.symmetry.twist)},
        {"axis", record.used ? PointOf(AxisOf(used.frame)) : Json(nullptr)},
        {"centre", record.used ? PointOf(used.frame.centre) : Json(nullptr)},
        {"rotation", record.used ? RotationOf(used.frame.rotation) : Json(nullptr)},
        {"fromMiddle",
         NumberOrNull(record.used.has_value(), DistanceFrom(used.symmetry, used.frame, record.middle))},
        {"fromOrigin", NumberOrNull(record.used.has_value(), DistanceFrom(used.symmetry, used.frame, {}))},
        {"places", used.places},
        {"copies", used.copies},
        {"evidence", {{"map", MapJson(record.ofMap)}, {"places", PlacesJson(record.ofPlaces)}}}};
}

} // namespace hosts
