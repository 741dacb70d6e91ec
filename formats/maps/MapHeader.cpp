#include "formats/maps/MapHeader.h"

#include "base/Numbers.h"
#include "formats/files/FileError.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <optional>
#include <utility>

using namespace VARNO;

namespace formats {

namespace {

constexpr const char *axisNames[] = {"X", "Y", "Z"};
constexpr std::int32_t maxVoxels = 65535;
/// FEI headers take up to 1 KiB per section; 64 MiB hold those of 65535 sections.
constexpr std::int32_t maxExtendedBytes = 1 << 26;
constexpr double minSpacing = 0.001, maxSpacing = 1000; // Å
constexpr float maxCoordinate = 1e6f;                   // Å; a float still resolves 0.06 Å there
constexpr float angleTolerance = 0.01f;                 // degrees
/// Below this, in Å, an ORIGIN word is rounding noise, or an integer taken for a float.
constexpr float originNoise = 1e-6f;
constexpr std::size_t titleSize = 80;

/// Word numbers count from 1, as in the format's description.
namespace Word {
constexpr unsigned counts = 1, mode = 4, starts = 5, samples = 8, cell = 11, angles = 14, axes = 17,
                   minimum = 20, maximum = 21, mean = 22, spaceGroup = 23, extendedBytes = 24, version = 28,
                   origin = 50, name = 53, stamp = 54, deviation = 55, labels = 56, title = 57;
}

constexpr std::size_t OffsetOf(unsigned word) {
    return 4 * std::size_t(word - 1);
}

class WordReader {
public:
    WordReader(const MapHeaderBytes &bytes, bool bigEndian)
        : m_bytes(bytes)
        , m_bigEndian(bigEndian) {}

    std::int32_t Int(unsigned word) const { return std::bit_cast<std::int32_t>(Bits(word)); }
    float Float(unsigned word) const { return std::bit_cast<float>(Bits(word)); }
    Vector<std::int32_t, 3> Ints(unsigned word) const { return {Int(word), Int(word + 1), Int(word + 2)}; }
    Vector<float, 3> Floats(unsigned word) const { return {Float(word), Float(word + 1), Float(word + 2)}; }

private:
    std::uint32_t Bits(unsigned word) const {
        std::uint32_t bits = 0;
        for (unsigned i = 0; i < 4; ++i) {
            const auto byte = static_cast<unsigned char>(m_bytes[OffsetOf(word) + i]);
            bits |= std::uint32_t(byte) << 8 * (m_bigEndian ? 3 - i : i);
        }
        return bits;
    }

    const MapHeaderBytes &m_bytes;
    bool m_bigEndian;
};

class WordWriter {
public:
    explicit WordWriter(MapHeaderBytes &bytes)
        : m_bytes(bytes) {}

    void Put(unsigned word, std::int32_t value) { PutBits(word, std::bit_cast<std::uint32_t>(value)); }
    void Put(unsigned word, float value) { PutBits(word, std::bit_cast<std::uint32_t>(value)); }
    template <class T>
    void Put(unsigned word, const Vector<T, 3> &values) {
        for (unsigned i = 0; i < 3; ++i)
            Put(word + i, values[i]);
    }

private:
    void PutBits(unsigned word, std::uint32_t bits) {
        for (unsigned i = 0; i < 4; ++i)
            m_bytes[OffsetOf(word) + i] = char(bits >> 8 * i & 0xff);
    }

