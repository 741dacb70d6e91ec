#include "solutions/ResultsFile.h"

#include "base/Numbers.h"
#include "solutions/RecordBytes.h"

#include <QIODevice>
#include <QTextStream>

#include <algorithm>
#include <limits>

QString SolutionScore::getLine() const {
    QString line = base::FixedNumber(rotation.w(), 6, 2);
    for (const double number : {rotation.x(), rotation.y(), rotation.z(), double(translation[0]),
                                double(translation[1]), double(translation[2])})
        line += ' ' + base::FixedNumber(number, 6, 2);
    line += ' ' + base::FixedNumber(score, 9, 3);
    for (const double distance : extraScores)
        line += ' ' + base::FixedNumber(distance, 6, 2);
    return line;
}

void SolutionScore::setFromLine(const QString &line) {
    const std::vector<QString> words = split(line);
    const auto number = [&](std::size_t word) { return word < words.size() ? words[word].toFloat() : 0.0f; };
    rotation.Set(number(0), number(1), number(2), number(3));
    translation.setValue(number(4), number(5), number(6), false);
    score = number(7);
    extraScores.clear();
    for (std::size_t word = 8; word < words.size(); ++word)
        extraScores.push_back(number(word));
}

QString SolutionScore::getFormatComment() {
    return "# w Rx Ry Rz Tx Ty Tz score [extra scores...]";
}

std::vector<QString> split(const QString &line) {
    std::vector<QString> words;
    bool inside = false;
    qsizetype start = 0;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const bool blank = line[i] == ' ';
        if (inside && blank) {
            words.push_back(line.mid(start, i - start));
            inside = false;
        } else if (inside && i == line.size() - 1) {
            words.push_back(line.mid(start));
        } else if (!inside && !blank) {
            inside = true;
            start = i;
        }
    }
    return words;
}

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
