#pragma once

#include <functional>
#include <string>

namespace hosts {

/// Takes a warning, one line of plain text that names the file where there is one. Each host shows it in its
/// own way.
using WarningSink = std::function<void(const std::string &)>;

} // namespace hosts
