#include "solutions/ResultsFile.h"

#include "solutions/RecordBytes.h"

#include <QIODevice>
#include <QTextStream>

#include <algorithm>
#include <limits>

namespace solutions {

namespace {

constexpr std::size_t wordsOfARecord = 8;

bool AreNumbers(const std::vector<QString> &words) {
    return std::all_of(words.begin(), words.begin() + wordsOfARecord, [](const QString &word) {
        bool ok = false;
        word.toFloat(&ok);
        return ok;
    });
}

/// Bytes that a line takes for each of its characters while it is read: up to half of them are words, and
/// each word is a text of its own.
constexpr double bytesOfACharacter = 128;

/// Bytes that the numbers of a skipped line and of a doubtful record take.
constexpr double bytesOfANumber = 64;

qint64 LongestLine(double memory) {
    return qint64(std::clamp(memory / bytesOfACharacter, 1.0, double(std::numeric_limits<int>::max())));
}

} // namespace

void WriteResults(QIODevice &device, const std::list<SolutionScore> &solutions) {
    QTextStream text(&device);
    text << SolutionScore::getFormatComment() << '\n';
    for (const SolutionScore &solution : solutions)
        text << solution.getLine() << '\n';
}

ResultsRead ReadResults(QIODevice &device, double memory, double bytesBeside) {
    ResultsRead read;
    if (!device.isReadable())
        return read;
    const qint64 longestLine = LongestLine(memory);
    QTextStream text(&device);
    QString line;
    double taken = 0;
    for (qint64 number = 1; text.readLineInto(&line, longestLine); ++number) {
        read.isWhole = line.size() < longestLine && taken <= memory;
        if (!read.isWhole)
            return read;
        if (line.startsWith('#'))
            continue;
        const std::vector<QString> words = split(line);
        if (words.size() < wordsOfARecord) {
            read.skippedLines.push_back(number);
            taken += bytesOfANumber;
            continue;
        }
        if (!AreNumbers(words)) {
            read.doubtful[read.solutions.size()] = number;
            taken += bytesOfANumber;
        }
        read.solutions.emplace_back().setFromLine(line);
        taken += RecordBytes(words.size() - wordsOfARecord) + bytesBeside;
    }
    read.isWhole = taken <= memory;
    return read;
}

} // namespace solutions
