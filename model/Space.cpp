#include "Space.h"

#include "Collect.h"
#include "Grid.h"

#include <algorithm>
#include <utility>

namespace VARNO {

Space *Space::instance() {
    // Never destroyed: plug-ins keep pointers to nodes until the process ends.
    static Space *const space = new Space;
    return space;
}

void Space::Remove(Compound *node) {
    Ask({node, true});
}

void Space::TakeOut(Compound *node) {
    Ask({node, false});
}

void Space::Ask(const Waiting &removal) {
    if (!removal.node || removal.node == this || !removal.node->IsAttached())
        return;
    if (m_holds > 0)
        m_waiting.push_back(removal);
    else
        Detach(removal);
}

void Space::Detach(const Waiting &removal) {
    Compound *const parent = removal.node->GetParent();
    const auto place = std::ranges::find(parent->m_below, removal.node) - parent->m_below.begin();
    std::unique_ptr<Compound> node = parent->Release(removal.node);
    if (removal.forGood)
        KeepForGood(std::move(node));
    else
        m_takenOut.push_back({std::move(node), parent, std::size_t(place)});
    m_changes.Announce(removal.node, Publisher::Removal);
}

void Space::KeepForGood(std::unique_ptr<Compound> node) {
    std::vector<Compound *> grids;
    if (dynamic_cast<Grid *>(node.get()))
        grids.push_back(node.get());
    GetItems<Grid>(node.get(), grids, true, nullptr, true);
    m_removed.push_back(std::move(node));
    for (Compound *grid : grids)
        static_cast<Grid *>(grid)->Discard();
}

bool Space::PutBack(Compound *node) {
    if (std::erase_if(m_waiting, [&](const Waiting &removal) { return removal.node == node; }) > 0)
        return true;
    const auto taken =
        std::ranges::find(m_takenOut, node, [](const TakenOut &one) { return one.node.get(); });
    if (!node || taken == m_takenOut.end() || !taken->parent->IsAttached())
        return false;
    taken->parent->AdoptAt(taken->place, std::move(taken->node));
    m_takenOut.erase(taken);
    m_changes.Announce(node, Publisher::Addition);
    return true;
}

void Space::Forget(Compound *node) {
    const auto taken =
        std::ranges::find(m_takenOut, node, [](const TakenOut &one) { return one.node.get(); });
    if (!node || taken == m_takenOut.end())
        return;
    KeepForGood(std::move(taken->node));
    m_takenOut.erase(taken);
}

void Space::EndHold() {
    --m_holds;
    for (const Waiting &removal : std::exchange(m_waiting, {}))
        Ask(removal);
}

RemovalHold::RemovalHold() {
    ++Space::instance()->m_holds;
}

RemovalHold::~RemovalHold() {
    Space::instance()->EndHold();
}

} // namespace VARNO
