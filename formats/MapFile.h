#pragma once

#include "Grid.h"

#include <string>
#include <vector>

namespace VARNO {

/// What a map file's header said, beyond what the grid holds.
struct MapReport {
    int mode = 0;                      ///< data mode word of the file: 0, 1, 2, 6 or 12
    bool bigEndian = false;
    std::string originSource;          ///< the header fields that gave the origin, "ORIGIN" or "NSTART"
    float minimum = 0, maximum = 0;    ///< of the values as read
    double mean = 0;
    std::vector<std::string> warnings; ///< what was read differently from how it stands, one sentence each
};

/// Reads an MRC2014/CCP4 map (either byte order, any axis order, modes 0, 1, 2, 6 and 12; gzip and bzip2 are
/// unpacked) and adds it to the model as a grid named after the file. The grid's origin is the ORIGIN words if
/// any of them is non-zero and plausible, else the start indices times the spacing; spacing is cell / MXYZ.
/// Voxels that are not finite become 0.0 and are counted in a warning.
/// Throws FileError, naming the header field and its value; nothing is added to the model then.
Grid *ReadMap(const std::string &file, MapReport *report = nullptr);

/// Writes the grid as an MRC2014 map: mode 2, little-endian, x fastest, the origin in the ORIGIN words.
/// `title` becomes the first label (at most 80 characters are kept). The file is replaced as a whole at the end.
/// Throws FileError.
void WriteMap(const std::string &file, const Grid &grid, const std::string &title);

} // namespace VARNO
