#include "AssemblyReport.h"

#include "base/Numbers.h"

#include "Printing.h"

#include <QStringList>

#include <algorithm>

using namespace hosts;
using namespace placement;

namespace batch {

namespace {

QString ChainsOf(const AssemblyRecord &record, std::size_t number) {
    QStringList names;
    for (const std::string &name : record.chainNames[number])
        names << (name == " " ? "' '" : Text(name));
    return names.join(',');
}

std::vector<Column<std::size_t>> Columns(const AssemblyRecord &record) {
    const auto copy = [&record](std::size_t i) -> const PlacedCopy & { return record.result.copies[i]; };
    int nameWidth = 4, chainsWidth = 8;
    for (std::size_t i = 0; i < record.result.copies.size(); ++i) {
        nameWidth = std::max(nameWidth, int(Text(record.parts[copy(i).part].name).size()));
        chainsWidth = std::max(chainsWidth, int(ChainsOf(record, i).size()) + 2);
    }
    return {{QString("Part").leftJustified(nameWidth), nameWidth,
             [=, &record](std::size_t i) {
                 return Text(record.parts[copy(i).part].name).leftJustified(nameWidth);
             }},
            {"Copy", 6, [=](std::size_t i) { return QString::number(copy(i).copy + 1); }},
            {"Chains", chainsWidth, [&record](std::size_t i) { return ChainsOf(record, i); }},
            {"Probability", 13, [=](std::size_t i) { return base::FixedNumber(copy(i).probability, 0, 3); }},
            {"Contacts", 10, [=](std::size_t i) { return QString::number(copy(i).contacts); }},
            {"Clashes", 9, [=](std::size_t i) { return QString::number(copy(i).clashes); }},
            {"Explains", 10,
             [=](std::size_t i) { return base::FixedNumber(100 * copy(i).explained, 0, 1) + " %"; }},
            {"Centre, Å", 28, [=](std::size_t i) { return PositionText(copy(i).pose.centre); }}};
}

/// How many distances hold, and those that do not.
void ReportDistances(const AssemblyRecord &record) {
    if (record.distances.empty())
        return;
    std::size_t held = 0;
    for (std::size_t i = 0; i < record.distances.size(); ++i)
        held += Holds(record, i) ? 1 : 0;
    PrintItem("Distances", QString("%1 of %2 hold").arg(held).arg(record.distances.size()));
    for (std::size_t i = 0; i < record.distances.size(); ++i)
        if (!Holds(record, i))
            PrintItem("", Text(DistanceText(record, i)));
}

} // namespace

void ReportAssembly(const AssemblyRecord &record, const std::vector<std::string> &written) {
    if (record.symmetry)
        PrintSymmetry(*record.symmetry);
    PrintItem("Assembly", Text(AssemblyText(record)));
    for (std::size_t part = 0; part < record.parts.size(); ++part)
        PrintItem(part == 0 ? "Parts" : "", Text(record.parts[part].name + ": " + PartText(record, part)));
    ReportDistances(record);
    if (!record.result.copies.empty()) {
        if (!record.result.cancelled)
            PrintItem("Refined", Text(RefinementText(record)));
        PrintItem("Explained", Text(ExplainedText(record)));
        Print("");
        std::vector<std::size_t> rows(record.result.copies.size());
        for (std::size_t i = 0; i < rows.size(); ++i)
            rows[i] = i;
        PrintTable<std::size_t>(Columns(record), rows);
    }
    PrintWritten(written);
}

} // namespace batch
