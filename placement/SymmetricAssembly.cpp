#include "placement/SymmetricAssembly.h"

#include "placement/Constants.h"
#include "placement/Contacts.h"
#include "placement/Explained.h"
#include "placement/Trim.h"

#include <algorithm>

namespace placement {

namespace {

PlacedCopy CopyAt(const Place &place, std::size_t number) {
    PlacedCopy copy;
    copy.copy = number;
    copy.pose = place.pose;
    copy.translation = place.translation;
    copy.score = place.score;
    copy.probability = place.probability;
    copy.logExpected = place.logExpected;
    return copy;
}

/// Why no more copies stand than do.
Left LeftBy(const PlacementResult &result) {
    if (result.cancelled)
        return Left::NotFinished;
    if (result.verdict == Verdict::NotJudged)
        return Left::NotJudged;
    return result.verdict == Verdict::TurnUnsure ? Left::TurnUnsure : Left::NothingFound;
}

void CountContacts(std::vector<PlacedCopy> &copies, const PointModel &model) {
    for (PlacedCopy &copy : copies) {
        std::vector<Point> others;
        for (const PlacedCopy &other : copies)
            if (&other != &copy) {
                const std::vector<Point> residues = ResiduesAt(model, other.pose);
                others.insert(others.end(), residues.begin(), residues.end());
            }
        const std::vector<Point> own = ResiduesAt(model, copy.pose);
        const Contacts contacts = StandingResidues(others).ContactsOf(own);
        copy.residues = own.size();
        copy.contacts = contacts.contacts;
        copy.clashes = contacts.clashes;
    }
}

} // namespace

AssemblyResult AssemblyOf(const SymmetricResult &found, const VolumeView &map,
                          const std::vector<ModelAtom> &atoms, const PlacementParameters &parameters) {
    const PlacementResult &placement = found.placement;
    const PointModel model = MakePointModel(atoms);
    AssemblyResult result;
    PartOutcome &outcome = result.parts.emplace_back();
    const bool isFound = placement.verdict == Verdict::Placed;
    for (const Place &place : placement.places)
        if (isFound && !place.otherTurn && place.probability >= declared)
            result.copies.push_back(CopyAt(place, result.copies.size()));
        else
            outcome.probability = std::max(outcome.probability, place.probability);
    outcome.placed = result.copies.size();
    outcome.left = LeftBy(placement);
    result.cancelled = placement.cancelled;
    CountContacts(result.copies, model);
    std::vector<std::vector<Scatterer>> densities;
    for (const PlacedCopy &copy : result.copies)
        densities.push_back(ScatterersOf(atoms, {copy.pose.rotation, copy.translation}));
    const Spectrum spectrum = TransformMap(Trimmed(map, model, parameters.resolution, parameters.threads),
                                           parameters.resolution, parameters.threads);
    const std::vector<double> shares = ExplainedShares(spectrum, densities, parameters.threads);
    for (std::size_t i = 0; i < result.copies.size(); ++i) {
        result.copies[i].explained = shares[i];
        result.explained += shares[i];
    }
    return result;
}

} // namespace placement
