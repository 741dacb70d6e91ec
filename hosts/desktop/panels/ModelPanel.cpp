#include "panels/ModelPanel.h"

#include "document/Nodes.h"

#include "Atom.h"

#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QScopedValueRollback>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>

using namespace VARNO;

namespace desktop {

ModelPanel::ModelPanel(Document &document)
    : m_document(document)
    , m_tree(document)
    , m_search(new QLineEdit)
    , m_view(new QTreeView)
    , m_hint(new QLabel(tr("Nothing is open yet.\nFile ▸ Open reads maps and models."), m_view)) {
    m_search->setObjectName("modelSearch");
    m_search->setPlaceholderText(tr("Find a chain, a residue, a map …"));
    m_search->setToolTip(tr("Enter goes to the next one whose name holds this text"));
    m_search->setClearButtonEnabled(true);
    m_view->setObjectName("modelTree");
    m_view->setModel(&m_tree);
    m_view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_view->setUniformRowHeights(true);
    m_view->setContextMenuPolicy(Qt::CustomContextMenu);
    m_view->header()->setStretchLastSection(true);
    m_view->header()->resizeSection(ModelTree::Name, 160);
    m_view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_view->setToolTip(tr("The check box shows and hides; the selected rows are what the plug-ins take"));
    m_hint->setAlignment(Qt::AlignCenter);
    m_hint->setEnabled(false);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_search);
    layout->addWidget(m_view);
    auto *over = new QVBoxLayout(m_view);
    over->addWidget(m_hint);

    connect(m_search, &QLineEdit::returnPressed, this, &ModelPanel::FindNext);
    connect(m_view, &QWidget::customContextMenuRequested, this, &ModelPanel::ShowMenu);
    connect(m_view->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ModelPanel::TakeSelection);
    connect(&document, &Document::selectionChanged, this, &ModelPanel::ShowSelection);
    connect(&document, &Document::added, this, [this](const Document::Nodes &nodes) {
        // A file shows its chains; they are found at once.
        for (Compound *node : nodes)
            m_view->expandRecursively(m_tree.IndexOf(TopOf(node)), 1);
        UpdateHint();
    });
    connect(&document, &Document::removed, this, &ModelPanel::UpdateHint);
    UpdateHint();
}

void ModelPanel::Pick(Compound *node, bool adds) {
    if (dynamic_cast<Atom *>(node))
        node = node->GetParent();
    Document::Nodes nodes = adds ? m_document.Selection() : Document::Nodes();
    if (node && std::erase(nodes, node) == 0)
        nodes.push_back(node);
    m_document.Select(nodes);
}

void ModelPanel::RemoveSelected() {
    m_document.Remove(m_document.Selection());
}

void ModelPanel::TakeSelection() {
    if (m_isShowing)
        return;
    Document::Nodes nodes;
    for (const QModelIndex &index : m_view->selectionModel()->selectedRows())
        nodes.push_back(m_tree.NodeAt(index));
    const QScopedValueRollback showing(m_isShowing, true);
    m_document.Select(nodes);
}

void ModelPanel::ShowSelection() {
    if (m_isShowing)
        return;
    const QScopedValueRollback showing(m_isShowing, true);
    QItemSelection rows;
    QModelIndex last;
    for (const Compound *node : m_document.Selection())
        if (const QModelIndex index = m_tree.IndexOf(node); index.isValid()) {
            rows.select(index, index);
            last = index;
        }
    m_view->selectionModel()->select(rows, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    if (last.isValid()) {
        m_view->selectionModel()->setCurrentIndex(last, QItemSelectionModel::NoUpdate);
        m_view->scrollTo(last);
    }
}

void ModelPanel::FindNext() {
    if (m_search->text().isEmpty())
        return;
    const Document::Nodes &selected = m_document.Selection();
    if (Compound *found = m_tree.Find(m_search->text(), selected.empty() ? nullptr : selected.back()))
        m_document.Select({found});
}

void ModelPanel::ShowMenu(const QPoint &position) {
    const Document::Nodes nodes = m_document.Selection();
    if (nodes.empty())
        return;
    QMenu menu;
    menu.addAction(tr("&Show"), this, [&] { m_document.SetShown(nodes, true); });
    menu.addAction(tr("&Hide"), this, [&] { m_document.SetShown(nodes, false); });
    menu.addAction(tr("Show &only this"), this, [&] {
        m_document.SetShown(m_document.Tops(), false);
        m_document.SetShown(nodes, true);
    });
    menu.addSeparator();
    menu.addAction(tr("Save &as …"), this, &ModelPanel::saveAsked);
    menu.addAction(tr("&Remove"), this, &ModelPanel::RemoveSelected);
    menu.exec(m_view->viewport()->mapToGlobal(position));
}

void ModelPanel::UpdateHint() {
    m_hint->setVisible(m_document.Tops().empty());
}

} // namespace desktop
