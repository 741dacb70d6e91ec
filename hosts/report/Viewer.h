#pragma once

#include <optional>
#include <string>

namespace report {

/// The library that draws the 3D view, and the licences under which it may be handed on.
struct Viewer {
    std::string script, notices;
};

/// The library of this installation: share/morvanex/report in one of the folders above this program, or above
/// the library that holds this code. None where it is not installed.
std::optional<Viewer> InstalledViewer();

} // namespace report
