#pragma once

#include "fit/FitParameters.h"
#include "fit/KeepOut.h"
#include "fit/Target.h"

#include <vector>

namespace fit {

/// From the parameters of a fit to the plain data that scoring needs.

/// Everything of a fit that can be found out without changing the model.
struct Survey {
    Target target;
    Solid solid;
};

/// Surveys the target and the solid.
Survey SurveyFit(const FitParameters &parameters);

/// The cube of translations: `count` (odd) along each direction, `step` Å apart, centred on zero; x varies
/// slowest and z fastest. Empty for a negative count.
std::vector<VARNO::Vertex> TranslationOffsets(int count, double step);

/// What a search runs on.
struct Preparation {
    const VARNO::Grid *map = nullptr;     ///< null: no density term
    const VARNO::Grid *keepOut = nullptr; ///< null: no collision test
    Target target;
    std::vector<VARNO::Vertex> axes;    ///< unit vectors
    std::vector<VARNO::Vertex> offsets; ///< Å
    double angleStep = 0;               ///< radians
};

/// Turns the survey into what the search runs on: adds the keep-out grid to the model, and reports on the
/// debug channel what was found.
Preparation PrepareFit(const FitParameters &parameters, const Survey &survey);

} // namespace fit
