#pragma once

#include "Compound.h"

namespace VARNO {

class Grid;

/// Collectors. Each appends to `out`, in model order, the nodes of its kind below `start` (`start` itself is
/// not one of them); nothing is cleared. With `all` every such node is taken; without it only selected ones,
/// which lie only below nodes that hold a selection. Every node is visited once. A null `start` gives
/// nothing.
void GetAtoms(Compound *start, std::vector<Compound *> &out, bool all);
void GetResidues(Compound *start, std::vector<Compound *> &out, bool all);
/// Groups: residues and any other group of atoms.
void GetGroups(Compound *start, std::vector<Compound *> &out, bool all);
/// Polymer chains, and molecules that hold residues directly.
void GetPeptides(Compound *start, std::vector<Compound *> &out, bool all);

/// The nodes of type T below `node`. Of a `Composite` its children are looked at, of any other node its parts
/// and those only with `intoParts`: a T is taken (if `all`, or if it is selected), a `Composite` is walked in
/// turn without its parts, anything else is passed by. Without `all`, a node that holds no selection gives
/// nothing. `typeTag` only names the type and may be null; nor is a null `node` an error.
template <class T>
void GetItems(Compound *node, std::vector<Compound *> &out, bool all, const T *typeTag, bool intoParts) {
    if (!node || (!all && !node->HasSelected()))
        return;
    const bool composite = dynamic_cast<Composite *>(node) != nullptr;
    if (!composite && !intoParts)
        return;
    const auto end = composite ? node->ChildEnd() : node->PartEnd();
    for (auto it = composite ? node->ChildBegin() : node->PartBegin(); it != end; ++it) {
        if (auto *item = dynamic_cast<T *>(*it)) {
            if (all || item->IsSelected())
                out.push_back(item);
        } else {
            GetItems<T>(*it, out, all, typeTag, false);
        }
    }
}

} // namespace VARNO
