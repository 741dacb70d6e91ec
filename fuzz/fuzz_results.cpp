#include "solutions/ResultsFile.h"

#include <QBuffer>

#include <cstdint>
#include <cstdlib>

namespace {

solutions::ResultsRead Read(QByteArray &bytes) {
    QBuffer device(&bytes);
    device.open(QIODevice::ReadOnly);
    return solutions::ReadResults(device);
}

QByteArray Written(const std::list<SolutionScore> &solutions) {
    QByteArray bytes;
    QBuffer device(&bytes);
    device.open(QIODevice::WriteOnly);
    solutions::WriteResults(device, solutions);
    return bytes;
}

} // namespace

/// What is read and written is read back whole, and then written as the same bytes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    QByteArray input(reinterpret_cast<const char *>(data), qsizetype(size));
    const solutions::ResultsRead first = Read(input);
    QByteArray saved = Written(first.solutions);
    const solutions::ResultsRead second = Read(saved);
    if (second.solutions.size() != first.solutions.size() || !second.skippedLines.empty() ||
        Written(second.solutions) != saved)
        std::abort();
    return 0;
}
