#pragma once

#include "Compound.h"
#include "Publisher.h"

namespace VARNO {

/// The root of the model tree: its parts are clumps and grids. One per process, used on one thread.
class Space : public Compound {
public:
    static Space *instance();

    std::string GetLabel() const override { return "Space"; }
    std::string GetName() const override { return "Space"; }
    bool IsAttached() const override { return true; }

    Publisher &Changes() { return m_changes; }

    /// While the root is read-only no batch of additions is let in.
    bool IsReadOnly() const { return m_readOnly; }
    void SetReadOnly(bool readOnly) { m_readOnly = readOnly; }

    /// Takes a node and everything below it out of the tree. The nodes stay alive; grids among them give up
    /// their values. Waits, while removals are held, until the last hold has ended. A node that is not below
    /// the root is left alone.
    void Remove(Compound *node);

    /// Removes a node likewise, but so that `PutBack` can undo it: grids keep their values.
    void TakeOut(Compound *node);
    /// Hangs a node that was taken out below its former parent again, at its former place, and announces it
    /// as an addition; a removal that still waits is called off. False, and nothing happens, where the node
    /// was not taken out or its former parent is not in the tree.
    bool PutBack(Compound *node);
    /// Gives up a node that was taken out: it cannot be put back any more, and grids lose their values.
    void Forget(Compound *node);

private:
    friend class RemovalHold;

    struct Waiting {
        Compound *node;
        bool forGood;
    };
    struct TakenOut {
        std::unique_ptr<Compound> node;
        Compound *parent;
        std::size_t place; ///< among what hangs below the parent
    };

    Space() = default;
    /// At once, or when the last hold has ended.
    void Ask(const Waiting &removal);
    void Detach(const Waiting &removal);
    void KeepForGood(std::unique_ptr<Compound> node);
    /// Asks again for the removals that were held; they go on waiting while another hold lives.
    void EndHold();

    Publisher m_changes;
    bool m_readOnly = false;
    unsigned m_holds = 0;
    std::vector<Waiting> m_waiting;   ///< asked to leave while removals were held
    std::vector<TakenOut> m_takenOut; ///< out of the tree for as long as nobody puts them back
    std::vector<std::unique_ptr<Compound>> m_removed; ///< out of the tree, alive for those who point to them
};

/// Keeps the model from losing nodes for as long as it lives: a fit holds one, so that the target, the solid
/// and the map cannot go away under it.
class RemovalHold {
public:
    RemovalHold();
    RemovalHold(const RemovalHold &) = delete;
    RemovalHold &operator=(const RemovalHold &) = delete;
    ~RemovalHold();
};

} // namespace VARNO
