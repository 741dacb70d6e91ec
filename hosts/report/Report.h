#pragma once

#include "Compound.h"
#include "Grid.h"
#include "hosts/report/Viewer.h"

#include <string>
#include <vector>

namespace report {

/// Chains of a structure.
struct ReportedModel {
    std::string file; ///< as the record names it
    std::vector<const VARNO::Chain *> chains;
};

/// What a record speaks of.
struct Sources {
    const VARNO::Grid *map = nullptr;      ///< as it was searched
    const VARNO::Grid *movedMap = nullptr; ///< a map that was placed, in its first place on the map's lattice
    std::vector<ReportedModel> models;     ///< that were placed; coordinates as they were given
    std::vector<ReportedModel> fixed;      ///< that were in place before
    std::string command{};                 ///< the command line that does the same
    std::string mirroredMap{};             ///< the file of the mirrored map, where there is one
};

/// Writes a report as one page of HTML that asks the network for nothing: the verdict, the places as a table,
/// pictures, what was done, and a 3D view where `viewer` is there.
///
/// `record` is the JSON of a fit, a placement, an assembly or a screen; what the page tells is read from it.
/// The checksums are those of the files as they are now. The file is replaced as a whole. Throws FileError,
/// and std::invalid_argument for a record of another kind.
void WriteReport(const std::string &file, const std::string &record, const Sources &sources,
                 const std::optional<Viewer> &viewer = InstalledViewer());

} // namespace report
