#include "hosts/common/Inputs.h"

#include "formats/files/FileError.h"

#include <filesystem>

using namespace VARNO;

namespace hosts {

namespace {

class Files : public InputSource {
public:
    Clump *Structure(const std::string &name, formats::StructureReport &report) override {
        return formats::ReadStructure(name, &report);
    }
    Grid *Map(const std::string &name, formats::MapReport &report) override {
        return formats::ReadMap(name, &report);
    }
};

template <class Report>
void WarnOf(const std::string &file, const Report &report, const WarningSink &warn) {
    for (const std::string &warning : report.warnings)
        warn(file + ": " + warning);
}

} // namespace

bool InputSource::IsMap(const std::string &name) const {
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(name, ignored))
        return false;
    try {
        formats::ByteSource source(name);
        return formats::IsMap(source);
    } catch (const formats::FileError &) {
        return false;
    }
}

InputSource &InputFiles() {
    static Files files;
    return files;
}

Clump *LoadStructure(const std::string &file, const WarningSink &warn, formats::StructureReport *report,
                     InputSource &source) {
    formats::StructureReport found;
    Clump *clump = source.Structure(file, found);
    WarnOf(file, found, warn);
    if (report)
        *report = std::move(found);
    return clump;
}

Grid *LoadMap(const std::string &file, const WarningSink &warn, formats::MapReport *report,
              InputSource &source) {
    formats::MapReport found;
    Grid *grid = source.Map(file, found);
    WarnOf(file, found, warn);
    if (report)
        *report = std::move(found);
    return grid;
}

} // namespace hosts
