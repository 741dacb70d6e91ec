#include "ResultsFile.h"

#include <QIODevice>
#include <QTextStream>

void WriteResults(QIODevice &device, const std::list<SolutionScore> &solutions) {
    QTextStream text(&device);
    text << SolutionScore::getFormatComment() << '\n';
    for (const SolutionScore &solution : solutions)
        text << solution.getLine() << '\n';
}

ResultsRead ReadResults(QIODevice &device) {
    constexpr std::size_t wordsOfARecord = 8;
    ResultsRead read;
    if (!device.isReadable())
        return read;
    QTextStream text(&device);
    QString line;
    for (qint64 number = 1; text.readLineInto(&line); ++number) {
        if (line.startsWith('#'))
            continue;
        if (split(line).size() < wordsOfARecord)
            read.skippedLines.push_back(number);
        else
            read.solutions.emplace_back().setFromLine(line);
    }
    return read;
}
