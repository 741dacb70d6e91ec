#include "placement/Assembly.h"

#include "placement/Claims.h"
#include "placement/Constants.h"
#include "placement/Contacts.h"
#include "placement/DistinctPlaces.h"
#include "placement/EqualTurns.h"
#include "placement/Explained.h"
#include "placement/JointRefinement.h"
#include "placement/KnownNeighbours.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <set>

namespace placement {

namespace {

/// The atoms of a model after a motion; residues of different copies stay apart.
void AppendMoved(const std::vector<ModelAtom> &atoms, const Motion &motion, std::vector<ModelAtom> &to) {
    const unsigned first = to.empty() ? 0 : to.back().residue + 1;
    for (ModelAtom atom : atoms) {
        atom.position = motion * atom.position;
        atom.residue += first;
        atom.chain = 0;
        to.push_back(atom);
    }
}

class AssemblySearch {
public:
    AssemblySearch(const VolumeView &map, std::span<const AssemblyPart> parts,
                   const AssemblyParameters &parameters, Monitor &monitor)
        : m_map(map)
        , m_prepared(map, parameters.resolution, parameters.threads)
        , m_parts(parts)
        , m_parameters(parameters)
        , m_monitor(monitor) {
        for (const AssemblyPart &part : parts)
            m_models.push_back(MakePointModel(part.atoms));
        m_result.parts.resize(parts.size());
        m_takers.resize(parts.size());
        m_unsure.resize(parts.size());
        for (const PointModel &a : m_models)
            for (std::vector<bool> &row = m_areEqual.emplace_back(); const PointModel &b : m_models)
                row.push_back(AreEqual(a.points, b.points, equalTurnRmsd));
        if (!parameters.neighbours.empty()) {
            const PointModel standing = MakePointModel(parameters.neighbours);
            m_standing = ResiduesAt(standing, {RotationBy({}), standing.centre});
        }
    }

    AssemblyResult Run() {
        Grow();
        if (!m_monitor.IsCancelled() && DropDoubtful() > 0)
            Grow();
        m_result.cancelled = m_monitor.IsCancelled();
        Finish();
        m_monitor.Advance(1);
        return std::move(m_result);
    }

private:
    /// Places what is sure beside what is placed, until nothing more is.
    void Grow() {
        while (Place(ClaimsOfAll()) || Place(ClaimsAlone())) {
        }
    }

    /// Whether any of the claims is placed.
    bool Place(std::vector<Claim> claims) {
        const std::vector<Claim> chosen = MostProbable(std::move(claims));
        m_placed.insert(m_placed.end(), chosen.begin(), chosen.end());
        return !chosen.empty();
    }

    /// The sure places of all parts of which copies are wanted.
    std::vector<Claim> ClaimsOfAll() {
        std::vector<Claim> claims;
        const std::vector<ModelAtom> neighbours = NeighboursBut(m_placed.size());
        for (std::size_t part = 0; part < m_parts.size(); ++part) {
            if (Wanted(part) == 0)
                m_result.parts[part].left = Left::Nothing;
            if (Wanted(part) == 0 || m_monitor.IsCancelled())
                continue;
            const JudgedPlaces found = Search(part, neighbours, CopiesBut(m_placed.size()));
            NoteWhatIsLeft(part, found);
            m_unsure[part] = BestFree(part, found);
            AddClaims(part, found, claims);
        }
        return claims;
    }

    /// The best places that nothing placed takes, sure or not.
    std::vector<Pose> BestFree(std::size_t part, const JudgedPlaces &found) const {
        std::vector<Pose> poses;
        for (const JudgedPlace &judged : found.places)
            if (poses.size() < unsurePlaces && IsFree({part, m_models[part], judged}))
                poses.push_back(judged.place.pose);
        return poses;
    }

    /// What is found beside other parts only may be a place that a search of the whole map missed, and that
    /// is sure among the many wrong ones there: what the others leave holds few to compare with.
    std::vector<Claim> ClaimsAlone() {
        std::vector<Claim> claims;
        for (std::size_t part = 0; part < m_parts.size(); ++part)
            if (Wanted(part) > 0 && !m_placed.empty() && !m_monitor.IsCancelled())
                AddClaims(part,
                          Search(part, m_parameters.neighbours, CopiesBut(m_placed.size()), m_unsure[part]),
                          claims);
        return claims;
    }

