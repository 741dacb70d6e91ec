#include "cli/Suggestion.h"

#include <algorithm>

namespace cli {

std::size_t EditDistance(const std::string &a, const std::string &b) {
    // distance[i][j]: between the first i letters of a and the first j of b ("optimal string alignment").
    std::vector distance(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i)
        for (std::size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                distance[i][j] = i + j;
                continue;
            }
            distance[i][j] = std::min({distance[i - 1][j] + 1, distance[i][j - 1] + 1,
                                       distance[i - 1][j - 1] + (a[i - 1] != b[j - 1])});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                distance[i][j] = std::min(distance[i][j], distance[i - 2][j - 2] + 1);
        }
    return distance[a.size()][b.size()];
}

std::string Suggestion(const std::string &word, const std::vector<std::string> &names) {
    const auto distanceTo = [&](const std::string &name) { return EditDistance(word, name); };
    const auto best = std::ranges::min_element(names, {}, distanceTo);
    // A slip of the finger or two: one letter in four, the longest names three.
    constexpr std::size_t longest = 64;
    if (best == names.end() || word.size() > longest ||
        distanceTo(*best) > std::clamp<std::size_t>(best->size() / 4, 1, 3))
        return {};
    return "; did you mean " + *best + "?";
}

} // namespace cli
