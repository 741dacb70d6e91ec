#pragma once

#include "place/PlaceAnswer.h"

#include "panels/NodeChoice.h"

#include <QWidget>

class QHBoxLayout;
class QSpinBox;
class QToolButton;
class QVBoxLayout;

namespace desktop {

/// The models whose places are looked for, one row each: which, and how many copies of it.
class PlaceModels : public QWidget {
    Q_OBJECT

public:
    PlaceModels();

    /// The nodes that any row may choose.
    void Offer(const Document::Nodes &nodes);
    bool IsEmpty() const { return m_offered.empty(); }

    struct Choice {
        VARNO::Compound *node = nullptr;
        std::optional<std::size_t> copies = 1; ///< not set: as many as are found
    };
    std::vector<Choice> Choices() const;
    /// Makes as many rows.
    void Choose(const std::vector<Choice> &choices);

private:
    struct Row {
        QWidget *widget;
        NodeChoice *node;
        QSpinBox *copies;
        QToolButton *remove;
    };

    void AddRow();
    void RemoveRow(const QWidget *widget);
    void NameRows();

    Document::Nodes m_offered;
    std::vector<Row> m_rows;
    QVBoxLayout *m_layout;
};

/// The polymer chains from a node on down, which move together.
std::vector<VARNO::Chain *> PolymersOf(VARNO::Compound *node);

} // namespace desktop
