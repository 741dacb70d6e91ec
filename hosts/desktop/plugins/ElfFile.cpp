#include "plugins/ElfFile.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <fstream>
#include <span>
#include <stdexcept>

#include <elf.h>
#include <link.h>

namespace desktop {

namespace {

using Header = ElfW(Ehdr);
using Segment = ElfW(Phdr);
using Dynamic = ElfW(Dyn);

constexpr unsigned char ownClass = sizeof(void *) == 8 ? ELFCLASS64 : ELFCLASS32;
constexpr unsigned char ownOrder = std::endian::native == std::endian::little ? ELFDATA2LSB : ELFDATA2MSB;

/// The bytes of a file, every access checked: a damaged file may claim anything.
class Bytes {
public:
    explicit Bytes(const std::string &path, std::size_t limit = std::string::npos) {
        std::ifstream file(path, std::ios::binary | std::ios::ate);
        if (!file)
            throw std::runtime_error("it cannot be read");
        m_bytes.resize(std::min(limit, std::size_t(std::max<std::streamoff>(0, file.tellg()))));
        file.seekg(0);
        file.read(m_bytes.data(), std::streamsize(m_bytes.size()));
        m_bytes.resize(std::size_t(file.gcount()));
    }

    template <class T>
    T At(std::size_t offset) const {
        if (offset > m_bytes.size() || m_bytes.size() - offset < sizeof(T))
            throw std::runtime_error("it is cut short");
        T value;
        std::memcpy(&value, m_bytes.data() + offset, sizeof value);
        return value;
    }

    std::string TextAt(std::size_t offset) const {
        std::string text;
        for (char c; (c = At<char>(offset)) != '\0'; ++offset)
            text += c;
        return text;
    }

private:
    std::string m_bytes;
};

std::vector<Segment> SegmentsOf(const Bytes &bytes, const Header &header) {
    std::vector<Segment> segments;
    for (std::size_t i = 0; i < header.e_phnum; ++i)
        segments.push_back(bytes.At<Segment>(header.e_phoff + i * header.e_phentsize));
    return segments;
}

/// Where in the file an address of the loaded library comes from.
std::size_t OffsetOf(std::span<const Segment> segments, std::size_t address) {
    for (const Segment &segment : segments)
        if (segment.p_type == PT_LOAD && address >= segment.p_vaddr &&
            address - segment.p_vaddr < segment.p_filesz)
            return segment.p_offset + (address - segment.p_vaddr);
    throw std::runtime_error("its table of names is missing");
}

/// Takes what the library links, and all that its table of names holds.
void ReadDynamic(const Bytes &bytes, std::span<const Segment> segments, const Segment &dynamic,
                 ElfFile &elf) {
    std::vector<std::size_t> needed;
    std::size_t table = 0, size = 0;
    for (std::size_t at = 0; at + sizeof(Dynamic) <= dynamic.p_filesz; at += sizeof(Dynamic)) {
        const auto entry = bytes.At<Dynamic>(dynamic.p_offset + at);
        if (entry.d_tag == DT_NULL)
            break;
        if (entry.d_tag == DT_NEEDED)
            needed.push_back(entry.d_un.d_val);
        else if (entry.d_tag == DT_STRTAB)
            table = OffsetOf(segments, entry.d_un.d_ptr);
        else if (entry.d_tag == DT_STRSZ)
            size = entry.d_un.d_val;
    }
    for (const std::size_t name : needed)
        elf.needed.push_back(bytes.TextAt(table + name));
    for (std::size_t at = 0; at < size;) {
        const std::string name = bytes.TextAt(table + at);
        at += name.size() + 1;
        elf.names.insert(name);
    }
}

} // namespace

ElfFile ReadElf(const std::string &path) {
    const Bytes bytes(path);
    const auto header = bytes.At<Header>(0);
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0)
        throw std::runtime_error("it is no shared library");
    if (header.e_ident[EI_CLASS] != ownClass || header.e_ident[EI_DATA] != ownOrder)
        throw std::runtime_error("it is built for another kind of processor");
    if (header.e_type != ET_DYN)
        throw std::runtime_error("it is no shared library");
    ElfFile elf{header.e_machine, {}, {}};
    const std::vector<Segment> segments = SegmentsOf(bytes, header);
    for (const Segment &segment : segments)
        if (segment.p_type == PT_DYNAMIC)
            ReadDynamic(bytes, segments, segment, elf);
    return elf;
}

unsigned OwnMachine() {
    return Bytes("/proc/self/exe", sizeof(Header)).At<Header>(0).e_machine;
}

} // namespace desktop
