#pragma once

#include "document/Document.h"

#include <QAbstractItemModel>

#include <memory>
#include <unordered_map>

namespace desktop {

/// The model's tree as rows for a view: files and built copies, molecules, chains, residues, maps. The check
/// box of a row shows and hides what is drawn of it. Residue rows are made when a chain is opened.
class ModelTree : public QAbstractItemModel {
    Q_OBJECT

public:
    enum Column { Name, Content, Columns };

    explicit ModelTree(Document &document);
    ~ModelTree() override;

    VARNO::Compound *NodeAt(const QModelIndex &index) const;
    /// Makes the rows that lead to the node; invalid for one that has no row.
    QModelIndex IndexOf(const VARNO::Compound *node);
    /// The next node after `from`, or from the start of the tree on, whose name holds the text in capitals or
    /// not; null where there is none. Also residues whose rows have not been made yet are found.
    VARNO::Compound *Find(const QString &text, const VARNO::Compound *from) const;

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &index) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    bool hasChildren(const QModelIndex &parent = {}) const override;
    bool canFetchMore(const QModelIndex &parent) const override;
    void fetchMore(const QModelIndex &parent) override;

private:
    struct Item;

    Item *ItemAt(const QModelIndex &index) const;
    QModelIndex IndexOfItem(const Item *item) const;
    std::unique_ptr<Item> MakeItem(Item *above, VARNO::Compound *node);
    void TakeIn(const std::vector<VARNO::Compound *> &nodes);
    void TakeIn(VARNO::Compound *node);
    void LetGo(VARNO::Compound *node);
    void Forget(const Item &item);
    void Refresh(const std::vector<VARNO::Compound *> &drawn);
    QVariant CheckState(VARNO::Compound *node) const;

    Document &m_document;
    std::unordered_map<const VARNO::Compound *, Item *> m_items;
    std::unique_ptr<Item> m_root; ///< made last: it enters itself above
};

} // namespace desktop
