#include "placement/Assembly.h"

#include "placement/CompatibleSet.h"
#include "placement/Constants.h"
#include "placement/Contacts.h"
#include "placement/DistinctPlaces.h"
#include "placement/Explained.h"
#include "placement/JointRefinement.h"
#include "placement/KnownNeighbours.h"
#include "placement/Trim.h"

#include <algorithm>
#include <limits>
#include <optional>

namespace placement {

namespace {

/// A place that a search of one part found.
struct Claim {
    std::size_t part;
    JudgedPlace judged;
    std::vector<Point> residues;

    /// Of the part's coordinates as they were given.
    Motion OwnMotion() const { return {judged.place.pose.rotation, judged.place.translation}; }

    void MoveTo(const Pose &pose, const PointModel &model) {
        judged.place.pose = pose;
        judged.place.translation = pose.centre - pose.rotation * model.centre;
        residues = ResiduesAt(model, pose);
    }

    /// ln of the odds that it is right.
    double LogOdds() const {
        const double p = judged.confidence.probability;
        // Of a sure place 1 - p is a rounding error, but not its expected number of wrong ones.
        return -std::log(wrongPerExpected) - judged.confidence.logExpected +
               std::min(0.0, std::log(p / judged.confidence.place));
    }
};

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
        , m_parts(parts)
        , m_parameters(parameters)
        , m_monitor(monitor) {
        for (const AssemblyPart &part : parts)
            m_models.push_back(MakePointModel(part.atoms));
        m_result.parts.resize(parts.size());
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
        while (true) {
            const std::vector<Claim> chosen = MostProbable(ClaimsOfAll());
            if (chosen.empty())
                return;
            for (const Claim &claim : chosen)
                m_placed.push_back(claim);
        }
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
            const JudgedPlaces found = Search(part, neighbours);
            NoteWhatIsLeft(part, found);
            if (found.cancelled || found.verdict == Verdict::NotJudged)
                continue;
            for (const JudgedPlace &judged : found.places)
                if (Claim claim{part, judged, ResiduesAt(m_models[part], judged.place.pose)}; IsFree(claim))
                    claims.push_back(std::move(claim));
        }
        return claims;
    }

    /// Whether a place is sure, and not taken by what is placed.
    bool IsFree(const Claim &claim) const {
        return claim.judged.confidence.probability >= declared &&
               std::ranges::none_of(
                   m_placed, [&](const Claim &placed) { return Exclude(claim.residues, placed.residues); });
    }

    /// The claims that together have the greatest odds, of those that do not exclude one another.
    std::vector<Claim> MostProbable(const std::vector<Claim> &claims) {
        CompatibleSetProblem problem;
        for (const Claim &claim : claims) {
            problem.weights.push_back(claim.LogOdds());
            problem.groups.push_back(claim.part);
        }
        for (std::size_t part = 0; part < m_parts.size(); ++part)
            problem.limits.push_back(Wanted(part));
        problem.exclude.assign(claims.size(), std::vector<bool>(claims.size()));
        for (std::size_t a = 0; a < claims.size(); ++a)
            for (std::size_t b = 0; b < a; ++b)
                problem.exclude[a][b] = problem.exclude[b][a] =
                    Exclude(claims[a].residues, claims[b].residues);
        std::vector<Claim> chosen;
        for (const std::size_t i : HeaviestCompatibleSet(problem))
            chosen.push_back(claims[i]);
        return chosen;
    }

    /// Searches for every copy beside all others, and takes out those that are not found again; returns their
    /// number.
    std::size_t DropDoubtful() {
        std::vector<Claim> kept;
        for (std::size_t i = 0; i < m_placed.size(); ++i) {
            const JudgedPlaces found = Search(m_placed[i].part, NeighboursBut(i));
            if (const std::optional<Claim> again = FoundAgain(m_placed[i], found))
                kept.push_back(*again);
            else
                m_result.parts[m_placed[i].part].left = Left::Doubtful;
        }
        std::swap(m_placed, kept);
        return kept.size() - m_placed.size();
    }

    /// The copy as a search beside all others finds it, where it still is the best place, or a sure one. What
    /// the others hide of it may make it less sure than it was: the greater probability counts.
    std::optional<Claim> FoundAgain(const Claim &claim, const JudgedPlaces &found) const {
        if (found.cancelled)
            return claim;
        const double same = samePlace * m_parameters.resolution;
        const auto again = std::ranges::find_if(found.places, [&](const JudgedPlace &judged) {
            return SquaredRmsd(m_models[claim.part], judged.place.pose, claim.judged.place.pose) <
                   same * same;
        });
        if (again == found.places.end() ||
            (again != found.places.begin() && again->confidence.probability < declared))
            return std::nullopt;
        Claim better{claim.part, *again, ResiduesAt(m_models[claim.part], again->place.pose)};
        if (claim.judged.confidence.probability > better.judged.confidence.probability)
            better.judged.confidence = claim.judged.confidence;
        return better;
    }

    JudgedPlaces Search(std::size_t part, const std::vector<ModelAtom> &neighbours) {
        ++m_result.searches;
        Monitor &whole = m_monitor;
        // How many searches there will be is not known: each takes a part of what is left.
        const double begin = m_share;
        m_share += (1 - m_share) / (2.0 * double(m_parts.size()) + 2);
        PartMonitor monitor(whole, begin, m_share);
        return FindJudgedPlaces(m_map, m_parts[part].atoms,
                                {.resolution = m_parameters.resolution,
                                 .threads = m_parameters.threads,
                                 .region = {},
                                 .neighbours = neighbours},
                                monitor);
    }

    /// What is in place, all copies but one.
    std::vector<ModelAtom> NeighboursBut(std::size_t leftOut) const {
        std::vector<ModelAtom> atoms = m_parameters.neighbours;
        for (std::size_t i = 0; i < m_placed.size(); ++i)
            if (const Claim &claim = m_placed[i]; i != leftOut)
                AppendMoved(m_parts[claim.part].atoms, claim.OwnMotion(), atoms);
        return atoms;
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
        const Spectrum map = TransformMap(Trimmed(m_map, largest, m_parameters.resolution, threads),
                                          m_parameters.resolution, threads);
        RefineIn(map);
        std::vector<std::vector<Scatterer>> densities;
        for (const Claim &claim : m_placed)
            densities.push_back(ScatterersOf(m_parts[claim.part].atoms, claim.OwnMotion()));
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
            copy.probability = claim.judged.confidence.probability;
            copy.logExpected = claim.judged.confidence.logExpected;
            copy.residues = claim.residues.size();
        }
    }

    VolumeView m_map;
    std::span<const AssemblyPart> m_parts;
    const AssemblyParameters &m_parameters;
    Monitor &m_monitor;
    std::vector<PointModel> m_models;
    std::vector<Point> m_standing; ///< residues of what is in place already
    std::vector<Claim> m_placed;
    double m_share = 0; ///< of the work that is done
    AssemblyResult m_result;
};

} // namespace

AssemblyResult FindAssembly(const VolumeView &map, std::span<const AssemblyPart> parts,
                            const AssemblyParameters &parameters, Monitor &monitor) {
    return AssemblySearch(map, parts, parameters, monitor).Run();
}

} // namespace placement
