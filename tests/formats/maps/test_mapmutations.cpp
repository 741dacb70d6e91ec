#include "Compress.h"
#include "MapBytes.h"
#include "ModelGuard.h"
#include "formats/files/FileError.h"
#include "formats/maps/MapFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <new>
#include <random>

#include <sys/mman.h>
#include <unistd.h>

using namespace formats;
using namespace VARNO;

namespace {

std::size_t largestAllocation = 0;
std::size_t allocationLimit = SIZE_MAX;

/// Says how much was asked for at once while it lives, and refuses more than a limit.
class AllocationWatch {
public:
    explicit AllocationWatch(std::size_t limit) {
        largestAllocation = 0;
        allocationLimit = limit;
    }
    ~AllocationWatch() { allocationLimit = SIZE_MAX; }
};

} // namespace

void *operator new(std::size_t size) {
    largestAllocation = std::max(largestAllocation, size);
    if (size <= allocationLimit)
        if (void *memory = std::malloc(size ? size : 1))
            return memory;
    throw std::bad_alloc();
}
void *operator new[](std::size_t size) {
    return operator new(size);
}
void operator delete(void *memory) noexcept {
    std::free(memory);
}
void operator delete(void *memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void *memory) noexcept {
    std::free(memory);
}
void operator delete[](void *memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

MapBytes SmallMap() {
    return MapBytes(6, 5, 4).Int(24, 80).Append(std::string(80, 'x')).CountingVoxels(120);
}

/// Values that break readers: extremes, and neighbours of the limits.
std::int32_t NastyWord(std::mt19937 &random) {
    const std::int32_t words[] = {0,
                                  1,
                                  -1,
                                  2,
                                  3,
                                  6,
                                  7,
                                  12,
                                  65535,
                                  65536,
                                  INT32_MAX,
                                  INT32_MIN,
                                  1 << 24,
                                  0x7fc00000,
                                  0x7f800000,
                                  0x42b40000,
                                  0x00000040,
                                  -65535,
                                  std::int32_t(random())};
    return words[random() % std::size(words)];
}

void MutateHeader(std::string &bytes, std::mt19937 &random) {
    const std::int32_t value = NastyWord(random);
    std::memcpy(bytes.data() + 4 * (random() % 56), &value, 4);
}

void MutateByte(std::string &bytes, std::mt19937 &random) {
    bytes[random() % bytes.size()] = char(random());
}

std::string Mutated(std::string bytes, std::mt19937 &random, void (*mutate)(std::string &, std::mt19937 &)) {
    for (unsigned i = 0; i < 1 + random() % 3; ++i)
        mutate(bytes, random);
    if (random() % 8 == 0)
        bytes.resize(random() % bytes.size());
    return bytes;
}

/// The buffers of the readers and of the decompression libraries; the map itself takes half a kilobyte.
constexpr std::size_t maxMemory = 1 << 20;

/// A file without a disk, whose many creations would take longer than everything else.
class MemoryFile {
public:
    explicit MemoryFile(const std::string &bytes)
        : m_file(memfd_create("map", 0)) {
        EXPECT_EQ(write(m_file, bytes.data(), bytes.size()), ssize_t(bytes.size()));
    }
    MemoryFile(const MemoryFile &) = delete;
    MemoryFile &operator=(const MemoryFile &) = delete;
    ~MemoryFile() { close(m_file); }

    std::string Path() const { return "/proc/self/fd/" + std::to_string(m_file); }

private:
    int m_file;
};

struct Tally {
    unsigned read = 0, refused = 0;
};

/// Any other exception ends the test.
void Try(const std::string &bytes, Tally &tally) {
    const MemoryFile file(bytes);
    const ModelGuard guard;
    const AllocationWatch watch(SIZE_MAX);
    try {
        ReadMap(file.Path());
        ++tally.read;
    } catch (const FileError &) {
        ++tally.refused;
    }
    ASSERT_LE(largestAllocation, maxMemory);
}

} // namespace

TEST(MapMutations, AreReadOrRefusedInLittleMemory) {
    std::mt19937 random(20140);
    const std::string map = SmallMap(), gzip = Gzip(map), bzip2 = Bzip2(map);
    Tally tally;
    for (unsigned round = 0; round < 1000 && !testing::Test::HasFatalFailure(); ++round) {
        Try(Mutated(map, random, MutateHeader), tally);
        Try(Mutated(map, random, MutateByte), tally);
        Try(Gzip(Mutated(map, random, MutateHeader)), tally);
        Try(Mutated(gzip, random, MutateByte), tally);
        Try(Mutated(bzip2, random, MutateByte), tally);
    }
    EXPECT_GT(tally.read, 500u);
    EXPECT_GT(tally.refused, 500u);
}

TEST(MapMemory, IsNotTakenForVoxelsThatACompressedFileDoesNotHold) {
    const std::string bytes = MapBytes(1000, 1000, 100, 0).Append(std::string(10'000'000, '\0'));
    for (const std::string &compressed : {bytes, Gzip(bytes), Bzip2(bytes)}) {
        Tally tally;
        Try(compressed, tally);
        EXPECT_EQ(tally.refused, 1u);
    }
}

TEST(MapMemory, IsTakenForTheGridAloneAndNotForTheFile) {
    const ModelGuard guard;
    const std::string map = MapBytes(100, 100, 100, 12).Append(std::string(2'000'000, '\0'));
    const MemoryFile file(Gzip(map));
    const AllocationWatch watch(SIZE_MAX);
    ReadMap(file.Path());
    EXPECT_EQ(largestAllocation, 4'000'000u);
}

TEST(MapMemory, IsSaidToBeShort) {
    const MemoryFile file(MapBytes(100, 100, 100, 0).Append(std::string(1'000'000, '\0')));
    const AllocationWatch watch(2'000'000);
    try {
        ReadMap(file.Path());
        FAIL() << "was read";
    } catch (const FileError &error) {
        EXPECT_EQ(error.what(), file.Path() + ": NX NY NZ (words 1 to 3): no memory for 1000000 voxels");
    }
}
