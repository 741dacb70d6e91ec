#include "Inputs.h"

#include "Diagnostics.h"

using namespace VARNO;

namespace Batch {

namespace {

template <class Report, class Read>
auto Load(const std::string &file, Report *report, Read read) {
    Report ownReport;
    Report &said = report ? *report : ownReport;
    auto *node = read(file, &said);
    for (const std::string &warning : said.warnings)
        Warn(file + ": " + warning);
    return node;
}

} // namespace

Clump *LoadStructure(const std::string &file, formats::StructureReport *report) {
    return Load(file, report, formats::ReadStructure);
}

Grid *LoadMap(const std::string &file, formats::MapReport *report) {
    return Load(file, report, formats::ReadMap);
}

} // namespace Batch
