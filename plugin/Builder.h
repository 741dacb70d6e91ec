#pragma once

#include "solutions/Solution.h"

/// Whether there is a target to build from; warns when none is chosen, or when the chosen one has left the
/// model.
bool HasTarget();

/// Adds a copy of the target in the solution's pose to the model: a clump "MVX_<molecule>_<number>" with one
/// molecule that holds the residues, their atoms at rotation·p + translation, and a bond from "C" of each
/// residue to "N" of the next. The pose applies to the target as it stands in the model now. Call it within
/// an open batch of additions, and with a target.
void BuildSolution(const SolutionScore &solution, int number);
