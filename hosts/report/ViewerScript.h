#pragma once

#include "hosts/report/Report.h"

#include <string>

namespace report {

/// Whether a file's name tells which program is to read it: ChimeraX a name ending in .cxc, PyMOL one in
/// .pml.
bool IsViewerScript(const std::string &file);

/// Writes a script that opens map and models in the viewer which the file's name tells: each place as a model
/// of its own, the found ones shown, or else the first; the map as a surface at the level of the report. The
/// script names the input files, which must stay where they are.
///
/// `record` is as WriteReport takes it. The file is replaced as a whole. Throws FileError, and
/// std::invalid_argument for a record of another kind.
void WriteViewerScript(const std::string &file, const std::string &record, const Sources &sources);

} // namespace report
