#include "DataMaker.h"

#include "Space.h"

namespace VARNO {

namespace {

void AnnounceWithAllBelow(Compound *node) {
    Space::instance()->Changes().Announce(node, Publisher::Addition);
    const bool composite = dynamic_cast<Composite *>(node) != nullptr;
    const auto end = composite ? node->ChildEnd() : node->PartEnd();
    for (auto it = composite ? node->ChildBegin() : node->PartBegin(); it != end; ++it)
        if (*it)
            AnnounceWithAllBelow(*it);
}

} // namespace

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

Clump *DataMaker::addClump(std::unique_ptr<Clump> clump) {
    Clump *const added = clump.get();
    Space::instance()->Adopt(std::move(clump));
    AnnounceWithAllBelow(added);
    return added;
}

} // namespace VARNO
