#include "DataMaker.h"

#include "Space.h"

namespace VARNO {

Compound *DataMaker::Add(Compound *parent, std::unique_ptr<Compound> node) {
    Compound *const added = node.get();
    (parent ? parent : Space::instance())->Adopt(std::move(node));
    if (added->IsAttached())
        Space::instance()->Changes().Announce(added, Publisher::Addition);
    return added;
}

Compound *DataMaker::makeClump(const std::string &name) {
    return Add(nullptr, std::make_unique<Clump>(name));
}

Compound *DataMaker::makeMolecule(Compound *parent, const std::string &name) {
    return Add(parent, std::make_unique<Molecule>(name));
}

Compound *DataMaker::makeChain(Compound *parent, const std::string &identifier, bool polymer) {
    return Add(parent, std::make_unique<Chain>(identifier, polymer));
}

Compound *DataMaker::makeGroup(Compound *parent, const std::string &name, const std::string &sequenceId) {
    return Add(parent, std::make_unique<Residue>(name, sequenceId));
}

Compound *DataMaker::makeAtom(Compound *parent, const std::string &label, const std::string &name,
                              const std::string &modelNumber, const Vertex &position, long,
                              const std::string &orbital, float charge, float bFactor) {
    return Add(parent, std::make_unique<Atom>(
                           Atom::Attributes{label, name, modelNumber, position, orbital, charge, bFactor}));
}

Compound *DataMaker::makeBond(Compound *first, Compound *second, char kind) {
    return Add(first, std::make_unique<Bond>(first, second, kind));
}

Compound *DataMaker::makeGrid(Compound *parent, const std::string &name, unsigned nx, unsigned ny,
                              unsigned nz, float ox, float oy, float oz, float sx, float sy, float sz,
                              float alpha, float beta, float gamma) {
    using Counts = Vector<unsigned, 3>;
    using Floats = Vector<float, 3>;
    return Add(parent, std::make_unique<Grid>(name, Counts(nx, ny, nz), Floats(ox, oy, oz),
                                              Floats(sx, sy, sz), Floats(alpha, beta, gamma)));
}

Grid *DataMaker::addGrid(Compound *parent, std::unique_ptr<Grid> grid) {
    Grid *const added = grid.get();
    Add(parent, std::move(grid));
    return added;
}

} // namespace VARNO
