#pragma once

#include <string>
#include <vector>

namespace cli {

/// Letters to insert, remove, replace or exchange with their neighbour until `a` is `b`.
std::size_t EditDistance(const std::string &a, const std::string &b);

/// "; did you mean NAME?" with the name most similar to the word; empty where none is similar.
std::string Suggestion(const std::string &word, const std::vector<std::string> &names);

} // namespace cli
