#include "Printing.h"

#include "base/Numbers.h"

#include <iostream>

namespace batch {

QString Text(const std::string &text) {
    return QString::fromStdString(text);
}

void Print(const QString &line) {
    std::cout << line.toStdString() << '\n';
}

void PrintItem(const QString &label, const QString &text) {
    Print(label.leftJustified(12) + text);
}

void PrintSymmetry(const hosts::SymmetryRecord &record) {
    const std::vector<std::string> texts = SymmetryTexts(record);
    for (const std::string &text : texts)
        PrintItem(&text == &texts.front() ? "Symmetry" : "", Text(text));
}

void PrintWritten(const std::vector<std::string> &written) {
    for (const std::string &line : written)
        Print((line == written.front() ? "\nWrote " : "Wrote ") + Text(line));
}

QString PositionText(const placement::Point &p) {
    return base::FixedNumber(p.x, 9, 2) + base::FixedNumber(p.y, 9, 2) + base::FixedNumber(p.z, 9, 2);
}

} // namespace batch