    MapHeaderBytes &m_bytes;
};

bool IsKnownMode(std::int32_t mode) {
    return mode == 0 || mode == 1 || mode == 2 || mode == 6 || mode == 12;
}

unsigned BytesPerVoxel(std::int32_t mode) {
    return mode == 0 ? 1 : mode == 2 ? 4 : 2;
}

bool IsPlausibleCount(std::int32_t count) {
    return count >= 1 && count <= maxVoxels;
}

/// How many of dimensions and mode make sense in a byte order. Mode 0 makes sense in both.
unsigned Plausibility(const WordReader &words) {
    unsigned sensible = IsKnownMode(words.Int(Word::mode));
    for (unsigned i = 0; i < 3; ++i)
        sensible += IsPlausibleCount(words.Int(Word::counts + i));
    return sensible;
}

/// Whether the stamp says big-endian; nothing where it is none of the known ones. Only its first two bytes
/// count.
std::optional<bool> StampedBigEndian(const std::array<char, 4> &stamp) {
    if (stamp[0] == 0x44 && (stamp[1] == 0x44 || stamp[1] == 0x41 || stamp[1] == 0x40))
        return false;
    if (stamp[0] == 0x11 && stamp[1] == 0x11)
        return true;
    return std::nullopt;
}

bool IsBigEndian(const MapHeaderBytes &bytes, const std::array<char, 4> &stamp) {
    const unsigned little = Plausibility(WordReader(bytes, false)),
                   big = Plausibility(WordReader(bytes, true));
    return little == big ? StampedBigEndian(stamp).value_or(false) : big > little;
}

/// The label without the blanks and zeros that fill it; empty where it holds anything but text.
std::string TitleOf(const MapHeaderBytes &bytes) {
    std::string title(bytes.data() + OffsetOf(Word::title), titleSize);
    title.resize(std::min(title.find('\0'), title.size()));
    title.resize(title.find_last_not_of(' ') + 1);
    const bool isText = std::all_of(title.begin(), title.end(), [](char c) { return c >= ' ' && c <= '~'; });
    return isText ? title : "";
}

/// The four bytes of a machine stamp in hexadecimal: "44 41 00 00".
std::string StampText(const std::array<char, 4> &stamp) {
    std::string text;
    for (const char byte : stamp) {
        constexpr const char *digits = "0123456789abcdef";
        const auto value = static_cast<unsigned char>(byte);
        text += text.empty() ? "" : " ";
        text += {digits[value >> 4], digits[value & 15]};
    }
    return text;
}

std::string Text(float value) {
    return base::ShortestNumber(value);
}

std::string Text(std::int32_t value) {
    return std::to_string(value);
}

std::string Place(const std::string &field, unsigned word) {
    return field + " (word " + std::to_string(word) + ")";
}

/// Derives one part of the layout after the other; every step may refuse the header or add a warning.
class LayoutMaker {
public:
    LayoutMaker(const std::string &file, const MapHeader &header, std::vector<std::string> &warnings)
        : m_file(file)
        , m_header(header)
        , m_warnings(warnings) {}

    MapLayout Make() {
        CheckName();
        CheckMode();
        CheckCounts();
        CheckExtendedHeader();
        FindAxes();
        FindSpacing();
        FindOrigin();
        SayByteOrder();
        return m_layout;
    }

private:
    [[noreturn]] void Refuse(const std::string &field, unsigned word, const std::string &problem) const {
        throw FileError(m_file, Place(field, word), problem);
    }

    void Warn(const std::string &warning) { m_warnings.push_back(warning); }

    void CheckName() {
        if (m_header.named)
            return;
        if (!IsPlausibleCount(m_header.counts[0]))
            Refuse("NX", Word::counts,
                   Text(m_header.counts[0]) + " voxels, and no \"MAP \" in word 53: not an MRC/CCP4 map");
        Warn("MAP (word 53): the word \"MAP \" is missing; read as an old header");
    }

    void CheckMode() {
        if (!IsKnownMode(m_header.mode))
            Refuse("MODE", Word::mode, Text(m_header.mode) + " is not supported, only 0, 1, 2, 6 and 12 are");
        m_layout.bytesPerVoxel = BytesPerVoxel(m_header.mode);
    }

    void CheckCounts() {
        m_layout.voxels = 1;
        for (unsigned i = 0; i < 3; ++i) {
            if (!IsPlausibleCount(m_header.counts[i]))
                Refuse(std::string("N") + axisNames[i], Word::counts + i,
                       Text(m_header.counts[i]) + " voxels, must be 1 to " + Text(maxVoxels));
            m_layout.voxels *= std::uint64_t(m_header.counts[i]);
        }
    }

    void CheckExtendedHeader() {
        if (m_header.extendedBytes < 0 || m_header.extendedBytes > maxExtendedBytes)
            Refuse("NSYMBT", Word::extendedBytes,
                   Text(m_header.extendedBytes) + " bytes of extended header, must be 0 to " +
                       Text(maxExtendedBytes));
        m_layout.fileBytes = MapHeader::size + std::uint64_t(m_header.extendedBytes) +
                             m_layout.voxels * m_layout.bytesPerVoxel;
    }

