#include "Collect.h"

#include "Atom.h"
#include "Residue.h"

namespace VARNO {

namespace {

/// Appends the nodes below `start` that `matches` accepts, visiting each node once. Whatever lies above a
/// selected node holds a selection, so that nothing is gained by asking each subtree for one before walking
/// it.
template <class Matches>
void Collect(const Compound *start, std::vector<Compound *> &out, bool all, Matches matches) {
    if (!start)
        return;
    const auto visit = [&](Compound *node) { // a null entry matches nothing
        if (matches(node) && (all || node->IsSelected()))
            out.push_back(node);
        Collect(node, out, all, matches);
    };
    for (auto it = start->ChildBegin(); it != start->ChildEnd(); ++it)
        visit(*it);
    for (auto it = start->PartBegin(); it != start->PartEnd(); ++it)
        visit(*it);
}

} // namespace

void GetAtoms(Compound *start, std::vector<Compound *> &out, bool all) {
    Collect(start, out, all, [](const Compound *node) { return dynamic_cast<const Atom *>(node); });
}

void GetResidues(Compound *start, std::vector<Compound *> &out, bool all) {
    Collect(start, out, all, [](const Compound *node) { return dynamic_cast<const Residue *>(node); });
}

void GetGroups(Compound *start, std::vector<Compound *> &out, bool all) {
    Collect(start, out, all, [](const Compound *node) { return dynamic_cast<const Group *>(node); });
}

void GetPeptides(Compound *start, std::vector<Compound *> &out, bool all) {
    Collect(start, out, all, [](const Compound *node) {
        if (const auto *chain = dynamic_cast<const Chain *>(node))
            return chain->IsPolymer();
        const auto *molecule = dynamic_cast<const Molecule *>(node);
        return molecule && molecule->HoldsResidues();
    });
}

} // namespace VARNO
