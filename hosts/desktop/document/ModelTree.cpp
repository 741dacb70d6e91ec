#include "document/ModelTree.h"

#include "document/Nodes.h"

#include "Group.h"

#include <QColor>

#include <algorithm>

using namespace VARNO;

namespace desktop {

namespace {

bool HasRow(const Compound *node) {
    return dynamic_cast<const Clump *>(node) || dynamic_cast<const Molecule *>(node) ||
           dynamic_cast<const Chain *>(node) || dynamic_cast<const Group *>(node) ||
           dynamic_cast<const Grid *>(node);
}

std::vector<Compound *> RowsBelow(const Compound *node) {
    if (dynamic_cast<const Group *>(node))
        return {};
    std::vector<Compound *> rows = Below(node);
    std::erase_if(rows, [](const Compound *below) { return !HasRow(below); });
    return rows;
}

/// The node and all below it that have rows, as the tree shows them.
template <class Visit>
void Walk(Compound *node, Visit visit) {
    for (Compound *below : RowsBelow(node)) {
        visit(below);
        Walk(below, visit);
    }
}

} // namespace

/// A row. The rows below it are those of the tree when they were made, and what was told since.
struct ModelTree::Item {
    Compound *node;
    Item *above;
    std::vector<std::unique_ptr<Item>> below;
    bool isFilled = false;
};

ModelTree::ModelTree(Document &document)
    : m_document(document)
    , m_root(MakeItem(nullptr, Space::instance())) {
    connect(&document, &Document::added, this, qOverload<const Document::Nodes &>(&ModelTree::TakeIn));
    connect(&document, &Document::removed, this, &ModelTree::LetGo);
    connect(&document, &Document::shownChanged, this, &ModelTree::Refresh);
    connect(&document, &Document::lookChanged, this, [this](Compound *drawn) { Refresh({drawn}); });
}

ModelTree::~ModelTree() = default;

Compound *ModelTree::NodeAt(const QModelIndex &index) const {
    return index.isValid() ? ItemAt(index)->node : nullptr;
}

QModelIndex ModelTree::IndexOf(const Compound *node) {
    if (!node || node == Space::instance() || !HasRow(node))
        return {};
    if (!m_items.contains(node)) {
        const QModelIndex above = IndexOf(node->GetParent());
        if (canFetchMore(above))
            fetchMore(above);
    }
    const auto found = m_items.find(node);
    return found == m_items.end() ? QModelIndex() : IndexOfItem(found->second);
}

Compound *ModelTree::Find(const QString &text, const Compound *from) const {
    Compound *first = nullptr, *next = nullptr;
    bool passed = false;
    Walk(Space::instance(), [&](Compound *node) {
        if (NameOf(node).contains(text, Qt::CaseInsensitive)) {
            first = first ? first : node;
            next = next || !passed ? next : node;
        }
        passed = passed || node == from;
    });
    return next ? next : first;
}

QModelIndex ModelTree::index(int row, int column, const QModelIndex &parent) const {
    if (!hasIndex(row, column, parent))
        return {};
    return createIndex(row, column, ItemAt(parent)->below[std::size_t(row)].get());
}

QModelIndex ModelTree::parent(const QModelIndex &index) const {
    return index.isValid() ? IndexOfItem(ItemAt(index)->above) : QModelIndex();
}

int ModelTree::rowCount(const QModelIndex &parent) const {
    return parent.column() > 0 ? 0 : int(ItemAt(parent)->below.size());
}

int ModelTree::columnCount(const QModelIndex &) const {
    return Columns;
}

QVariant ModelTree::data(const QModelIndex &index, int role) const {
    Compound *node = NodeAt(index);
    if (!node)
        return {};
    if (role == Qt::DisplayRole)
        return index.column() == Name ? NameOf(node) : ContentOf(node);
    if (role == Qt::ToolTipRole) {
        const std::string file = m_document.FileOf(node);
        return file.empty() ? PathOf(node) : QString::fromStdString(file);
    }
    if (index.column() != Name)
        return {};
    if (role == Qt::CheckStateRole)
        return CheckState(node);
    if (const auto *map = dynamic_cast<const Grid *>(node); map && role == Qt::DecorationRole)
        return m_document.LookOf(map).colour;
    return {};
}

bool ModelTree::setData(const QModelIndex &index, const QVariant &value, int role) {
    if (role != Qt::CheckStateRole || !index.isValid())
        return false;
    m_document.SetShown({NodeAt(index)}, value.toInt() == Qt::Checked);
    return true;
}

QVariant ModelTree::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return section == Name ? tr("Name") : tr("Content");
}

