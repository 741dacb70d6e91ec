#pragma once

#include "Grid.h"
#include "formats/files/ByteSource.h"

#include <memory>
#include <string>
#include <vector>

namespace formats {

/// What a map file's header said, beyond what the grid holds.
struct MapReport {
    std::string compression; ///< "gzip" or "bzip2"; empty where the file is not compressed
    int mode = 0;            ///< data mode word of the file: 0, 1, 2, 6 or 12
    bool bigEndian = false;
    std::string axisOrder;             ///< axes of columns, rows and sections: "XYZ" where x runs fastest
    std::string originSource;          ///< the header fields that gave the origin, "ORIGIN" or "NSTART"
    std::string title;                 ///< the first label; empty where there is none or it is not text
    float minimum = 0, maximum = 0;    ///< of the voxels that are finite in the file
    double mean = 0, deviation = 0;    ///< of the voxels that are finite in the file
    std::vector<std::string> warnings; ///< what was read differently, one sentence each
};

/// Reads an MRC2014/CCP4 map (either byte order, any axis order, modes 0, 1, 2, 6 and 12; gzip and bzip2 are
/// decompressed) and adds it to the model as a grid named after the file. The grid's origin is the ORIGIN
/// words if any of them is non-zero and all are plausible, else the start indices times the spacing; spacing
/// is cell / MXYZ. Voxels that are not finite become 0.0 and are counted in a warning. Holds the grid and one
/// row of the file; a compressed file is decompressed twice, so that no memory is taken before its length is
/// known. What can be read only once, like a pipe, is held as well. Throws FileError, naming the header field
/// and its value; nothing is added to the model then.
VARNO::Grid *ReadMap(const std::string &file, MapReport *report = nullptr);
/// The same from a source of which nothing has been read yet.
VARNO::Grid *ReadMapFrom(ByteSource &source, MapReport *report = nullptr);
/// The same as a grid of its own, which is added to no model.
std::unique_ptr<VARNO::Grid> ReadFreeMap(ByteSource &source, MapReport *report = nullptr);

/// Whether the source, of which nothing has been read yet, is a map: that begins with a header of numbers, so
/// that bytes occur that no text has. A structure file is text.
bool IsMap(ByteSource &source);

/// Writes the grid as an MRC2014 map: mode 2, little-endian, x fastest, the origin in the ORIGIN words, the
/// cell the dimensions times the spacing. `title` becomes the first label (at most 80 characters are kept).
/// The file is replaced as a whole at the end. Throws FileError, also for a grid that `ReadMap` would refuse.
void WriteMap(const std::string &file, const VARNO::Grid &grid, const std::string &title);

} // namespace formats
