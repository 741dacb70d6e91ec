#pragma once

#include <cstddef>
#include <string>

namespace Batch {

/// A number of things: "1 residue", "3 residues".
std::string Counted(std::size_t number, const std::string &noun);

/// A length of time for people: "40 s", "2 min 10 s", "3 h 20 min", "12 days", "3.2 years".
std::string DurationText(double seconds);

} // namespace Batch
