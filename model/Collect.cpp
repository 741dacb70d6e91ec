#include "Collect.h"

#include "Atom.h"
#include "Group.h"

namespace VARNO {

namespace {

/// Appends the nodes below `start` that `matches` accepts. Without `all`, `start` is known to hold a selection:
/// each node's subtree is asked for one once, on the way down.
template <class Matches>
void Collect(const Compound *start, std::vector<Compound *> &out, bool all, Matches matches) {
    const auto visit = [&](Compound *node) {
        if (!node || (!all && !node->HasSelected()))
            return;
        if (matches(node) && (all || node->IsSelected()))
            out.push_back(node);
        Collect(node, out, all, matches);
    };
    for (auto it = start->ChildBegin(); it != start->ChildEnd(); ++it)
        visit(*it);
    for (auto it = start->PartBegin(); it != start->PartEnd(); ++it)
        visit(*it);
}

template <class Matches>
void CollectFrom(const Compound *start, std::vector<Compound *> &out, bool all, Matches matches) {
    if (start && (all || start->HasSelected()))
        Collect(start, out, all, matches);
}

} // namespace

void GetAtoms(Compound *start, std::vector<Compound *> &out, bool all) {
    CollectFrom(start, out, all, [](const Compound *node) { return dynamic_cast<const Atom *>(node); });
}

void GetResidues(Compound *start, std::vector<Compound *> &out, bool all) {
    CollectFrom(start, out, all, [](const Compound *node) { return dynamic_cast<const Residue *>(node); });
}

void GetGroups(Compound *start, std::vector<Compound *> &out, bool all) {
    CollectFrom(start, out, all, [](const Compound *node) { return dynamic_cast<const Group *>(node); });
}

void GetPeptides(Compound *start, std::vector<Compound *> &out, bool all) {
    CollectFrom(start, out, all, [](const Compound *node) {
        if (const auto *chain = dynamic_cast<const Chain *>(node))
            return chain->IsPolymer();
        const auto *molecule = dynamic_cast<const Molecule *>(node);
        return molecule && molecule->HoldsResidues();
    });
}

} // namespace VARNO
