#pragma once

#include "Grid.h"
#include "formats/maps/MapFile.h"
#include "placement/PreparedMap.h"

#include <pybind11/numpy.h>

#include <memory>
#include <string>

namespace python {

/// A density map as Python holds it.
struct MapObject {
    std::shared_ptr<VARNO::Grid> grid;
    formats::MapReport report; ///< of a map that was read
    std::string file;          ///< its name, as it was given to whoever read or made it
    /// For many models at one resolution; its values then have to stay as they are.
    std::shared_ptr<placement::PreparedMap> prepared;
    bool ruleOut = false; ///< whether one filter may rule a model out, see placement::PlacementParameters
};

/// Defines the class Map, and read_map and write_map.
void DefineMap(pybind11::module_ &module);

} // namespace python
