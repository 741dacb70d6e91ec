#include "Scene.h"

#include "DataMaker.h"
#include "Space.h"

#include <cmath>

using VARNO::Compound;
using VARNO::DataMaker;
using VARNO::Grid;
using VARNO::Space;
using VARNO::Vertex;

namespace {

void Deselect(Compound *node) {
    node->SetSelected(false);
    for (auto it = node->ChildBegin(); it != node->ChildEnd(); ++it)
        Deselect(*it);
    for (auto it = node->PartBegin(); it != node->PartEnd(); ++it)
        Deselect(*it);
}

void AddAtom(Compound *residue, const char *element, const char *name, float x, float y, float z) {
    DataMaker::makeAtom(residue, element, name, "1", Vertex(x, y, z, true), 1, "sp3", 0.5f, 20.0f);
}

} // namespace

Compound *MakeChain(const std::string &name, const std::string &identifier, int residues,
                    const Vertex &start) {
    Compound *molecule = DataMaker::makeMolecule(DataMaker::makeClump(name), name);
    Compound *chain = DataMaker::makeChain(molecule, identifier, true);
    for (int i = 0; i < residues; ++i) {
        const float x = start[0] + 3.8f * float(i), y = start[1], z = start[2];
        Compound *residue = DataMaker::makeGroup(chain, "ALA", std::to_string(i + 1));
        AddAtom(residue, "N", "N", x - 1.2f, y, z + 0.5f);
        AddAtom(residue, "C", "CA", x, y, z);
        AddAtom(residue, "C", "C", x + 1.2f, y + 0.5f, z);
    }
    return chain;
}

Grid *MakeMap(const std::string &name, unsigned side, const Vertex &peak) {
    const float origin = -float(side - 1);
    auto *grid = dynamic_cast<Grid *>(DataMaker::makeGrid(Space::instance(), name, side, side, side, origin,
                                                          origin, origin, 2, 2, 2, 90, 90, 90));
    for (unsigned k = 0; k < side; ++k)
        for (unsigned j = 0; j < side; ++j)
            for (unsigned i = 0; i < side; ++i)
                grid->SetValue(i, j, k, std::exp(-(grid->GetPoint(i, j, k) - peak).SquaredLength() / 50.0f));
    return grid;
}

void Select(std::initializer_list<Compound *> nodes) {
    Deselect(Space::instance());
    for (Compound *node : nodes)
        node->SetSelected(true);
}

void Remove(Compound *node) {
    Space::instance()->Remove(node);
}
