#pragma once

#include "Compound.h"
#include "Grid.h"

#include <QString>

#include <vector>

namespace desktop {

/// What hangs directly below a node, children or parts, without empty entries.
std::vector<VARNO::Compound *> Below(const VARNO::Compound *node);

/// Whether the node is drawn as a chain: a chain, or a molecule that holds residues directly.
bool IsDrawnAsChain(const VARNO::Compound *node);

/// The nodes that are drawn, from `node` on down: chains, molecules that hold residues directly, grids.
std::vector<VARNO::Compound *> Drawn(VARNO::Compound *node);

/// The clump or grid below the root that the node belongs to; null for one that has left the tree.
VARNO::Compound *TopOf(VARNO::Compound *node);

/// Those of the nodes that lie below no other of them, each once, in their order.
std::vector<VARNO::Compound *> Uppermost(const std::vector<VARNO::Compound *> &nodes);

/// The node's name for people: "1tii", "chain A", "ALA12".
QString NameOf(const VARNO::Compound *node);

/// What the node holds, for people: "98 residues", "38 x 34 x 39 voxels of 2.5 Å".
QString ContentOf(const VARNO::Compound *node);

/// The node with the names that lead to it: "1tii, chain A, ALA12".
QString PathOf(const VARNO::Compound *node);

/// `count` things: "1 chain", "12,000 residues".
QString Counted(qsizetype count, const QString &noun);

} // namespace desktop
