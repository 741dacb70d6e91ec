#include "placement/Hand.h"

#include "placement/Constants.h"

namespace placement {

namespace {

/// Mirrors through the plane x = 0.
Point MirrorImage(const Point &p) {
    return {-p.x, p.y, p.z};
}

/// The rotation as it looks in the mirror.
Matrix MirrorImage(const Matrix &r) {
    return {r[0], -r[1], -r[2], -r[3], r[4], r[5], -r[6], r[7], r[8]};
}

/// ln q, also where q is nearly 0; a search without a tail leaves all to chance.
double LogChance(const Confidence &confidence) {
    if (!(confidence.place > 0))
        return 0;
    const double logWrong = std::log(handWrongPerExpected) + confidence.logExpected;
    return logWrong > 0 ? -std::log1p(std::exp(-logWrong)) : logWrong - std::log1p(std::exp(logWrong));
}

/// The mirror image of a model finds the same places in the map as the model does in the mirrored map.
PlacementResult FindInMirrored(const VolumeView &map, std::vector<ModelAtom> atoms,
                               const PlacementParameters &parameters, Monitor &monitor) {
    for (ModelAtom &atom : atoms)
        atom.position = MirrorImage(atom.position);
    PlacementResult result = FindPlaces(map, atoms, parameters, monitor);
    result.start = MirrorImage(result.start);
    const Point faces{2 * map.origin.x + double(map.count[0] - 1) * map.spacing[0], 0, 0};
    for (Place &place : result.places) {
        place.pose.rotation = MirrorImage(place.pose.rotation);
        place.pose.centre = faces + MirrorImage(place.pose.centre);
        place.translation = faces + MirrorImage(place.translation);
    }
    return result;
}

bool IsJudged(const PlacementResult &result) {
    return !result.cancelled && result.verdict != Verdict::NotJudged && result.verdict != Verdict::NoDensity;
}

} // namespace

double FirstHand(const Confidence &first, const Confidence &second) {
    return 1 / (1 + std::exp(LogChance(first) - LogChance(second)));
}

HandResult FindHand(const VolumeView &map, const std::vector<ModelAtom> &atoms,
                    const PlacementParameters &parameters, Monitor &monitor) {
    HandResult result;
    PartMonitor first(monitor, 0, 0.5), second(monitor, 0.5, 1);
    result.given = FindPlaces(map, atoms, parameters, first);
    result.mirrored = FindInMirrored(map, atoms, parameters, second);
    if (!IsJudged(result.given) || !IsJudged(result.mirrored))
        return result;
    result.asGiven = FirstHand(result.given.confidence, result.mirrored.confidence);
    if (result.asGiven >= declared)
        result.hand = Hand::AsGiven;
    else if (1 - result.asGiven >= declared)
        result.hand = Hand::Mirrored;
    return result;
}

} // namespace placement
