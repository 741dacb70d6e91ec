#pragma once

#include "document/Document.h"

#include <QComboBox>

namespace desktop {

/// A choice among nodes of the model.
class NodeChoice : public QComboBox {
    Q_OBJECT

public:
    explicit NodeChoice(const QString &name);

    /// Offers these nodes, and keeps the one that is chosen where it is still among them.
    void Offer(const Document::Nodes &nodes);
    VARNO::Compound *Node() const; ///< null where there is nothing to choose
    /// Chooses a node that is offered; changes nothing for others.
    void Choose(VARNO::Compound *node);
};

} // namespace desktop
