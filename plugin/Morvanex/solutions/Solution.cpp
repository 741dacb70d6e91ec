#include "solutions/Solution.h"

#include "base/Numbers.h"

std::list<SolutionScore> Solutions;

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
