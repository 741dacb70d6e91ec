#include "document/UndoSteps.h"

#include "Space.h"

using namespace VARNO;

namespace desktop {

NodesStep::~NodesStep() {
    if (m_out)
        for (Compound *node : m_nodes)
            Space::instance()->Forget(node);
}

void NodesStep::TakeOut() {
    m_out = true;
    for (Compound *node : m_nodes)
        Space::instance()->TakeOut(node);
}

void NodesStep::PutBack() {
    m_out = false;
    // The other way round, so that each finds its former place.
    for (auto node = m_nodes.rbegin(); node != m_nodes.rend(); ++node)
        Space::instance()->PutBack(*node);
}

void RemovalStep::redo() {
    m_count(1);
    TakeOut();
}

void RemovalStep::undo() {
    PutBack();
    m_count(-1);
}

} // namespace desktop
