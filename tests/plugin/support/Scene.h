#pragma once

#include "Compound.h"
#include "Grid.h"

#include <string>

/// Small models of a known shape, made with the host's factory.

/// A clump and a molecule of that name with one polymer chain of alanines, 3.8 Å apart along x from `start`,
/// each with N, CA and C. Returns the chain.
VARNO::Compound *MakeChain(const std::string &molecule, const std::string &identifier, int residues,
                           const VARNO::Vertex &start = VARNO::Vertex(0, 0, 0, true));

/// A cubic map of 2 Å spacing centred on the origin, densest at `peak`.
VARNO::Grid *MakeMap(const std::string &name, unsigned side = 21,
                     const VARNO::Vertex &peak = VARNO::Vertex(4, 0, 0, true));

/// Makes these nodes the host's whole selection.
void Select(std::initializer_list<VARNO::Compound *> nodes);

/// Takes the node out of the model, as a host does when its user deletes it.
void Remove(VARNO::Compound *node);
