#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string>

/// The bytes of a map file, put together word by word, independently of the code that is tested.
class MapBytes {
public:
    /// An orthogonal map of nx x ny x nz voxels of 2 Å whose voxels are still to be added.
    MapBytes(int nx, int ny, int nz, int mode = 2, bool bigEndian = false)
        : m_bytes(1024, '\0')
        , m_bigEndian(bigEndian) {
        Int(1, nx).Int(2, ny).Int(3, nz).Int(4, mode);
        Int(8, nx).Int(9, ny).Int(10, nz);
        Float(11, 2.0f * float(nx)).Float(12, 2.0f * float(ny)).Float(13, 2.0f * float(nz));
        Float(14, 90).Float(15, 90).Float(16, 90);
        Int(17, 1).Int(18, 2).Int(19, 3).Int(23, 1);
        m_bytes.replace(208, 4, "MAP ");
        Stamp(bigEndian ? "\x11\x11" : "\x44\x44");
    }

    MapBytes &Int(std::size_t word, std::int32_t value) {
        return m_bytes.replace(4 * (word - 1), 4, InOrder(&value, 4)), *this;
    }
    MapBytes &Float(std::size_t word, float value) { return Int(word, std::bit_cast<std::int32_t>(value)); }
    /// The first bytes of the machine stamp; the others are 0.
    MapBytes &Stamp(std::string stamp) {
        stamp.resize(4);
        return m_bytes.replace(212, 4, stamp), *this;
    }
    MapBytes &Text(std::size_t word, const std::string &text) {
        return m_bytes.replace(4 * (word - 1), text.size(), text), *this;
    }
    /// Appends a voxel of the mode's type.
    template <class T>
    MapBytes &Voxel(T value) {
        return m_bytes += InOrder(&value, sizeof value), *this;
    }
    /// Appends the voxels 1.0, 2.0, 3.0 … in file order.
    MapBytes &CountingVoxels(int count) {
        for (int i = 1; i <= count; ++i)
            Voxel(float(i));
        return *this;
    }
    MapBytes &Append(const std::string &bytes) { return m_bytes += bytes, *this; }

    operator const std::string &() const { return m_bytes; }

private:
    std::string InOrder(const void *value, std::size_t size) const {
        std::string bytes(size, '\0');
        std::memcpy(bytes.data(), value, size);
        if (m_bigEndian != (std::endian::native == std::endian::big))
            bytes.assign(bytes.rbegin(), bytes.rend());
        return bytes;
    }

    std::string m_bytes;
    bool m_bigEndian;
};
