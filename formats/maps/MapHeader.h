#pragma once

#include "Vector.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace formats {

/// The words of an MRC2014/CCP4 header that say what a map holds and where it lies, as they stand in the
/// file. "File order" is columns (fastest), rows, sections (slowest). Defaults are those of a map that is
/// written.
struct MapHeader {
    static constexpr std::size_t size = 1024;

    VARNO::Vector<std::int32_t, 3> counts;             ///< NX NY NZ, words 1 to 3, file order
    std::int32_t mode = 2;                             ///< MODE, word 4
    VARNO::Vector<std::int32_t, 3> starts;             ///< NXSTART NYSTART NZSTART, words 5 to 7, file order
    VARNO::Vector<std::int32_t, 3> samples;            ///< MX MY MZ, words 8 to 10: along x, y, z of the cell
    VARNO::Vector<float, 3> cell;                      ///< CELLA, words 11 to 13: Å along x, y, z
    VARNO::Vector<float, 3> angles{90, 90, 90};        ///< CELLB, words 14 to 16: degrees
    VARNO::Vector<std::int32_t, 3> axes{1, 2, 3};      ///< MAPC MAPR MAPS, words 17 to 19: 1 x, 2 y, 3 z
    float minimum = 0, maximum = 0, mean = 0;          ///< DMIN DMAX DMEAN, words 20 to 22
    std::int32_t spaceGroup = 1;                       ///< ISPG, word 23
    std::int32_t extendedBytes = 0;                    ///< NSYMBT, word 24
    VARNO::Vector<float, 3> origin;                    ///< ORIGIN, words 50 to 52: Å along x, y, z
    bool named = true;                                 ///< "MAP " stands in word 53
    std::array<char, 4> stamp{0x44, 0x44, 0x00, 0x00}; ///< MACHST, word 54
    float deviation = 0;                               ///< RMS, word 55
    std::string title;      ///< LABEL 1, words 57 to 76; empty where it is not text
    bool bigEndian = false; ///< the byte order of all words and of the voxels
};

using MapHeaderBytes = std::array<char, MapHeader::size>;

/// Reads the words. The byte order is the one in which the dimensions and the mode make sense: at most 65535
/// voxels along an axis, which in the other order are at least 65536. Where they make no sense in either, the
/// machine stamp decides.
MapHeader DecodeMapHeader(const MapHeaderBytes &bytes);

/// The header as little-endian bytes with one label, cut after 80 bytes; the machine stamp is written as
/// given.
MapHeaderBytes EncodeMapHeader(const MapHeader &header);

/// What a header means for a grid whose axes are x, y, z.
struct MapLayout {
    std::array<unsigned, 3> axisOf;        ///< the grid axis (0 x, 1 y, 2 z) along columns, rows, sections
    VARNO::Vector<unsigned, 3> dimensions; ///< voxels along x, y, z
    VARNO::Vector<float, 3> spacing;       ///< Å
    VARNO::Vector<float, 3> origin;        ///< position of voxel (0, 0, 0), Å
    std::string originSource;              ///< "ORIGIN" or "NSTART"
    unsigned bytesPerVoxel;
    std::uint64_t voxels;
    std::uint64_t fileBytes; ///< of header, extended header and voxels
};

/// Derives the layout from the header of `file`, and appends to `warnings` what was read differently from
/// what it says. Throws FileError, naming the word and its value, for what cannot be read: an unknown mode,
/// dimensions outside 1 to 65535, a cell that is not finite, not positive, not orthogonal (more than 0.01
/// degrees from 90) or of an absurd voxel size, axes that contradict each other, an absurd extended header or
/// position.
MapLayout LayoutOf(const std::string &file, const MapHeader &header, std::vector<std::string> &warnings);

} // namespace formats
