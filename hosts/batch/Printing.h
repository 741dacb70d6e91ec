#pragma once

#include "hosts/common/SymmetryRecord.h"

#include "placement/Geometry.h"

#include <QString>

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace batch {

/// How placements print on standard output.

QString Text(const std::string &text);
void Print(const QString &line);
/// A line of the first part; an empty label goes on with the line before.
void PrintItem(const QString &label, const QString &text);
/// The symmetry that was looked for.
void PrintSymmetry(const hosts::SymmetryRecord &record);
/// The files written, a line each behind an empty one.
void PrintWritten(const std::vector<std::string> &written);
/// Three coordinates in Å, 27 characters or more.
QString PositionText(const placement::Point &position);

/// A column of a table.
template <class Row>
struct Column {
    QString head;
    int width;
    std::function<QString(const Row &)> cell;
};

template <class Row>
void PrintTable(const std::vector<Column<Row>> &columns, std::span<const Row> rows) {
    QString line;
    for (const Column<Row> &column : columns)
        line += column.head.rightJustified(column.width);
    Print(line);
    for (const Row &row : rows) {
        line.clear();
        for (const Column<Row> &column : columns)
            line += column.cell(row).rightJustified(column.width);
        Print(line);
    }
}

} // namespace batch
