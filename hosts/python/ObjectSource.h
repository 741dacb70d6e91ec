#pragma once

#include "MapObject.h"
#include "StructureObject.h"

#include "hosts/common/Inputs.h"

#include <map>
#include <vector>

namespace python {

/// Maps and structures that Python has, by name; other names are files. What was to be warned of when those
/// were read has been said. Lives as long as the work on them.
class ObjectSource : public hosts::InputSource {
public:
    using Maps = std::map<std::string, MapObject>;
    using Structures = std::map<std::string, StructureObject>;

    /// A map that the work changes is copied first.
    ObjectSource(Maps maps, Structures structures, bool changesTheMap)
        : m_maps(std::move(maps))
        , m_structures(std::move(structures))
        , m_changesTheMap(changesTheMap) {}

    VARNO::Clump *Structure(const std::string &name, formats::StructureReport &report) override;
    VARNO::Grid *Map(const std::string &name, formats::MapReport &report) override;
    bool IsMap(const std::string &name) const override;
    /// A map that is prepared for a search at that resolution, of its values as they are; else nothing.
    const MapObject *Prepared(const std::string &name, double resolution) const;

private:
    Maps m_maps;
    Structures m_structures;
    bool m_changesTheMap;
    std::vector<std::shared_ptr<VARNO::Compound>> m_kept; ///< what was handed out
};

} // namespace python