    void FindAxes() {
        const std::array<std::int32_t, 3> words = {m_header.axes[0], m_header.axes[1], m_header.axes[2]};
        const std::array<std::int32_t, 3> inOrder = {1, 2, 3};
        const auto isAxis = [](std::int32_t word) { return word >= 1 && word <= 3; };
        if (std::is_permutation(words.begin(), words.end(), inOrder.begin()))
            m_layout.axisOf = {unsigned(words[0] - 1), unsigned(words[1] - 1), unsigned(words[2] - 1)};
        else if (std::any_of(words.begin(), words.end(), isAxis))
            Refuse("MAPC MAPR MAPS", Word::axes, AxesText() + " do not name each axis once");
        else
            ReadAxesInOrder();
        for (unsigned i = 0; i < 3; ++i)
            m_layout.dimensions[m_layout.axisOf[i]] = unsigned(m_header.counts[i]);
    }

    /// Old files leave the axes at 0, and others hold numbers that name no axis at all.
    void ReadAxesInOrder() {
        Warn(Place("MAPC MAPR MAPS", Word::axes) + ": " + AxesText() + " name no axes; read as 1, 2, 3");
        m_layout.axisOf = {0, 1, 2};
    }

    std::string AxesText() const {
        return Text(m_header.axes[0]) + ", " + Text(m_header.axes[1]) + ", " + Text(m_header.axes[2]);
    }

    void FindSpacing() {
        for (unsigned axis = 0; axis < 3; ++axis) {
            const std::string name = axisNames[axis];
            const float length = m_header.cell[axis];
            if (!std::isfinite(length) || length <= 0)
                Refuse("CELLA " + name, Word::cell + axis,
                       Text(length) + " Å is not a cell length, so the scale is unknown");
            CheckAngle(axis);
            m_spacing[axis] = double(length) / SamplesAlong(axis);
            if (m_spacing[axis] < minSpacing || m_spacing[axis] > maxSpacing)
                Refuse("CELLA " + name, Word::cell + axis,
                       Text(length) + " Å make voxels of " + Text(float(m_spacing[axis])) +
                           " Å, must be 0.001 to 1000 Å");
            m_layout.spacing[axis] = float(m_spacing[axis]);
        }
    }

    void CheckAngle(unsigned axis) const {
        constexpr const char *names[] = {"ALPHA", "BETA", "GAMMA"};
        const float angle = m_header.angles[axis];
        if (!(std::abs(angle - 90) <= angleTolerance))
            Refuse(std::string("CELLB ") + names[axis], Word::angles + axis,
                   Text(angle) + " degrees: the cell is not orthogonal");
    }

    /// Some programs leave MX MY MZ at 0; then the cell is taken to be the map.
    double SamplesAlong(unsigned axis) {
        const std::int32_t samples = m_header.samples[axis];
        const std::string name = std::string("M") + axisNames[axis];
        if (samples < 0 || samples > maxVoxels)
            Refuse(name, Word::samples + axis, Text(samples) + " samples, must be 0 to " + Text(maxVoxels));
        if (samples > 0)
            return samples;
        Warn(Place(name, Word::samples + axis) + ": 0 samples; read as the number of voxels, " +
             std::to_string(m_layout.dimensions[axis]));
        return m_layout.dimensions[axis];
    }

    void FindOrigin() {
        const bool useOrigin = OriginIsPlausible() && OriginIsSet();
        m_layout.originSource = useOrigin ? "ORIGIN" : "NSTART";
        if (useOrigin)
            m_layout.origin = m_header.origin;
        else
            FindOriginFromStarts();
    }

    bool OriginIsPlausible() {
        for (unsigned axis = 0; axis < 3; ++axis)
            if (!(std::abs(m_header.origin[axis]) <= maxCoordinate)) {
                Warn(Place(std::string("ORIGIN ") + axisNames[axis], Word::origin + axis) + ": " +
                     Text(m_header.origin[axis]) + " Å is not a position; NSTART is used");
                return false;
            }
        return true;
    }

