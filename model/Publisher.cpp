#include "Publisher.h"

#include "Compound.h"

#include <algorithm>

namespace VARNO {

void Publisher::Subscribe(Subscriber *subscriber) {
    m_subscribers.push_back(subscriber);
}

void Publisher::Unsubscribe(Subscriber *subscriber) {
    std::erase(m_subscribers, subscriber);
}

bool Publisher::Open(DataPointBase *batch) {
    if (m_open)
        return false;
    m_open = batch;
    return true;
}

void Publisher::Close(DataPointBase *batch) {
    if (m_open != batch)
        return;
    m_open = nullptr;
    std::erase_if(batch->m_nodes, [](const Compound *node) { return !node->IsAttached(); });
    if (!batch->m_nodes.empty())
        Tell(*batch);
}

void Publisher::Announce(Compound *node, ActionType action) {
    if (m_open && action == m_open->GetActionState()) {
        m_open->m_nodes.push_back(node);
        return;
    }
    DataPointBase notice(nullptr, action);
    notice.m_nodes.push_back(node);
    Tell(notice);
}

void Publisher::Tell(const DataPointBase &notice) const {
    // While one is being told, others may join or leave; those that have left may be dead.
    const std::vector<Subscriber *> listeners = m_subscribers;
    for (Subscriber *listener : listeners)
        if (listener != notice.GetOrigin() && std::ranges::count(m_subscribers, listener) > 0)
            listener->Notify(notice);
}

} // namespace VARNO
