#include "panels/NodeChoice.h"

#include "document/Nodes.h"

#include <algorithm>

using namespace VARNO;

namespace desktop {

namespace {

QVariant Data(Compound *node) {
    return QVariant::fromValue(static_cast<void *>(node));
}

} // namespace

NodeChoice::NodeChoice(const QString &name) {
    setObjectName(name);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(12);
}

void NodeChoice::Offer(const Document::Nodes &nodes) {
    const QVariant current = currentData();
    clear();
    for (Compound *node : nodes)
        addItem(PathOf(node), Data(node));
    setCurrentIndex(std::max(0, findData(current)));
}

Compound *NodeChoice::Node() const {
    return static_cast<Compound *>(currentData().value<void *>());
}

void NodeChoice::Choose(Compound *node) {
    if (const int index = findData(Data(node)); index >= 0)
        setCurrentIndex(index);
}

} // namespace desktop
