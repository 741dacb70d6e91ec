#pragma once

#include "Atom.h"
#include "Compound.h"
#include "Grid.h"
#include "Residue.h"

namespace VARNO {

/// The factory of the model: every operation makes a node, hangs it last below its parent, and announces it
/// to the open batch of additions. The tree owns the node. A null parent means the root.
class DataMaker {
public:
    /// A container below the root.
    static Compound *makeClump(const std::string &name);
    static Compound *makeMolecule(Compound *parent, const std::string &name);
    static Compound *makeChain(Compound *parent, const std::string &identifier, bool polymer);
    /// A residue with its name ("ALA") and sequence identifier ("12A").
    static Compound *makeGroup(Compound *parent, const std::string &name, const std::string &sequenceId);
    /// `label` is the element symbol, `position` in Å, `charge` the formal charge, `bFactor` in Å². The
    /// integer says nothing about the atom and is ignored.
    static Compound *makeAtom(Compound *parent, const std::string &label, const std::string &name,
                              const std::string &modelNumber, const Vertex &position, long,
                              const std::string &orbital, float charge, float bFactor);
    /// A bond of that kind, kept as a part of `first`.
    static Compound *makeBond(Compound *first, Compound *second, char kind);
    /// A grid of nx x ny x nz values, all 0.0: origin and spacing in Å, cell angles in degrees. Throws
    /// std::bad_alloc when the values do not fit into memory.
    static Compound *makeGrid(Compound *parent, const std::string &name, unsigned nx, unsigned ny,
                              unsigned nz, float ox, float oy, float oz, float sx, float sy, float sz,
                              float alpha, float beta, float gamma);
    /// A grid that was filled beforehand, as readers do that may still fail halfway.
    static Grid *addGrid(Compound *parent, std::unique_ptr<Grid> grid);
    /// A clump that was filled outside of the tree, below the root; it and all that it holds are announced.
    static Clump *addClump(std::unique_ptr<Clump> clump);

private:
    static Compound *Add(Compound *parent, std::unique_ptr<Compound> node);
};

} // namespace VARNO
