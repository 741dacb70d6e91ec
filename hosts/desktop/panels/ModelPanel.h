#pragma once

#include "document/ModelTree.h"

#include <QWidget>

class QLabel;
class QLineEdit;
class QTreeView;

namespace desktop {

/// The model as a tree: check boxes show and hide, the selection is the one that the plug-ins see.
class ModelPanel : public QWidget {
    Q_OBJECT

public:
    explicit ModelPanel(Document &document);

    /// Selects a node as a click on its row would; a null node selects nothing.
    void Pick(VARNO::Compound *node, bool adds);
    void RemoveSelected();

signals:
    /// The file or the maps to be saved were asked for in the row's menu.
    void saveAsked();

private:
    void TakeSelection();
    void ShowSelection();
    void FindNext();
    void ShowMenu(const QPoint &position);
    void UpdateHint();

    Document &m_document;
    ModelTree m_tree;
    QLineEdit *m_search;
    QTreeView *m_view;
    QLabel *m_hint;
    bool m_isShowing = false; ///< the view is being told of the selection
};

} // namespace desktop
