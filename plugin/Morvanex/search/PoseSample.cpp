#include "search/PoseSample.h"

#include "base/Statistics.h"
#include "fit/Angles.h"
#include "search/Scoring.h"

#include <QTextStream>

#include <algorithm>

using namespace VARNO;

namespace search {

namespace {

/// A pose of the search by its place: the angle's index about the axis, counted from 1; the identity is angle
/// 0.
struct Place {
    std::uint64_t angle;
    std::size_t axis, offset;
    std::size_t order; ///< in the sample
};

/// Every pose whose number is a multiple of total / size, rounded down, in the order of their angles.
std::vector<Place> ChoosePlaces(const fit::Preparation &fit, std::uint64_t size) {
    const std::uint64_t offsets = fit.offsets.size();
    const std::uint64_t angles = fit::CountAngles(fit.angleStep);
    const std::uint64_t total = offsets * (1 + fit.axes.size() * angles);
    size = std::min(size, total);
    std::vector<Place> places;
    for (std::uint64_t i = 0; i < size; ++i) {
        const std::uint64_t number = i * (total / size) + i * (total % size) / size;
        const std::uint64_t turn = number / offsets;
        Place place{0, 0, std::size_t(number % offsets), std::size_t(i)};
        if (turn > 0) {
            place.angle = (turn - 1) % angles + 1;
            place.axis = std::size_t((turn - 1) / angles);
        }
        places.push_back(place);
    }
    std::ranges::sort(places, {}, [](const Place &p) { return std::pair(p.angle, p.order); });
    return places;
}

/// The scores of the poses, in the order of their numbers; a collided pose has -1.0.
std::vector<double> ScorePlaces(const fit::Preparation &fit, const std::vector<Place> &places) {
    std::vector<double> scores(places.size());
    std::vector<TaggedPoint> moved(fit.target.points.size());
    std::vector<double> noDistances;
    QTextStream noLog;
    double angle = 0;
    std::uint64_t reached = 0;
    for (const Place &place : places) {
        for (; reached < place.angle; ++reached)
            angle += fit.angleStep;
        Quaternion rotation;
        rotation.Set(angle, place.angle == 0 ? Vertex(1, 0, 0, false) : fit.axes[place.axis]);
        const Vertex translation = TranslationAbout(fit.target.centre, rotation, fit.offsets[place.offset]);
        scores[place.order] = DoScores(rotation, translation, fit.map, fit.target.points, fit.keepOut, {},
                                       moved, noDistances, noLog, false)
                                  .score;
    }
    return scores;
}

} // namespace

PoseSample SamplePoses(const fit::Preparation &fit, std::uint64_t size) {
    std::vector<double> scores = ScorePlaces(fit, ChoosePlaces(fit, size));
    std::erase(scores, -1.0);
    const base::Statistics statistics = base::StatisticsOf(scores);
    return {statistics.count, statistics.mean, statistics.SampleDeviation()};
}

} // namespace search
