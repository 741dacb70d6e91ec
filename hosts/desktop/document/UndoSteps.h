#pragma once

#include "Compound.h"

#include <QUndoCommand>

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
    RemovalStep(const QString &text, std::vector<VARNO::Compound *> nodes)
        : NodesStep(text, std::move(nodes)) {}

    void redo() override { TakeOut(); }
    void undo() override { PutBack(); }
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
