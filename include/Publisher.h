#pragma once

#include <vector>

namespace VARNO {

class Compound;
class DataPointBase;

/// Somebody who wants to hear of changes to the model.
class Subscriber {
public:
    virtual ~Subscriber() = default;
    /// Called once per closed batch of additions, and once per removal, after the tree has changed. The
    /// notice lives for the call only.
    virtual void Notify(const DataPointBase &notice) = 0;
};

/// Where changes to the model are announced. Subscribers are not owned and must leave before they die, which
/// they may do while a notice is being told.
class Publisher {
public:
    enum ActionType { None = 0, Addition = 1, Removal = 2 };

    void Subscribe(Subscriber *subscriber);
    void Unsubscribe(Subscriber *subscriber);

    /// Makes the batch the open one. False, and nothing happens, while another is open.
    bool Open(DataPointBase *batch);
    /// Ends the batch and tells every subscriber but the batch's origin what of it is still in the model. A
    /// batch without content tells nobody; one that is not the open one is passed by.
    void Close(DataPointBase *batch);
    /// Adds the node to the open batch's list; without an open batch it is announced at once, on its own.
    void Announce(Compound *node, ActionType action);

private:
    void Tell(const DataPointBase &notice) const;

    std::vector<Subscriber *> m_subscribers;
    DataPointBase *m_open = nullptr;
};

/// A change notice: who made the change, what kind it is, and the nodes concerned in the order of the change.
class DataPointBase {
public:
    /// `origin` is the subscriber that makes the change and needs no notice of it; null when there is none.
    DataPointBase(Subscriber *origin, Publisher::ActionType action)
        : m_origin(origin)
        , m_action(action) {}
    DataPointBase(const DataPointBase &) = delete;
    DataPointBase &operator=(const DataPointBase &) = delete;
    virtual ~DataPointBase() = default;

    Subscriber *GetOrigin() const { return m_origin; }
    /// The action type given, or `Publisher::None` where the host refused it.
    Publisher::ActionType GetActionState() const { return m_action; }
    const std::vector<Compound *> &GetNodes() const { return m_nodes; }

protected:
    void Refuse() { m_action = Publisher::None; }

private:
    friend class Publisher;

    Subscriber *m_origin;
    Publisher::ActionType m_action;
    std::vector<Compound *> m_nodes;
};

} // namespace VARNO
