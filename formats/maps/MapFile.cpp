#include "formats/maps/MapFile.h"

#include "base/Memory.h"

#include "DataAdder.h"
#include "DataMaker.h"
#include "formats/files/ByteSource.h"
#include "formats/files/FileError.h"
#include "formats/files/NodeName.h"
#include "formats/files/ReplaceFile.h"
#include "formats/maps/MapHeader.h"
#include "formats/maps/MapVoxels.h"

#include <algorithm>
#include <memory>
#include <ostream>

using namespace VARNO;

namespace formats {

namespace {

[[noreturn]] void FailTooShort(const std::string &file, std::uint64_t found, const std::string &promise) {
    throw FileError(file, "byte " + std::to_string(found), "the map ends too early, " + promise);
}

MapHeader ReadHeader(ByteSource &source) {
    MapHeaderBytes bytes;
    const std::size_t found = source.Read(bytes);
    if (found == 0)
        throw FileError(source.Name(), "", "the file is empty");
    if (found < bytes.size())
        FailTooShort(source.Name(), found, "a header takes " + std::to_string(bytes.size()) + " bytes");
    return DecodeMapHeader(bytes);
}

std::string Promise(const MapLayout &layout) {
    const auto &n = layout.dimensions;
    return "its header promises " + std::to_string(layout.fileBytes) + " bytes (" + std::to_string(n[0]) +
           " x " + std::to_string(n[1]) + " x " + std::to_string(n[2]) + " voxels of " +
           std::to_string(layout.bytesPerVoxel) + ")";
}

/// A quarter of the memory is left to everything else, as the fit does. Bytes that can be read only once are
/// held beside the grid.
void CheckMemory(const ByteSource &source, const MapLayout &layout) {
    const std::uint64_t needed = layout.voxels * sizeof(float) + (source.StoredSize() ? 0 : layout.fileBytes);
    if (double(needed) > base::MemoryLimit())
        throw FileError(source.Name(), "NX NY NZ (words 1 to 3)",
                        std::to_string(layout.voxels) + " voxels take " + std::to_string(needed >> 20) +
                            " MiB, more than three quarters of the machine's " +
                            std::to_string(std::uint64_t(base::MachineMemory()) >> 20) + " MiB");
}

/// A header's claim is believed only once the bytes were seen. Compressed ones are read a little beyond the
/// voxels, so that the check sum at their end is seen as well, but not to the end of a bomb.
std::uint64_t CountBytes(ByteSource &source, const MapLayout &layout) {
    const bool compressed = source.GetCompression() != Compression::None;
    const std::uint64_t wanted = layout.fileBytes + (compressed ? 1 << 20 : 0);
    if (!source.StoredSize())
        return MapHeader::size + source.Peek(wanted - MapHeader::size).size();
    return compressed ? source.Again().Skip(wanted) : *source.StoredSize();
}

void CheckLength(ByteSource &source, const MapLayout &layout) {
    const std::uint64_t found = CountBytes(source, layout);
    if (found < layout.fileBytes)
        FailTooShort(source.Name(), found, Promise(layout));
}

std::unique_ptr<Grid> MakeGrid(const std::string &file, const MapLayout &layout) {
    try {
        return std::make_unique<Grid>(NodeName(file), layout.dimensions, layout.origin, layout.spacing,
                                      Vector<float, 3>(90, 90, 90));
    } catch (const std::bad_alloc &) {
        throw FileError(file, "NX NY NZ (words 1 to 3)",
                        "no memory for " + std::to_string(layout.voxels) + " voxels");
    }
}

/// Reads the rows of the file one by one and spreads each over the grid.
void ReadVoxels(ByteSource &source, const MapHeader &header, const MapLayout &layout, Grid &grid) {
    const auto &n = layout.dimensions;
    const std::array<std::size_t, 3> strideOf = {1, n[0], std::size_t(n[0]) * n[1]};
    const std::size_t column = strideOf[layout.axisOf[0]], row = strideOf[layout.axisOf[1]],
                      section = strideOf[layout.axisOf[2]];
    std::vector<float> values(n[layout.axisOf[0]]);
    std::vector<char> bytes(values.size() * layout.bytesPerVoxel);
    for (unsigned s = 0; s < n[layout.axisOf[2]]; ++s)
        for (unsigned r = 0; r < n[layout.axisOf[1]]; ++r) {
            if (source.Read(bytes) < bytes.size())
                throw FileError(source.Name(), "", "the file changed while it was read");
            ConvertVoxels(bytes, header.mode, header.bigEndian, values);
            float *const to = grid.Values().data() + r * row + s * section;
            for (std::size_t c = 0; c < values.size(); ++c)
                to[c * column] = values[c];
        }
}

MapReport ReportOf(const MapHeader &header, const MapLayout &layout) {
    MapReport report;
    report.mode = header.mode;
    report.bigEndian = header.bigEndian;
    for (const unsigned axis : layout.axisOf)
        report.axisOrder += "XYZ"[axis];
    report.originSource = layout.originSource;
    report.title = header.title;
    return report;
}

/// The statistics are those of the voxels that the file really has, before the others become 0.
void TakeValues(MapReport &report, Grid &grid) {
    const MapStatistics statistics = StatisticsOf(grid.Values());
    report.minimum = statistics.minimum;
    report.maximum = statistics.maximum;
    report.mean = statistics.mean;
    report.deviation = statistics.deviation;
    if (const std::uint64_t notFinite = ZeroNotFinite(grid.Values()))
        report.warnings.push_back(std::to_string(notFinite) + " of " + std::to_string(grid.Values().size()) +
                                  " voxels are not finite and were read as 0");
}

std::unique_ptr<Grid> LoadGrid(ByteSource &source, MapReport &report) {
    const MapHeader header = ReadHeader(source);
    std::vector<std::string> warnings;
    const MapLayout layout = LayoutOf(source.Name(), header, warnings);
    CheckMemory(source, layout);
    CheckLength(source, layout);
    std::unique_ptr<Grid> grid = MakeGrid(source.Name(), layout);
    source.Skip(std::uint64_t(header.extendedBytes));
    ReadVoxels(source, header, layout, *grid);
    report = ReportOf(header, layout);
    report.compression = NameOf(source.GetCompression());
    report.warnings = std::move(warnings);
    TakeValues(report, *grid);
    return grid;
}

MapHeader HeaderOf(const Grid &grid, const std::string &title) {
    MapHeader header;
    for (unsigned axis = 0; axis < 3; ++axis) {
        // A dimension that does not fit becomes negative, which the layout refuses.
        header.counts[axis] = header.samples[axis] = std::int32_t(grid.Dimensions()[axis]);
        header.cell[axis] = float(double(grid.Spacing()[axis]) * grid.Dimensions()[axis]);
    }
    const MapStatistics statistics = StatisticsOf(grid.Values());
    header.angles = grid.Angles();
    header.origin = grid.Origin();
    header.minimum = statistics.minimum;
    header.maximum = statistics.maximum;
    header.mean = float(statistics.mean);
    header.deviation = float(statistics.deviation);
    header.title = title;
    return header;
}

void WriteVoxels(std::ostream &out, std::span<const float> values) {
    std::vector<char> bytes(1 << 18);
    const std::size_t portion = bytes.size() / sizeof(float);
    for (std::size_t i = 0; i < values.size(); i += portion) {
        const auto part = values.subspan(i, std::min(portion, values.size() - i));
        EncodeVoxels(part, bytes);
        out.write(bytes.data(), std::streamsize(part.size_bytes()));
    }
}

} // namespace

Grid *ReadMap(const std::string &file, MapReport *report) {
    ByteSource source(file);
    return ReadMapFrom(source, report);
}

Grid *ReadMapFrom(ByteSource &source, MapReport *report) {
    std::unique_ptr<Grid> grid = ReadFreeMap(source, report);
    const DataAdder<Space> batch(Space::instance());
    if (!batch.MayAdd())
        throw FileError(source.Name(), "", "the model accepts no additions at present");
    return DataMaker::addGrid(nullptr, std::move(grid));
}

std::unique_ptr<Grid> ReadFreeMap(ByteSource &source, MapReport *report) {
    return WithMemory(source.Name(), [&] {
        MapReport found;
        std::unique_ptr<Grid> grid = LoadGrid(source, found);
        if (report)
            *report = std::move(found);
        return grid;
    });
}

bool IsMap(ByteSource &source) {
    return std::ranges::any_of(source.Peek(MapHeader::size), [](char c) {
        return static_cast<unsigned char>(c) < ' ' && !(c >= '\t' && c <= '\r');
    });
}

void WriteMap(const std::string &file, const Grid &grid, const std::string &title) {
    const MapHeader header = HeaderOf(grid, title);
    std::vector<std::string> ignored;
    LayoutOf(file, header, ignored);
    ReplaceFile(file, [&](std::ostream &out) {
        const MapHeaderBytes bytes = EncodeMapHeader(header);
        out.write(bytes.data(), std::streamsize(bytes.size()));
        WriteVoxels(out, grid.Values());
    });
}

} // namespace formats