    void AddClaims(std::size_t part, const JudgedPlaces &found, std::vector<Claim> &claims) {
        if (!found.cancelled && found.verdict != Verdict::NotJudged)
            for (const JudgedPlace &judged : found.places)
                AddSure({part, m_models[part], judged}, claims);
    }

    bool IsFree(const Claim &claim) const {
        return !Exclude(claim.residues, m_standing) &&
               std::ranges::none_of(m_placed, [&](const Claim &placed) { return Clash(claim, placed); });
    }

    /// Adds a claim that is sure, lies in the map, and was neither taken by what is placed nor dropped
    /// before.
    void AddSure(Claim claim, std::vector<Claim> &claims) {
        const auto isThere = [&](const Claim &dropped) {
            return dropped.part == claim.part && IsPlaceOf(dropped, claim.judged.place.pose);
        };
        if (claim.Probability() < declared || !IsFree(claim) || std::ranges::any_of(m_dropped, isThere))
            return;
        const auto inBox = std::ranges::count_if(claim.residues, [&](const Point &p) { return IsInBox(p); });
        if (double(inBox) < minInBox * double(claim.residues.size()))
            m_result.parts[claim.part].left = Left::CutOff;
        else
            claims.push_back(std::move(claim));
    }

    bool IsInBox(const Point &position) const {
        const Point p = position - m_map.origin;
        const std::array<double, 3> at{p.x, p.y, p.z};
        for (std::size_t axis = 0; axis < 3; ++axis)
            if (at[axis] < 0 || at[axis] > double(m_map.count[axis] - 1) * m_map.spacing[axis])
                return false;
        return true;
    }

    std::vector<Claim> MostProbable(std::vector<Claim> claims) {
        ClaimsProblem problem{.claims = std::move(claims),
                              .wanted = {},
                              .placed = CopiesBut(m_placed.size()),
                              .connections = m_parameters.connections,
                              .areEqual = m_areEqual};
        for (std::size_t part = 0; part < m_parts.size(); ++part)
            problem.wanted.push_back(Wanted(part));
        std::vector<Claim> chosen = placement::MostProbable(problem);
        for (const Claim &claim : problem.claims)
            for (const Claim &winner : chosen)
                if (claim.part != winner.part && Clash(claim, winner))
                    m_takers[claim.part].insert(winner.part);
        return chosen;
    }

    /// Searches for every copy beside all others, and takes out those that are not found again; returns their
    /// number.
    std::size_t DropDoubtful() {
        std::vector<Claim> kept;
        for (std::size_t i = 0; i < m_placed.size(); ++i) {
            const JudgedPlaces found = Search(m_placed[i].part, NeighboursBut(i), CopiesBut(i));
            if (const std::optional<Claim> again = FoundAgain(m_placed[i], found)) {
                kept.push_back(*again);
            } else {
                m_result.parts[m_placed[i].part].left = Left::Doubtful;
                m_dropped.push_back(m_placed[i]);
            }
        }
        std::swap(m_placed, kept);
        return kept.size() - m_placed.size();
    }

    /// Whether a pose of its part is the claim's place.
    bool IsPlaceOf(const Claim &claim, const Pose &pose) const {
        const double same = samePlace * m_parameters.resolution;
        return SquaredRmsd(m_models[claim.part], pose, claim.judged.place.pose) < same * same;
    }

    /// The copy as a search beside all others finds it, where it still is the best place, or a sure one. What
    /// the others hide of it may make it less sure than it was: the greater probability counts.
    std::optional<Claim> FoundAgain(const Claim &claim, const JudgedPlaces &found) const {
        if (found.cancelled)
            return claim;
        const auto again = std::ranges::find_if(
            found.places, [&](const JudgedPlace &judged) { return IsPlaceOf(claim, judged.place.pose); });
        if (again == found.places.end() ||
            (again != found.places.begin() && again->confidence.probability < declared))
            return std::nullopt;
        Claim better = claim;
        better.judged = *again;
        better.MoveTo(again->place.pose, m_models[claim.part]);
        if (claim.judged.confidence.probability > better.judged.confidence.probability)
            better.judged.confidence = claim.judged.confidence;
        return better;
    }

