#include "panels/PlaceModels.h"

#include "document/Nodes.h"

#include <QSpinBox>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace VARNO;

namespace desktop {

namespace {

constexpr int maxCopies = 1000, asManyAsFound = 0;

QSpinBox *MakeCopies() {
    auto *copies = new QSpinBox;
    copies->setRange(asManyAsFound, maxCopies);
    copies->setSpecialValueText(PlaceModels::tr("auto"));
    copies->setToolTip(PlaceModels::tr("How many copies are placed at most; 0: as many as are found"));
    QObject::connect(copies, &QSpinBox::valueChanged, copies, [copies](int number) {
        copies->setSuffix(number == 1 ? PlaceModels::tr(" copy") : PlaceModels::tr(" copies"));
    });
    copies->setValue(maxCopies);
    copies->setMinimumWidth(copies->sizeHint().width()); // that of the longest text, in every row
    copies->setValue(1);
    return copies;
}

} // namespace

PlaceModels::PlaceModels()
    : m_layout(new QVBoxLayout(this)) {
    m_layout->setContentsMargins(0, 0, 0, 0);
    auto *add = new QToolButton;
    add->setObjectName("placeAddModel");
    add->setText(tr("+ Add a model"));
    add->setToolTip(tr("Places several models together, without clashes"));
    add->setAutoRaise(true);
    connect(add, &QToolButton::clicked, this, &PlaceModels::AddRow);
    m_layout->addWidget(add);
    AddRow();
}

void PlaceModels::Offer(const Document::Nodes &nodes) {
    m_offered = nodes;
    for (const Row &row : m_rows)
        row.node->Offer(nodes);
}

std::vector<PlaceModels::Choice> PlaceModels::Choices() const {
    std::vector<Choice> choices;
    for (const Row &row : m_rows) {
        const int copies = row.copies->value();
        choices.push_back(
            {row.node->Node(), copies == asManyAsFound ? std::nullopt : std::optional(std::size_t(copies))});
    }
    return choices;
}

void PlaceModels::Choose(const std::vector<Choice> &choices) {
    while (m_rows.size() < choices.size())
        AddRow();
    while (m_rows.size() > std::max<std::size_t>(1, choices.size()))
        RemoveRow(m_rows.back().widget);
    for (std::size_t i = 0; i < choices.size(); ++i) {
        m_rows[i].node->Choose(choices[i].node);
        m_rows[i].copies->setValue(choices[i].copies ? int(*choices[i].copies) : asManyAsFound);
    }
}

void PlaceModels::AddRow() {
    Row row{new QWidget, new NodeChoice({}), MakeCopies(), new QToolButton};
    row.node->setToolTip(tr("A file's chains move together; a single chain moves alone"));
    row.node->Offer(m_offered);
    // What no other row has taken yet.
    row.node->setCurrentIndex(std::min(int(m_rows.size()), row.node->count() - 1));
    row.remove->setText(QStringLiteral("×"));
    row.remove->setToolTip(tr("Leave this model out"));
    row.remove->setAutoRaise(true);
    connect(row.remove, &QToolButton::clicked, this, [this, widget = row.widget] { RemoveRow(widget); });
    auto *layout = new QHBoxLayout(row.widget);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(row.node, 1);
    layout->addWidget(row.copies);
    layout->addWidget(row.remove);
    m_layout->insertWidget(m_layout->count() - 1, row.widget);
    m_rows.push_back(row);
    NameRows();
}

void PlaceModels::RemoveRow(const QWidget *widget) {
    const auto row = std::ranges::find(m_rows, widget, &Row::widget);
    row->widget->hide();
    row->widget->deleteLater(); // its button may be what was clicked
    m_rows.erase(row);
    NameRows();
}

void PlaceModels::NameRows() {
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        const QString number = i == 0 ? QString() : QString::number(i + 1);
        m_rows[i].node->setObjectName("placeModel" + number);
        m_rows[i].copies->setObjectName("placeCopies" + number);
        m_rows[i].remove->setObjectName("placeRemoveModel" + number);
        m_rows[i].remove->setVisible(m_rows.size() > 1);
    }
}

std::vector<Chain *> PolymersOf(Compound *node) {
    std::vector<Chain *> polymers;
    for (Compound *drawn : Drawn(node))
        if (auto *chain = dynamic_cast<Chain *>(drawn); chain && chain->IsPolymer())
            polymers.push_back(chain);
    return polymers;
}

} // namespace desktop
