#pragma once

#include "placement/CoarseSearch.h"
#include "placement/Confidence.h"
#include "placement/Motion.h"
#include "placement/PreparedMap.h"

namespace placement {

/// What a search is asked to do.
struct PlacementParameters {
    double resolution = 0;        ///< of the map, Å
    unsigned threads = 1;         ///< at least 1; the result does not depend on it
    std::optional<Sphere> region; ///< where the model's centre may lie; anywhere where it is not set
    /// Atoms of what is already in place, see KnownNeighbours.h.
    std::vector<ModelAtom> neighbours{};
    /// Motions that lay the map upon itself, the one that moves nothing among them. Places that they bring
    /// upon one another are one, and no place overlaps its own copies without being them.
    std::vector<Motion> mates{};
    std::vector<Pose> starts{}; ///< that are refined with what FindJudgedPlaces finds itself
    /// Whether FindPlaces asks the filter without the model first, and leaves out the matched one where wrong
    /// places are expected to score as well as the best: in a map that many models share, that filter is
    /// cheaper. What is found stays the same, since both filters have to be sure of a place.
    bool ruleOut = false;
};

/// One place that a search found.
struct Place {
    Pose pose;              ///< about the model's centre
    Point translation;      ///< x' = rotation·x + translation acts on the coordinates as they were given
    double score = 0;       ///< the log-likelihood ratio's sum, on a scale of the map's own
    double probability = 0; ///< that a wrong place does not score as well; turns in the same hole left out
    double logExpected = 0; ///< ln of the number of wrong places that are expected to score as well
    /// Part of the model, by electrons, that lies in the map's density; in what the neighbours leave of it.
    double inDensity = 0;
    double overlap = 0;     ///< part of the model, by electrons, within 4 Å of the neighbours' residues
    bool otherTurn = false; ///< of the first place, about its centre, which scores nearly as well
};

enum class Verdict {
    Placed,       ///< the best place is right, with the stated probability
    TurnUnsure,   ///< the place is right, but other turns about its centre score as well
    NothingFound, ///< no place stands out
    RuledOut,     ///< no place stands out by the filter without the model; the matched one was not asked
    NotJudged,    ///< the map is sharpened so much that its scores say nothing of chance
    NoDensity,    ///< the map is constant, or has no density where the model may lie
    Refined,      ///< one place, the best near the model's own; nothing is said of others
};

struct PlacementResult {
    Verdict verdict = Verdict::NoDensity;
    Point start; ///< the model's centre as it was given, Å
    /// Of the first place: the lesser one of what the matched filter and the filter without the model say,
    /// each among the places that it finds. A wrong place seldom stands out by both, and none is sure from
    /// which the other filter climbs to another place.
    Confidence confidence;
    /// Distinct ones, best first. A place that overlaps a better one is no further copy and left out, but for
    /// other turns of the first one where its turn is unsure.
    std::vector<Place> places;
    WrongTail tail; ///< of the wrong places' scores, by the filter that gave the scores
    /// Of the first place: for each residue the mean of the filtered map at its electrons, in standard
    /// deviations of that map. Low values tell which part of the model fits badly.
    std::vector<double> profile;
    double predictedSignal = 0;            ///< what was to be expected before the search, see Forecast.h
    double sharpShare = 0;                 ///< part of the map's power beyond its resolution
    bool seemsInverted = false;            ///< the map's extremes lie below its background: dark density
    std::array<std::size_t, 3> searched{}; ///< voxels of the part of the map that matters, see Trim.h
    double scanResolution = 0;             ///< Å
    std::size_t rotations = 0;             ///< that were scanned
    double rotationStep = 0;               ///< between them, radians
    bool cancelled = false;
};

/// How many of the places are called found, copies of the model each.
std::size_t FoundCopies(const PlacementResult &result);

/// Finds where a model belongs in a map, without a start: everywhere in the map and in every turn.
///
/// The steps: the map's spectrum and the filter (Spectrum.h, Filter.h), a scan of a coarse level
/// (CoarseSearch.h), refinement through finer ones (Refinement.h), distinct places and what chance has to say
/// of the best (DistinctPlaces.h, Confidence.h). A model larger than the map is no error: what lies outside
/// scores nothing. Throws std::invalid_argument for a model without atoms or a resolution that is not
/// positive, std::bad_alloc where memory does not suffice.
PlacementResult FindPlaces(const VolumeView &map, const std::vector<ModelAtom> &atoms,
                           const PlacementParameters &parameters, Monitor &monitor);
/// Likewise, in a map that is prepared for this resolution; throws std::invalid_argument for another one.
PlacementResult FindPlaces(PreparedMap &map, const std::vector<ModelAtom> &atoms,
                           const PlacementParameters &parameters, Monitor &monitor);

/// A place of a search, and how sure it is by itself.
struct JudgedPlace {
    Place place;
    Confidence confidence; ///< what both filters agree on, the other turns at this place included
};

/// All places that a search found, as the choice among the places of several models needs them.
struct JudgedPlaces {
    std::vector<JudgedPlace> places;      ///< distinct ones, best first, those that overlap a better one too
    Verdict verdict = Verdict::NoDensity; ///< of the first one
    bool cancelled = false;               ///< the search is not finished, and says nothing
};

/// Searches as FindPlaces does and judges every place by both filters. Throws as it does.
JudgedPlaces FindJudgedPlaces(PreparedMap &map, const std::vector<ModelAtom> &atoms,
                              const PlacementParameters &parameters, Monitor &monitor);

/// Brings a model that stands nearly right to the best place near by: its own turn and those up to 30° off
/// it, its own centre and those up to 10 Å or half its radius away are tried on a coarse level, and the best
/// climb through finer ones to the filter itself, as those of a search do. `region` is left out of account.
/// Throws as FindPlaces does.
PlacementResult RefinePlace(const VolumeView &map, const std::vector<ModelAtom> &atoms,
                            const PlacementParameters &parameters, Monitor &monitor);

} // namespace placement
