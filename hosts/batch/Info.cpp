#include "Commands.h"

#include "base/Numbers.h"

#include "Grid.h"
#include "cli/CommandLine.h"
#include "cli/Printable.h"
#include "formats/files/ByteSource.h"
#include "formats/maps/MapFile.h"
#include "formats/structures/StructureFile.h"

#include <iostream>

using namespace cli;
using namespace VARNO;
using formats::ByteSource;

namespace batch {

namespace {

void Line(const std::string &label, const QString &text) {
    std::cout << "  " << QString::fromStdString(label).leftJustified(10).toStdString()
              << Printable(text.toStdString()) << '\n';
}

template <class T>
QString Three(const Vector<T, 3> &numbers, const QString &separator) {
    return base::GeneralNumber(double(numbers[0])) + separator + base::GeneralNumber(double(numbers[1])) +
           separator + base::GeneralNumber(double(numbers[2]));
}

QString ModeText(int mode) {
    switch (mode) {
    case 0:
        return "signed bytes";
    case 1:
        return "16-bit integers";
    case 2:
        return "32-bit floats";
    case 6:
        return "unsigned 16-bit integers";
    default:
        return "16-bit floats";
    }
}

void PrintMap(ByteSource &source) {
    formats::MapReport report;
    const Grid &map = *formats::ReadMapFrom(source, &report);
    std::cout << Printable(source.Name()) << ": density map\n";
    if (!report.title.empty())
        Line("title", QString::fromStdString(report.title));
    Line("size", Three(map.Dimensions(), " x ") + " voxels");
    Line("spacing", Three(map.Spacing(), " x ") + " Å");
    Line("origin", Three(map.Origin(), ", ") + " Å, from " + QString::fromStdString(report.originSource));
    Line("data", QString("mode %1, %2, %3, axis order %4%5")
                     .arg(report.mode)
                     .arg(ModeText(report.mode), report.bigEndian ? "big-endian" : "little-endian",
                          QString::fromStdString(report.axisOrder),
                          report.compression.empty()
                              ? ""
                              : ", compressed by " + QString::fromStdString(report.compression)));
    Line("values",
         QString("minimum %1, maximum %2, mean %3, standard deviation %4")
             .arg(base::GeneralNumber(double(report.minimum)), base::GeneralNumber(double(report.maximum)),
                  base::GeneralNumber(report.mean), base::GeneralNumber(report.deviation)));
    for (const std::string &warning : report.warnings)
        Line("note", QString::fromStdString(warning));
}

void ChainRow(const QString &name, const QString &kind, const QString &residues, const QString &placed,
              const QString &atoms) {
    std::cout << QString("  %1%2%3%4%5\n")
                     .arg(name.leftJustified(10), kind.leftJustified(9), residues.rightJustified(8),
                          placed.rightJustified(15), atoms.rightJustified(8))
                     .toStdString();
}

void PrintChains(const std::vector<formats::ChainReport> &chains) {
    if (chains.empty())
        return Line("chains", "no polymer");
    ChainRow("chain", "kind", "residues", "with position", "atoms");
    for (const formats::ChainReport &chain : chains)
        ChainRow(chain.identifier == " " ? "' '" : QString::fromStdString(Printable(chain.identifier)),
                 QString::fromStdString(chain.kind), QString::number(chain.residues),
                 QString::number(chain.placed), QString::number(chain.atoms));
}

void PrintStructure(ByteSource &source) {
    formats::StructureReport report;
    formats::ReadStructureFrom(source, &report);
    std::cout << Printable(source.Name()) << ": structure, " << report.format << '\n';
    PrintChains(report.chains);
    Line("models", QString::number(report.models));
    Line("besides", QString("ligand residues %1, waters %2").arg(report.ligands).arg(report.waters));
    for (const std::string &warning : report.warnings)
        Line("note", QString::fromStdString(warning));
}

int Run(const Arguments &arguments) {
    ByteSource source(arguments.operand);
    if (formats::IsMap(source))
        PrintMap(source);
    else
        PrintStructure(source);
    return Succeeded;
}

} // namespace

Command InfoCommand() {
    return {
        .name = "info",
        .summary = "show what a structure or a map file holds",
        .description =
            "Of a structure (PDB or mmCIF): its chains, how many of their residues have a position that can be "
            "fitted, and what the reader skips. Of a density map (MRC or CCP4): size, spacing and origin in "
            "Å, which words of the header gave the origin, and the values. The kind is recognised by the "
            "content, not the name; files compressed by gzip or bzip2 are read too.",
        .options = {},
        .operand = "FILE",
        .example = "morvanex info map.mrc",
        .run = Run,
    };
}

} // namespace batch
