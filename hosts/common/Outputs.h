#pragma once

#include <string>
#include <vector>

namespace hosts {

/// Checks the files that a command is going to write, before it computes anything; changes nothing. Throws
/// FileError for one that cannot be written, is one of the inputs, or is named twice, even under another
/// path.
void CheckOutputs(const std::vector<std::string> &outputs, const std::vector<std::string> &inputs);

} // namespace hosts