    /// Searches for a part beside what is in place.
    JudgedPlaces Search(std::size_t part, const std::vector<ModelAtom> &neighbours,
                        const std::vector<PartInPlace> &copies, const std::vector<Pose> &starts = {}) {
        ++m_result.searches;
        // How many searches there will be is not known: each takes a part of what is left.
        const double begin = m_share;
        m_share += (1 - m_share) / (2.0 * double(m_parts.size()) + 2);
        PartMonitor monitor(m_monitor, begin, m_share);
        JudgedPlaces found = FindJudgedPlaces(m_prepared, m_parts[part].atoms,
                                              {.resolution = m_parameters.resolution,
                                               .threads = m_parameters.threads,
                                               .region = {},
                                               .neighbours = neighbours,
                                               .starts = starts},
                                              monitor);
        if (!m_parameters.connections.empty())
            CountConnections(part, copies, found.places);
        return found;
    }

    /// Lets a place that satisfies connections compete with those only that satisfy as many.
    void CountConnections(std::size_t part, std::vector<PartInPlace> copies,
                          std::vector<JudgedPlace> &places) const {
        const std::size_t without = NumberHeld(m_parameters.connections, copies);
        std::vector<std::size_t> held;
        copies.push_back({});
        for (const JudgedPlace &place : places) {
            copies.back() = {part, {place.place.pose.rotation, place.place.translation}};
            held.push_back(NumberHeld(m_parameters.connections, copies));
        }
        for (std::size_t i = 0; i < places.size(); ++i) {
            if (held[i] <= without)
                continue;
            const auto asMany =
                std::ranges::count_if(held, [&](std::size_t other) { return other >= held[i]; });
            Confidence &confidence = places[i].confidence;
            const double turns = confidence.probability / confidence.place;
            confidence.logExpected += std::log(double(asMany) / double(held.size()));
            confidence.place = 1 / (1 + wrongPerExpected * std::exp(confidence.logExpected));
            confidence.probability = turns * confidence.place;
        }
    }

    /// What is in place, all copies but one.
    std::vector<ModelAtom> NeighboursBut(std::size_t leftOut) const {
        std::vector<ModelAtom> atoms = m_parameters.neighbours;
        for (std::size_t i = 0; i < m_placed.size(); ++i)
            if (const Claim &claim = m_placed[i]; i != leftOut)
                AppendMoved(m_parts[claim.part].atoms, claim.Copy().motion, atoms);
        return atoms;
    }
    std::vector<PartInPlace> CopiesBut(std::size_t leftOut) const {
        std::vector<PartInPlace> copies;
        for (std::size_t i = 0; i < m_placed.size(); ++i)
            if (i != leftOut)
                copies.push_back(m_placed[i].Copy());
        return copies;
    }

    std::size_t Placed(std::size_t part) const {
        return std::size_t(std::ranges::count(m_placed, part, &Claim::part));
    }
    std::size_t Wanted(std::size_t part) const {
        constexpr std::size_t any = std::numeric_limits<std::size_t>::max();
        return m_parts[part].copies.value_or(any) - Placed(part);
    }

    void NoteWhatIsLeft(std::size_t part, const JudgedPlaces &found) {
        PartOutcome &outcome = m_result.parts[part];
        outcome.probability = found.places.empty() ? 0 : found.places.front().confidence.probability;
        if (found.cancelled)
            outcome.left = Left::NotFinished;
        else if (found.verdict == Verdict::NotJudged)
            outcome.left = Left::NotJudged;
        else if (found.verdict == Verdict::TurnUnsure)
            outcome.left = Left::TurnUnsure;
        else if (outcome.left != Left::Doubtful)
            outcome.left = Left::NothingFound;
    }

    /// Refines all copies together, and tells what each of them explains of the map.
    void Refine() {
        const unsigned threads = m_parameters.threads;
        const PointModel &largest = *std::ranges::max_element(m_models, {}, &PointModel::radius);
        const std::shared_ptr<const MapPart> part = m_prepared.PartFor(largest);
        const Spectrum &map = part->MapSpectrum();
        RefineIn(map);
        std::vector<std::vector<Scatterer>> densities;
        for (const Claim &claim : m_placed)
            densities.push_back(ScatterersOf(m_parts[claim.part].atoms, claim.Copy().motion));
        densities.push_back(ScatterersOf(m_parameters.neighbours));
        const std::vector<double> shares = ExplainedShares(map, densities, threads);
        for (std::size_t i = 0; i < m_placed.size(); ++i)
            m_result.copies[i].explained = shares[i];
        for (const double share : shares)
            m_result.explained += share;
    }

