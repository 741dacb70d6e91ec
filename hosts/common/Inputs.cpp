#include "hosts/common/Inputs.h"

using namespace VARNO;

namespace hosts {

namespace {

template <class Report, class Read>
auto Load(const std::string &file, const WarningSink &warn, Report *report, Read read) {
    Report ownReport;
    Report &said = report ? *report : ownReport;
    auto *node = read(file, &said);
    for (const std::string &warning : said.warnings)
        warn(file + ": " + warning);
    return node;
}

} // namespace

Clump *LoadStructure(const std::string &file, const WarningSink &warn, formats::StructureReport *report) {
    return Load(file, warn, report, formats::ReadStructure);
}

Grid *LoadMap(const std::string &file, const WarningSink &warn, formats::MapReport *report) {
    return Load(file, warn, report, formats::ReadMap);
}

} // namespace hosts
