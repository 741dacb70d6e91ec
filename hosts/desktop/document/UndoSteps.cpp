#include "document/UndoSteps.h"

#include "Space.h"

#include <ranges>

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
    for (Compound *node : m_nodes | std::views::reverse)
        Space::instance()->PutBack(node);
}

} // namespace desktop
