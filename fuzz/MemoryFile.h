#pragma once

#include <cstdint>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

/// An input as a file without a disk.
class MemoryFile {
public:
    MemoryFile(const std::uint8_t *data, std::size_t size)
        : m_file(memfd_create("input", 0)) {
        while (size > 0) {
            const ssize_t written = write(m_file, data, size);
            if (written <= 0)
                break;
            data += written;
            size -= std::size_t(written);
        }
    }
    MemoryFile(const MemoryFile &) = delete;
    MemoryFile &operator=(const MemoryFile &) = delete;
    ~MemoryFile() { close(m_file); }

    std::string Path() const { return "/proc/self/fd/" + std::to_string(m_file); }

private:
    int m_file;
};
