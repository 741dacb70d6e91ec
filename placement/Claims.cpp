#include "placement/Claims.h"

#include "placement/CompatibleSet.h"
#include "placement/Constants.h"
#include "placement/Contacts.h"

#include <algorithm>

namespace placement {

namespace {

class Choice {
public:
    explicit Choice(const ClaimsProblem &problem)
        : m_claims(problem.claims)
        , m_problem(problem) {
        for (const Claim &claim : m_claims) {
            m_set.weights.push_back(claim.LogOdds());
            m_set.groups.push_back(claim.part);
        }
        m_set.limits = problem.wanted;
        m_set.exclude.assign(m_claims.size(), std::vector<bool>(m_claims.size()));
        for (std::size_t a = 0; a < m_claims.size(); ++a)
            for (std::size_t b = 0; b < a; ++b)
                m_set.exclude[a][b] = m_set.exclude[b][a] = Clash(m_claims[a], m_claims[b]);
        if (!problem.connections.empty()) {
            m_set.bonus = [this](std::span<const std::size_t> items) { return Bonus(items); };
            m_set.maxBonus = connectionOdds * double(problem.connections.size());
        }
    }

    std::vector<Claim> Run() {
        const std::vector<std::size_t> best = HeaviestCompatibleSet(m_set);
        std::vector<Claim> chosen;
        for (const std::size_t i : best) {
            chosen.push_back(m_claims[i]);
            if (HasRivals(i))
                NameRivals(i, best, chosen.back());
        }
        return chosen;
    }

private:
    double Bonus(std::span<const std::size_t> items) const {
        std::vector<PartInPlace> copies = m_problem.placed;
        for (const std::size_t i : items)
            copies.push_back(m_claims[i].Copy());
        return connectionOdds * double(NumberHeld(m_problem.connections, copies));
    }

    /// Whether two claims are those of different molecules for one place.
    bool AreRivals(std::size_t a, std::size_t b) const {
        return m_set.exclude[a][b] && !m_problem.areEqual[m_claims[a].part][m_claims[b].part];
    }

    bool HasRivals(std::size_t i) const {
        for (std::size_t other = 0; other < m_claims.size(); ++other)
            if (AreRivals(i, other))
                return true;
        return false;
    }

    /// Compares the best set with the best one without the claim.
    void NameRivals(std::size_t i, const std::vector<std::size_t> &best, Claim &claim) const {
        CompatibleSetProblem without = m_set;
        without.exclude[i].assign(m_claims.size(), true);
        for (std::vector<bool> &row : without.exclude)
            row[i] = true;
        without.weights[i] = 0;
        const std::vector<std::size_t> second = HeaviestCompatibleSet(without);
        const double odds = WorthOf(second) - WorthOf(best);
        for (const std::size_t other : second)
            if (other != i && AreRivals(i, other) && std::exp(odds) > rivalOdds)
                claim.rivals.push_back(m_claims[other].part);
        if (!claim.rivals.empty())
            claim.share = 1 / (1 + std::exp(odds));
    }

    double WorthOf(const std::vector<std::size_t> &items) const {
        double worth = m_set.bonus ? m_set.bonus(items) : 0;
        for (const std::size_t i : items)
            worth += m_set.weights[i];
        return worth;
    }

    const std::vector<Claim> &m_claims;
    const ClaimsProblem &m_problem;
    CompatibleSetProblem m_set;
};

double Reach(const Claim &claim) {
    double reach = 0;
    for (const Point &residue : claim.residues)
        reach = std::max(reach, Length(residue - claim.judged.place.pose.centre));
    return reach;
}

} // namespace

Claim::Claim(std::size_t number, const PointModel &model, const JudgedPlace &place)
    : part(number)
    , judged(place)
    , residues(ResiduesAt(model, place.place.pose)) {}

void Claim::MoveTo(const Pose &pose, const PointModel &model) {
    judged.place.pose = pose;
    judged.place.translation = pose.centre - pose.rotation * model.centre;
    residues = ResiduesAt(model, pose);
}

double Claim::LogOdds() const {
    const Confidence &confidence = judged.confidence;
    // Of a sure place 1 - p is a rounding error, but not its expected number of wrong ones.
    return -std::log(wrongPerExpected) - confidence.logExpected +
           std::log(confidence.probability / confidence.place);
}

bool Clash(const Claim &a, const Claim &b) {
    const double apart = Length(a.judged.place.pose.centre - b.judged.place.pose.centre);
    return apart < Reach(a) + Reach(b) + clashDistance && Exclude(a.residues, b.residues);
}

std::vector<Claim> MostProbable(const ClaimsProblem &problem) {
    return Choice(problem).Run();
}

} // namespace placement
