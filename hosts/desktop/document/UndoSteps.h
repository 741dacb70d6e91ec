#pragma once

#include "Compound.h"

#include <QUndoCommand>

#include <functional>
#include <vector>

namespace desktop {

/// Nodes that are taken out of the model or put back by undo and redo. Those that are out when the step is
/// forgotten cannot come back, and maps among them give up their values.
class NodesStep : public QUndoCommand {
public:
    ~NodesStep() override;

protected:
    NodesStep(const QString &text, std::vector<VARNO::Compound *> nodes)
        : QUndoCommand(text)
        , m_nodes(std::move(nodes)) {}

    void TakeOut();
    void PutBack();

private:
    std::vector<VARNO::Compound *> m_nodes;
    bool m_out = false;
};

/// The removal of nodes none of which lies below another.
class RemovalStep : public NodesStep {
public:
    /// `count` hears 1 for the removal and -1 for its undoing.
    RemovalStep(const QString &text, std::vector<VARNO::Compound *> nodes, std::function<void(int)> count)
        : NodesStep(text, std::move(nodes))
        , m_count(std::move(count)) {}

    void redo() override;
    void undo() override;

private:
    std::function<void(int)> m_count;
};

/// The addition of nodes that are in the model already when the step is made.
class AdditionStep : public NodesStep {
public:
    AdditionStep(const QString &text, std::vector<VARNO::Compound *> nodes)
        : NodesStep(text, std::move(nodes)) {}

    void redo() override { PutBack(); }
    void undo() override { TakeOut(); }
};

} // namespace desktop
