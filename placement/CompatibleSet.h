#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <vector>

namespace placement {

/// Items of which some exclude one another.
struct CompatibleSetProblem {
    std::vector<double> weights;            ///< of the items, at least 0
    std::vector<std::size_t> groups;        ///< of each item, an index into `limits`
    std::vector<std::size_t> limits;        ///< how many items of a group may be chosen
    std::vector<std::vector<bool>> exclude; ///< of each pair of items; symmetric
    /// What a set of items is worth beside its weights, from 0 to `maxBonus`; none where it is not set.
    std::function<double(std::span<const std::size_t> items)> bonus;
    double maxBonus = 0;
};

/// The items that together weigh the most and do not exclude one another, in ascending order: the set of the
/// maximum weight by branch and bound. What is left can add no more than the heaviest item of each clique of
/// items that exclude one another. After 300,000 sets the best one so far is taken.
std::vector<std::size_t> HeaviestCompatibleSet(const CompatibleSetProblem &problem);

} // namespace placement
