#pragma once

#include "document/Document.h"
#include "document/NodeJson.h"
#include "place/PlaceSearch.h"

#include <QJsonObject>
#include <QWidget>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QToolButton;

namespace desktop {

class NodeChoice;
class PlaceModels;

/// What is looked for and where: map, models, copies, resolution, and under "More" what is seldom needed.
class PlaceForm : public QWidget {
    Q_OBJECT

public:
    explicit PlaceForm(Document &document);

    /// Whether there is a map and a model to choose.
    bool IsComplete() const;
    /// Throws std::runtime_error for what cannot be asked for, in the words of the form.
    PlaceQuestion Question() const;

    /// What the form asks for, as a session keeps it; and back. Nodes that are not there leave the choice as
    /// it is.
    QJsonObject State(const JsonOfNode &jsonOf) const;
    void Restore(const QJsonObject &state, const NodeOfJson &nodeOf);

signals:
    /// What can be chosen has changed.
    void changed();

private:
    QWidget *MakeMore();
    void RestoreModels(const QJsonArray &models, const NodeOfJson &nodeOf);
    void UpdateChoices();
    hosts::PlaceOptions Options() const;
    /// What the form calls an option of the command's.
    std::string NameOf(const std::string &option) const;

    Document &m_document;
    NodeChoice *m_map;
    PlaceModels *m_models;
    QDoubleSpinBox *m_resolution, *m_minPlddt;
    QComboBox *m_scope, *m_symmetry;
    QCheckBox *m_hands, *m_invert, *m_leavesOut;
};

} // namespace desktop
