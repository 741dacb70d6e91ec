#include "Space.h"

#include "Collect.h"
#include "Grid.h"

#include <utility>

namespace VARNO {

Space *Space::instance() {
    // Never destroyed: plug-ins keep pointers to nodes until the process ends.
    static Space *const space = new Space;
    return space;
}

void Space::Remove(Compound *node) {
    if (!node || node == this || !node->IsAttached())
        return;
    if (m_holds > 0)
        m_waiting.push_back(node);
    else
        Detach(node);
}

void Space::Detach(Compound *node) {
    std::vector<Compound *> grids;
    if (dynamic_cast<Grid *>(node))
        grids.push_back(node);
    GetItems<Grid>(node, grids, true, nullptr, true);
    m_removed.push_back(node->GetParent()->Release(node));
    for (Compound *grid : grids)
        static_cast<Grid *>(grid)->Discard();
    m_changes.Announce(node, Publisher::Removal);
}

void Space::EndHold() {
    --m_holds;
    for (Compound *node : std::exchange(m_waiting, {}))
        Remove(node);
}

RemovalHold::RemovalHold() {
    ++Space::instance()->m_holds;
}

RemovalHold::~RemovalHold() {
    Space::instance()->EndHold();
}

} // namespace VARNO
