#pragma once

#include "hosts/report/PlacedModels.h"

#include <string>

namespace report {

/// What the 3D view draws.
struct ViewData {
    std::string json;  ///< for view.js: map and models packed, and where the rows' models stand
    double lowest = 0; ///< values from here to `highest` are worth a level
    double highest = 0;
    std::string remarks; ///< sentences: what of the map is shown and how, and what is left out
};

/// Makes the map and the models so small that the page stays below 15 MB.
ViewData MakeViewData(const Contents &contents, const Sources &sources, const PlacedModels &placed);

} // namespace report
