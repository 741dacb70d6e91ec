#include "placement/CompatibleSet.h"

#include <algorithm>
#include <numeric>

namespace placement {

namespace {

constexpr std::size_t maxSets = 300'000;

class BranchAndBound {
public:
    explicit BranchAndBound(const CompatibleSetProblem &problem)
        : m_problem(problem)
        , m_left(problem.limits) {}

    std::vector<std::size_t> Run() {
        std::vector<std::size_t> items(m_problem.weights.size());
        std::iota(items.begin(), items.end(), 0);
        // Heavy items first: good sets are found early, and cut off the others.
        std::ranges::stable_sort(items, std::ranges::greater(),
                                 [&](std::size_t i) { return m_problem.weights[i]; });
        Extend(items, 0);
        std::ranges::sort(m_best);
        return m_best;
    }

private:
    /// Tries every set that adds some of the items, heaviest first, to the chosen ones.
    void Extend(std::vector<std::size_t> items, double weight) {
        ++m_sets;
        if (const double worth = weight + Bonus(); worth > m_bestWorth) {
            m_bestWorth = worth;
            m_best = m_chosen;
        }
        while (!items.empty() && m_sets < maxSets &&
               weight + Bound(items) + m_problem.maxBonus > m_bestWorth) {
            const std::size_t item = items.front();
            items.erase(items.begin());
            Choose(item, items, weight);
        }
    }

    void Choose(std::size_t item, const std::vector<std::size_t> &others, double weight) {
        std::size_t &left = m_left[m_problem.groups[item]];
        --left;
        m_chosen.push_back(item);
        std::vector<std::size_t> compatible;
        std::ranges::copy_if(others, std::back_inserter(compatible), [&](std::size_t other) {
            return !m_problem.exclude[item][other] && m_left[m_problem.groups[other]] > 0;
        });
        Extend(std::move(compatible), weight + m_problem.weights[item]);
        m_chosen.pop_back();
        ++left;
    }

    /// At least the weight that a set of these items can have.
    double Bound(const std::vector<std::size_t> &items) const {
        std::vector<std::vector<std::size_t>> cliques;
        double bound = 0;
        for (const std::size_t item : items) {
            const auto isOneOf = [&](const std::vector<std::size_t> &clique) {
                return std::ranges::all_of(clique,
                                           [&](std::size_t other) { return AreAlternatives(item, other); });
            };
            if (const auto clique = std::ranges::find_if(cliques, isOneOf); clique != cliques.end()) {
                clique->push_back(item);
            } else {
                cliques.push_back({item});
                bound += m_problem.weights[item]; // the heaviest of its clique, as it comes first
            }
        }
        return bound;
    }

    bool AreAlternatives(std::size_t a, std::size_t b) const {
        const bool lastOfGroup =
            m_problem.groups[a] == m_problem.groups[b] && m_left[m_problem.groups[a]] == 1;
        return m_problem.exclude[a][b] || lastOfGroup;
    }

    double Bonus() const { return m_problem.bonus ? m_problem.bonus(m_chosen) : 0; }

    const CompatibleSetProblem &m_problem;
    std::vector<std::size_t> m_left; ///< of each group, items that may still be chosen
    std::vector<std::size_t> m_chosen, m_best;
    double m_bestWorth = -1;
    std::size_t m_sets = 0;
};

} // namespace

std::vector<std::size_t> HeaviestCompatibleSet(const CompatibleSetProblem &problem) {
    return BranchAndBound(problem).Run();
}

} // namespace placement
