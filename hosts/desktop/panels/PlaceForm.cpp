#include "panels/PlaceForm.h"

#include "document/Nodes.h"
#include "hosts/common/ParameterError.h"
#include "panels/NodeChoice.h"
#include "panels/PlaceModels.h"
#include "place/PlaceJson.h"

#include "Collect.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QJsonArray>
#include <QThread>
#include <QToolButton>

#include <algorithm>

using namespace VARNO;

namespace desktop {

namespace {

/// Shows or hides what lies below it.
QToolButton *MakeMoreButton(QWidget *more) {
    auto *button = new QToolButton;
    button->setObjectName("placeMore");
    button->setText(PlaceForm::tr("More"));
    button->setCheckable(true);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setArrowType(Qt::RightArrow);
    button->setAutoRaise(true);
    more->hide();
    QObject::connect(button, &QToolButton::toggled, more, [button, more](bool open) {
        button->setArrowType(open ? Qt::DownArrow : Qt::RightArrow);
        more->setVisible(open);
    });
    return button;
}

QDoubleSpinBox *MakeResolution() {
    auto *resolution = new QDoubleSpinBox;
    resolution->setObjectName("placeResolution");
    resolution->setRange(0, 100);
    resolution->setDecimals(1);
    resolution->setSuffix(PlaceForm::tr(" Å"));
    resolution->setSpecialValueText(PlaceForm::tr("estimated from the map"));
    resolution->setToolTip(PlaceForm::tr("The map's resolution; 0: it is estimated"));
    return resolution;
}

QComboBox *MakeSymmetry() {
    auto *symmetry = new QComboBox;
    symmetry->setObjectName("placeSymmetry");
    symmetry->setEditable(true);
    symmetry->setInsertPolicy(QComboBox::NoInsert);
    symmetry->setCompleter(nullptr);
    symmetry->addItems({PlaceForm::tr("none"), "auto", "C2", "C3", "D2", "T", "O", "I", "H"});
    symmetry->setToolTip(
        PlaceForm::tr("Places the model with its copies: the symmetry that the map has (auto), "
                      "one by its name (C5, D7, T, O, I), a helix (H), or one of a known rise in Å "
                      "and twist in degrees (H:27.6,-166.6)"));
    return symmetry;
}

std::string NameOfModel(Compound *node) {
    Compound *top = TopOf(node);
    return node == top ? top->GetName() : top->GetName() + '-' + node->GetName();
}

} // namespace

PlaceForm::PlaceForm(Document &document)
    : m_document(document)
    , m_map(new NodeChoice("placeMap"))
    , m_models(new PlaceModels)
    , m_resolution(MakeResolution()) {
    QWidget *more = MakeMore();
    auto *form = new QFormLayout(this);
    form->setContentsMargins(0, 0, 0, 0);
    form->addRow(tr("Map"), m_map);
    form->addRow(tr("Model"), m_models);
    form->addRow(tr("Resolution"), m_resolution);
    form->addRow(MakeMoreButton(more));
    form->addRow(more);
    connect(&document, &Document::added, this, &PlaceForm::UpdateChoices);
    connect(&document, &Document::removed, this, &PlaceForm::UpdateChoices);
    UpdateChoices();
}

QWidget *PlaceForm::MakeMore() {
    auto *more = new QWidget;
    m_scope = new QComboBox;
    m_scope->setObjectName("placeScope");
    m_scope->addItems(
        {tr("in the whole map"), tr("near where it is, in every turn"), tr("refine where it is")});
    m_symmetry = MakeSymmetry();
    m_hands = new QCheckBox(tr("the mirrored map too"));
    m_hands->setObjectName("placeHands");
    m_hands->setToolTip(
        tr("Tells which hand the map has. Where it is the other one, the mirrored map is added, "
           "and the places lie in it"));
    m_invert = new QCheckBox(tr("the map's density is dark"));
    m_invert->setObjectName("placeInvert");
    m_leavesOut = new QCheckBox(tr("leave out residues with a B factor below"));
    m_leavesOut->setObjectName("placeLeaveOut");
    m_leavesOut->setToolTip(tr("Predicted models store their confidence (pLDDT) there"));
    m_minPlddt = new QDoubleSpinBox;
    m_minPlddt->setObjectName("placeMinPlddt");
    m_minPlddt->setRange(0, 100);
    m_minPlddt->setValue(70);
    m_minPlddt->setEnabled(false);
    connect(m_leavesOut, &QCheckBox::toggled, m_minPlddt, &QWidget::setEnabled);
    auto *form = new QFormLayout(more);
    form->setContentsMargins(0, 0, 0, 0);
    form->addRow(tr("Search"), m_scope);
    form->addRow(tr("Symmetry"), m_symmetry);
    form->addRow(tr("Hands"), m_hands);
    form->addRow(m_invert);
    form->addRow(m_leavesOut);
    form->addRow(m_minPlddt);
    return more;
}

void PlaceForm::UpdateChoices() {
    Document::Nodes maps, models;
    GetItems<Grid>(Space::instance(), maps, true, nullptr, true);
    for (Compound *top : m_document.Tops()) {
        const std::vector<Chain *> polymers = PolymersOf(top);
        if (!polymers.empty())
            models.push_back(top);
        if (polymers.size() > 1)
            models.insert(models.end(), polymers.begin(), polymers.end());
    }
    m_map->Offer(maps);
    m_models->Offer(models);
    emit changed();
}

bool PlaceForm::IsComplete() const {
    return m_map->Node() && !m_models->IsEmpty();
}

PlaceQuestion PlaceForm::Question() const {
    PlaceQuestion question;
    question.map = dynamic_cast<Grid *>(m_map->Node());
    for (const auto &[node, copies] : m_models->Choices())
        question.models.push_back({NameOfModel(node), PolymersOf(node), copies});
    try {
        question.options = Options();
    } catch (const hosts::ParameterError &error) {
        throw std::runtime_error(NameOf(error.Parameter()) + ": " + error.Problem());
    }
    CheckQuestion(question, [this](const std::string &option) { return NameOf(option); });
    return question;
}

QJsonObject PlaceForm::State(const JsonOfNode &jsonOf) const {
    QJsonArray models;
    for (const auto &[node, copies] : m_models->Choices())
        models.append(QJsonObject{{"node", jsonOf(node)}, {"copies", JsonOfCopies(copies)}});
    return {{"map", jsonOf(m_map->Node())},          {"models", models},
            {"resolution", m_resolution->value()},   {"scope", m_scope->currentIndex()},
            {"symmetry", m_symmetry->currentText()}, {"hands", m_hands->isChecked()},
            {"invert", m_invert->isChecked()},       {"leavesOut", m_leavesOut->isChecked()},
            {"minPlddt", m_minPlddt->value()}};
}

void PlaceForm::Restore(const QJsonObject &state, const NodeOfJson &nodeOf) {
    m_map->Choose(nodeOf(state["map"]));
    RestoreModels(state["models"].toArray(), nodeOf);
    m_resolution->setValue(state["resolution"].toDouble());
    m_scope->setCurrentIndex(std::clamp(state["scope"].toInt(), 0, m_scope->count() - 1));
    m_symmetry->setCurrentText(state["symmetry"].toString(m_symmetry->itemText(0)));
    m_hands->setChecked(state["hands"].toBool());
    m_invert->setChecked(state["invert"].toBool());
    m_leavesOut->setChecked(state["leavesOut"].toBool());
    m_minPlddt->setValue(state["minPlddt"].toDouble(m_minPlddt->value()));
}

void PlaceForm::RestoreModels(const QJsonArray &models, const NodeOfJson &nodeOf) {
    std::vector<PlaceModels::Choice> choices;
    for (const QJsonValue model : models)
        choices.push_back({nodeOf(model["node"]), CopiesOf(model["copies"])});
    m_models->Choose(choices);
}

hosts::PlaceOptions PlaceForm::Options() const {
    hosts::PlaceOptions options;
    if (m_resolution->value() > 0)
        options.resolution = m_resolution->value();
    options.scope = hosts::PlaceScope(m_scope->currentIndex());
    options.hands = m_hands->isChecked();
    if (m_symmetry->currentText() != m_symmetry->itemText(0)) {
        options.symmetry.emplace();
        options.symmetry->request.symmetry =
            hosts::ReadAskedSymmetry(m_symmetry->currentText().toStdString());
    }
    options.invert = m_invert->isChecked();
    if (m_leavesOut->isChecked())
        options.minPlddt = m_minPlddt->value();
    options.threads = QThread::idealThreadCount();
    return options;
}

std::string PlaceForm::NameOf(const std::string &option) const {
    const QString name = option == "model"      ? tr("Model")
                         : option == "symmetry" ? tr("Symmetry")
                         : option == "hands"    ? m_hands->text()
                         : option == "near"     ? m_scope->itemText(int(hosts::PlaceScope::Near))
                                                : m_scope->itemText(int(hosts::PlaceScope::Refine));
    return tr("“%1”").arg(name).toStdString();
}

} // namespace desktop
