#include "Publisher.h"

namespace VARNO {

void Publisher::Subscribe(Subscriber *subscriber) { m_subscribers.push_back(subscriber); }

void Publisher::Unsubscribe(Subscriber *subscriber) { std::erase(m_subscribers, subscriber); }

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
    // A subscriber may leave, or others join, while it is being told.
    const std::vector<Subscriber *> told = m_subscribers;
    for (Subscriber *subscriber : told)
        if (subscriber != notice.GetOrigin())
            subscriber->Notify(notice);
}

} // namespace VARNO
