#pragma once

#include "fit/Restraints.h"

#include "Grid.h"

#include <vector>

namespace fit {

/// What a fit is asked to do: a set of values that every stage reads.
struct FitParameters {
    int axisDepth = 0;          ///< of the subdivision that gives the rotation axes: 5·4^depth + 1 of them
    double angleStep = 0;       ///< of the rotation about each axis, radians
    double translationStep = 0; ///< Å
    int translationCount = 0;   ///< along each direction; an even number counts as the next odd one
    int keep = 0;               ///< highest-scoring solutions kept; a negative number counts as 0
    bool logging = false;       ///< whether every accepted pose is written to the log
    QString log;                ///< the log file, emptied even where nothing is logged; empty: no file
    std::vector<RestraintRecord> restraints;
    float inclusionDistance = 0; ///< residues of the solid farther than this from the centre are left out, Å
    VARNO::Compound *target = nullptr;
    const VARNO::Grid *map = nullptr; ///< null: no density term
    std::vector<VARNO::Compound *> solid;
};

/// `count`, or the next number where it is even.
inline int OddCount(int count) {
    return count % 2 == 0 ? count + 1 : count;
}

} // namespace fit
