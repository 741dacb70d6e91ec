#include "ObjectSource.h"

#include <algorithm>

using namespace VARNO;

namespace python {

namespace {

std::shared_ptr<Grid> Copied(const Grid &grid) {
    auto copy = std::make_shared<Grid>(grid.GetName(), grid.Dimensions(), grid.Origin(), grid.Spacing(),
                                       grid.Angles());
    std::ranges::copy(grid.Values(), copy->Values().begin());
    return copy;
}

} // namespace

Clump *ObjectSource::Structure(const std::string &name, formats::StructureReport &report) {
    if (const auto found = m_structures.find(name); found != m_structures.end()) {
        report = found->second.report;
        report.warnings.clear();
        return found->second.clump.get();
    }
    formats::ByteSource source(name);
    std::shared_ptr<Clump> clump = formats::ReadFreeStructure(source, &report);
    m_kept.push_back(clump);
    return clump.get();
}

Grid *ObjectSource::Map(const std::string &name, formats::MapReport &report) {
    std::shared_ptr<Grid> grid;
    if (const auto found = m_maps.find(name); found != m_maps.end()) {
        report = found->second.report;
        report.warnings.clear();
        grid = m_changesTheMap ? Copied(*found->second.grid) : found->second.grid;
    } else {
        formats::ByteSource source(name);
        grid = formats::ReadFreeMap(source, &report);
    }
    m_kept.push_back(grid);
    return grid.get();
}

bool ObjectSource::IsMap(const std::string &name) const {
    return m_maps.contains(name) || (!m_structures.contains(name) && InputSource::IsMap(name));
}

const MapObject *ObjectSource::Prepared(const std::string &name, double resolution) const {
    const auto found = m_maps.find(name);
    if (m_changesTheMap || found == m_maps.end())
        return nullptr;
    const MapObject &map = found->second;
    return map.prepared && map.prepared->Resolution() == resolution ? &map : nullptr;
}

} // namespace python