    void RefineIn(Spectrum map) {
        KnownNeighbours(m_parameters.neighbours).SubtractFrom(map, m_parameters.threads);
        std::vector<Body> bodies;
        for (const Claim &claim : m_placed)
            bodies.push_back({m_parts[claim.part].atoms, &m_models[claim.part], claim.judged.place.pose});
        PartMonitor monitor(m_monitor, m_share, 1);
        const std::vector<Pose> poses =
            RefineTogether(map, bodies, m_standing, m_parameters.threads, monitor);
        for (std::size_t i = 0; i < m_placed.size(); ++i) {
            Claim &claim = m_placed[i];
            const PointModel &model = m_models[claim.part];
            m_result.copies[i].moved = std::sqrt(SquaredRmsd(model, poses[i], claim.judged.place.pose));
            claim.MoveTo(poses[i], model);
        }
    }

    /// Counts contacts and clashes of every copy with all others and what stood already.
    void CountContacts() {
        for (std::size_t i = 0; i < m_placed.size(); ++i) {
            std::vector<Point> others = m_standing;
            for (std::size_t j = 0; j < m_placed.size(); ++j)
                if (j != i)
                    others.insert(others.end(), m_placed[j].residues.begin(), m_placed[j].residues.end());
            const Contacts contacts = StandingResidues(others).ContactsOf(m_placed[i].residues);
            m_result.copies[i].contacts = contacts.contacts;
            m_result.copies[i].clashes = contacts.clashes;
        }
    }

    void Finish() {
        std::ranges::stable_sort(m_placed, std::ranges::less(), &Claim::part);
        m_result.copies.resize(m_placed.size());
        if (!m_placed.empty())
            Refine();
        CountContacts();
        for (std::size_t i = 0; i < m_placed.size(); ++i) {
            const Claim &claim = m_placed[i];
            PlacedCopy &copy = m_result.copies[i];
            copy.part = claim.part;
            copy.copy = m_result.parts[claim.part].placed++;
            copy.pose = claim.judged.place.pose;
            copy.translation = claim.judged.place.translation;
            copy.score = claim.judged.place.score;
            copy.probability = claim.Probability();
            copy.logExpected = claim.judged.confidence.logExpected;
            copy.residues = claim.residues.size();
            copy.rivals = claim.rivals;
        }
        NameTakers();
    }

    /// Of a part that nothing is left for, because others stand in its sure places.
    void NameTakers() {
        for (std::size_t part = 0; part < m_parts.size(); ++part)
            if (PartOutcome &outcome = m_result.parts[part];
                outcome.placed == 0 && !m_takers[part].empty() &&
                (outcome.left == Left::NothingFound || outcome.left == Left::CutOff)) {
                outcome.left = Left::Taken;
                outcome.rivals.assign(m_takers[part].begin(), m_takers[part].end());
            }
    }

    VolumeView m_map;
    PreparedMap m_prepared;
    std::span<const AssemblyPart> m_parts;
    const AssemblyParameters &m_parameters;
    Monitor &m_monitor;
    std::vector<PointModel> m_models;
    std::vector<std::vector<bool>> m_areEqual;   ///< of each pair of parts, see Claims.h
    std::vector<std::set<std::size_t>> m_takers; ///< of each part, those that stand in its sure places
    std::vector<Point> m_standing;               ///< residues of what is in place already
    std::vector<Claim> m_placed;
    std::vector<Claim> m_dropped;            ///< that the others did not leave sure
    std::vector<std::vector<Pose>> m_unsure; ///< of each part, the best free places of its last search
    double m_share = 0;                      ///< of the work that is done
    AssemblyResult m_result;
};

} // namespace

AssemblyResult FindAssembly(const VolumeView &map, std::span<const AssemblyPart> parts,
                            const AssemblyParameters &parameters, Monitor &monitor) {
    return AssemblySearch(map, parts, parameters, monitor).Run();
}

} // namespace placement