Qt::ItemFlags ModelTree::flags(const QModelIndex &index) const {
    const Compound *node = NodeAt(index);
    if (!node)
        return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (index.column() == Name && !dynamic_cast<const Group *>(node))
        flags |= Qt::ItemIsUserCheckable;
    return flags;
}

bool ModelTree::hasChildren(const QModelIndex &parent) const {
    const Item *item = ItemAt(parent);
    if (item->isFilled)
        return !item->below.empty();
    return !dynamic_cast<const Group *>(item->node) && !dynamic_cast<const Grid *>(item->node);
}

bool ModelTree::canFetchMore(const QModelIndex &parent) const {
    return !ItemAt(parent)->isFilled;
}

void ModelTree::fetchMore(const QModelIndex &parent) {
    Item *item = ItemAt(parent);
    item->isFilled = true;
    const std::vector<Compound *> nodes = RowsBelow(item->node);
    if (nodes.empty())
        return;
    beginInsertRows(parent, 0, int(nodes.size()) - 1);
    for (Compound *node : nodes)
        item->below.push_back(MakeItem(item, node));
    endInsertRows();
}

ModelTree::Item *ModelTree::ItemAt(const QModelIndex &index) const {
    return index.isValid() ? static_cast<Item *>(index.internalPointer()) : m_root.get();
}

QModelIndex ModelTree::IndexOfItem(const Item *item) const {
    if (!item || !item->above)
        return {};
    const auto &rows = item->above->below;
    const auto place = std::ranges::find(rows, item, &std::unique_ptr<Item>::get);
    return createIndex(int(place - rows.begin()), Name, item);
}

/// The rows of all but chains are made at once, so that a file can be opened to its chains.
std::unique_ptr<ModelTree::Item> ModelTree::MakeItem(Item *above, Compound *node) {
    auto item = std::make_unique<Item>();
    item->node = node;
    item->above = above;
    m_items[node] = item.get();
    if (!IsDrawnAsChain(node)) {
        item->isFilled = true;
        for (Compound *below : RowsBelow(node))
            item->below.push_back(MakeItem(item.get(), below));
    }
    return item;
}

void ModelTree::TakeIn(const std::vector<Compound *> &nodes) {
    for (Compound *node : nodes)
        TakeIn(node);
}

void ModelTree::TakeIn(Compound *node) {
    const auto above = m_items.find(node->GetParent());
    if (!HasRow(node) || above == m_items.end() || !above->second->isFilled || m_items.contains(node))
        return;
    Item *item = above->second;
    const std::vector<Compound *> rows = RowsBelow(item->node);
    // Where the tree has it, past rows that are yet to be told of.
    const auto place = std::ranges::find(rows, node);
    const auto row =
        std::count_if(rows.begin(), place, [&](const Compound *one) { return m_items.contains(one); });
    beginInsertRows(IndexOfItem(item), int(row), int(row));
    item->below.insert(item->below.begin() + row, MakeItem(item, node));
    endInsertRows();
}

void ModelTree::LetGo(Compound *node) {
    const auto found = m_items.find(node);
    if (found == m_items.end())
        return;
    const QModelIndex index = IndexOfItem(found->second);
    Item *above = found->second->above;
    beginRemoveRows(index.parent(), index.row(), index.row());
    Forget(*found->second);
    above->below.erase(above->below.begin() + index.row());
    endRemoveRows();
}

void ModelTree::Forget(const Item &item) {
    for (const auto &below : item.below)
        Forget(*below);
    m_items.erase(item.node);
}

/// A row's check box tells of everything that is drawn below it.
void ModelTree::Refresh(const std::vector<Compound *> &drawn) {
    for (const Compound *node : drawn)
        for (auto found = m_items.find(node); found != m_items.end() && found->second->above;
             found = m_items.find(found->first->GetParent())) {
            const QModelIndex index = IndexOfItem(found->second);
            emit dataChanged(index, index);
        }
}

QVariant ModelTree::CheckState(Compound *node) const {
    const std::vector<Compound *> drawn = Drawn(node);
    if (drawn.empty())
        return {};
    const auto shown =
        std::ranges::count_if(drawn, [&](const Compound *one) { return m_document.IsShown(one); });
    if (shown == 0)
        return Qt::Unchecked;
    return shown == std::ssize(drawn) ? Qt::Checked : Qt::PartiallyChecked;
}

} // namespace desktop
