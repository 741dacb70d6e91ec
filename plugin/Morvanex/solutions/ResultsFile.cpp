#include "solutions/ResultsFile.h"

#include <QIODevice>
#include <QTextStream>

#include <algorithm>

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

} // namespace

void WriteResults(QIODevice &device, const std::list<SolutionScore> &solutions) {
    QTextStream text(&device);
    text << SolutionScore::getFormatComment() << '\n';
    for (const SolutionScore &solution : solutions)
        text << solution.getLine() << '\n';
}

ResultsRead ReadResults(QIODevice &device) {
    ResultsRead read;
    if (!device.isReadable())
        return read;
    QTextStream text(&device);
    QString line;
    for (qint64 number = 1; text.readLineInto(&line); ++number) {
        if (line.startsWith('#'))
            continue;
        const std::vector<QString> words = split(line);
        if (words.size() < wordsOfARecord) {
            read.skippedLines.push_back(number);
            continue;
        }
        if (!AreNumbers(words))
            read.doubtful[read.solutions.size()] = number;
        read.solutions.emplace_back().setFromLine(line);
    }
    return read;
}

} // namespace solutions
