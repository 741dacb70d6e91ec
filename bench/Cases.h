#pragma once

#include "fit/Preparation.h"

#include <string>

/// A target, a map and perhaps a keep-out grid, to be searched with any settings.
struct Case {
    const VARNO::Grid *map = nullptr;
    fit::Target target;
    const VARNO::Grid *keepOut = nullptr;
};

/// A map of 100 x 100 x 100 voxels of 2 Å filled with noise, the hardest to screen since every part of it is
/// like every other. The target is a chain of `points` in its middle, the solid, if wanted, another one
/// beside it, so that some of the poses collide. The same in every run.
Case SyntheticCase(unsigned points, bool withSolid);

/// A chain of a structure file in a map; all its other chains are the solid, if wanted. Throws FileError, and
/// std::runtime_error where the file has no such chain.
Case RealCase(const std::string &map, const std::string &structure, const std::string &chain, bool withSolid);