    bool OriginIsSet() const {
        const auto &origin = m_header.origin;
        return std::abs(origin[0]) > originNoise || std::abs(origin[1]) > originNoise ||
               std::abs(origin[2]) > originNoise;
    }

    void FindOriginFromStarts() {
        for (unsigned i = 0; i < 3; ++i) {
            const unsigned axis = m_layout.axisOf[i];
            const double position = m_header.starts[i] * m_spacing[axis];
            if (std::abs(position) > maxCoordinate)
                Refuse(std::string("N") + axisNames[i] + "START", Word::starts + i,
                       Text(m_header.starts[i]) + " puts the map's first voxel at " + Text(float(position)) +
                           " Å");
            m_layout.origin[axis] = float(position);
        }
    }

    void SayByteOrder() {
        const std::optional<bool> stamped = StampedBigEndian(m_header.stamp);
        if (stamped == m_header.bigEndian)
            return;
        Warn(Place("MACHST", Word::stamp) + ": " + StampText(m_header.stamp) +
             (stamped ? " is the wrong machine stamp" : " is not a machine stamp") + "; read as " +
             (m_header.bigEndian ? "big" : "little") + "-endian, as the dimensions show");
    }

    const std::string &m_file;
    const MapHeader &m_header;
    std::vector<std::string> &m_warnings;
    Vector<double, 3> m_spacing;
    MapLayout m_layout = {};
};

} // namespace

MapHeader DecodeMapHeader(const MapHeaderBytes &bytes) {
    MapHeader header;
    std::copy_n(bytes.data() + OffsetOf(Word::stamp), 4, header.stamp.begin());
    header.bigEndian = IsBigEndian(bytes, header.stamp);
    const WordReader words(bytes, header.bigEndian);
    header.counts = words.Ints(Word::counts);
    header.mode = words.Int(Word::mode);
    header.starts = words.Ints(Word::starts);
    header.samples = words.Ints(Word::samples);
    header.cell = words.Floats(Word::cell);
    header.angles = words.Floats(Word::angles);
    header.axes = words.Ints(Word::axes);
    header.minimum = words.Float(Word::minimum);
    header.maximum = words.Float(Word::maximum);
    header.mean = words.Float(Word::mean);
    header.spaceGroup = words.Int(Word::spaceGroup);
    header.extendedBytes = words.Int(Word::extendedBytes);
    header.origin = words.Floats(Word::origin);
    header.named = std::memcmp(bytes.data() + OffsetOf(Word::name), "MAP ", 4) == 0;
    header.deviation = words.Float(Word::deviation);
    header.title = TitleOf(bytes);
    return header;
}

MapHeaderBytes EncodeMapHeader(const MapHeader &header) {
    constexpr std::int32_t mrc2014 = 20140;
    MapHeaderBytes bytes = {};
    WordWriter words(bytes);
    words.Put(Word::counts, header.counts);
    words.Put(Word::mode, header.mode);
    words.Put(Word::starts, header.starts);
    words.Put(Word::samples, header.samples);
    words.Put(Word::cell, header.cell);
    words.Put(Word::angles, header.angles);
    words.Put(Word::axes, header.axes);
    words.Put(Word::minimum, header.minimum);
    words.Put(Word::maximum, header.maximum);
    words.Put(Word::mean, header.mean);
    words.Put(Word::spaceGroup, header.spaceGroup);
    words.Put(Word::extendedBytes, header.extendedBytes);
    words.Put(Word::version, mrc2014);
    words.Put(Word::origin, header.origin);
    std::memcpy(bytes.data() + OffsetOf(Word::name), header.named ? "MAP " : "\0\0\0\0", 4);
    std::copy(header.stamp.begin(), header.stamp.end(), bytes.data() + OffsetOf(Word::stamp));
    words.Put(Word::deviation, header.deviation);
    words.Put(Word::labels, std::int32_t(header.title.empty() ? 0 : 1));
    std::copy_n(header.title.data(), std::min(header.title.size(), titleSize),
                bytes.data() + OffsetOf(Word::title));
    return bytes;
}

MapLayout LayoutOf(const std::string &file, const MapHeader &header, std::vector<std::string> &warnings) {
    return LayoutMaker(file, header, warnings).Make();
}

} // namespace formats
