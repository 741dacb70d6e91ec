#include "panels/PlacePanel.h"

#include "document/Nodes.h"

#include "Collect.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QThread>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

using namespace VARNO;

namespace desktop {

namespace {

enum PlaceColumn { Number, Sureness, Score, InDensity, PlaceColumns };

QVariant Data(Compound *node) {
    return QVariant::fromValue(static_cast<void *>(node));
}

Compound *CurrentNode(const QComboBox *choice) {
    return static_cast<Compound *>(choice->currentData().value<void *>());
}

/// Offers these nodes, and keeps the one that is chosen where it is still among them.
void Offer(QComboBox *choice, const Document::Nodes &nodes) {
    const QVariant current = choice->currentData();
    choice->clear();
    for (Compound *node : nodes)
        choice->addItem(PathOf(node), Data(node));
    choice->setCurrentIndex(std::max(0, choice->findData(current)));
}

std::vector<Chain *> PolymersOf(Compound *node) {
    std::vector<Chain *> polymers;
    for (Compound *drawn : Drawn(node))
        if (auto *chain = dynamic_cast<Chain *>(drawn); chain && chain->IsPolymer())
            polymers.push_back(chain);
    return polymers;
}

QString Left(double seconds) {
    if (seconds < 90)
        return PlacePanel::tr("%1 s left").arg(int(seconds + 0.5));
    return PlacePanel::tr("%1 min left").arg(int(seconds / 60 + 0.5));
}

} // namespace

PlacePanel::PlacePanel(Document &document)
    : m_document(document) {
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(MakeQuestion());
    layout->addWidget(MakeProgress());
    layout->addWidget(MakeAnswer(), 1);
    connect(&document, &Document::added, this, &PlacePanel::UpdateChoices);
    connect(&document, &Document::removed, this, &PlacePanel::UpdateChoices);
    connect(&m_search, &PlaceSearch::progressed, this, &PlacePanel::ShowProgress);
    connect(&m_search, &PlaceSearch::answered, this, &PlacePanel::ShowAnswer);
    UpdateChoices();
}

QWidget *PlacePanel::MakeQuestion() {
    auto *question = new QWidget;
    m_map = new QComboBox;
    m_map->setObjectName("placeMap");
    m_model = new QComboBox;
    m_model->setObjectName("placeModel");
    m_model->setToolTip(tr("A file's chains move together; a single chain moves alone"));
    for (QComboBox *choice : {m_map, m_model}) {
        choice->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        choice->setMinimumContentsLength(12);
    }
    m_resolution = new QDoubleSpinBox;
    m_resolution->setObjectName("placeResolution");
    m_resolution->setRange(0, 100);
    m_resolution->setDecimals(1);
    m_resolution->setSuffix(tr(" Å"));
    m_resolution->setSpecialValueText(tr("estimated from the map"));
    m_resolution->setToolTip(tr("The map's resolution; 0: it is estimated"));
    m_moreButton = new QToolButton;
    m_moreButton->setObjectName("placeMore");
    m_moreButton->setText(tr("More"));
    m_moreButton->setCheckable(true);
    m_moreButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_moreButton->setArrowType(Qt::RightArrow);
    m_moreButton->setAutoRaise(true);
    m_more = MakeMore();
    connect(m_moreButton, &QToolButton::toggled, this, [this](bool open) {
        m_moreButton->setArrowType(open ? Qt::DownArrow : Qt::RightArrow);
        m_more->setVisible(open);
    });
    m_start = new QPushButton(tr("&Find its place"));
    m_start->setObjectName("placeStart");
    connect(m_start, &QPushButton::clicked, this, &PlacePanel::Start);
    auto *form = new QFormLayout(question);
    form->setContentsMargins(0, 0, 0, 0);
    form->addRow(tr("Map"), m_map);
    form->addRow(tr("Model"), m_model);
    form->addRow(tr("Resolution"), m_resolution);
    form->addRow(m_moreButton);
    form->addRow(m_more);
    form->addRow(m_start);
    return question;
}

QWidget *PlacePanel::MakeMore() {
    auto *more = new QWidget;
    m_scope = new QComboBox;
    m_scope->setObjectName("placeScope");
    m_scope->addItems(
        {tr("in the whole map"), tr("near where it is, in every turn"), tr("refine where it is")});
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
    form->addRow(m_invert);
    form->addRow(m_leavesOut);
    form->addRow(m_minPlddt);
    more->hide();
    return more;
}

QWidget *PlacePanel::MakeProgress() {
    m_progressRow = new QWidget;
    m_progress = new QProgressBar;
    m_progress->setObjectName("placeProgress");
    m_timeLeft = new QLabel;
    m_timeLeft->setObjectName("placeTimeLeft");
    m_cancel = new QPushButton(tr("&Cancel"));
    m_cancel->setObjectName("placeCancel");
    connect(m_cancel, &QPushButton::clicked, &m_search, &PlaceSearch::Cancel);
    auto *layout = new QHBoxLayout(m_progressRow);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_progress, 1);
    layout->addWidget(m_timeLeft);
    layout->addWidget(m_cancel);
    m_progressRow->hide();
    return m_progressRow;
}

QWidget *PlacePanel::MakeAnswer() {
    auto *answer = new QWidget;
    m_verdict = new QLabel;
    m_verdict->setObjectName("placeVerdict");
    m_verdict->setWordWrap(true);
    m_verdict->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_places = new QTreeWidget;
    m_places->setObjectName("places");
    m_places->setRootIsDecorated(false);
    m_places->setHeaderLabels({tr("#"), tr("How sure"), tr("Score"), tr("In density")});
    m_places->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_places->header()->setMinimumSectionSize(24);
    m_places->header()->setStretchLastSection(false);
    m_places->header()->setSectionResizeMode(Sureness, QHeaderView::Stretch);
    m_places->setToolTip(tr("A click, or the arrow keys, shows the place in the density"));
    connect(m_places, &QTreeWidget::currentItemChanged, this, &PlacePanel::ShowPlace);
    m_keep = new QPushButton(tr("&Keep this place"));
    m_keep->setObjectName("placeKeep");
    m_keep->setToolTip(tr("Adds a copy of the model at this place; Undo takes it back"));
    connect(m_keep, &QPushButton::clicked, this, &PlacePanel::Keep);
    auto *layout = new QVBoxLayout(answer);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_verdict);
    layout->addWidget(m_places, 1);
    layout->addWidget(m_keep);
    return answer;
}

void PlacePanel::UpdateChoices() {
    Document::Nodes maps, models;
    GetItems<Grid>(Space::instance(), maps, true, nullptr, true);
    for (Compound *top : m_document.Tops()) {
        const std::vector<Chain *> polymers = PolymersOf(top);
        if (!polymers.empty())
            models.push_back(top);
        if (polymers.size() > 1)
            models.insert(models.end(), polymers.begin(), polymers.end());
    }
    Offer(m_map, maps);
    Offer(m_model, models);
    UpdateButtons();
}

void PlacePanel::UpdateButtons() {
    const bool hasBoth = m_map->count() > 0 && m_model->count() > 0;
    m_start->setEnabled(hasBoth && !m_search.IsRunning());
    m_cancel->setEnabled(m_search.IsRunning());
    m_progressRow->setVisible(m_search.IsRunning());
    m_keep->setEnabled(CurrentPlace() >= 0);
    if (!m_answer && !m_search.IsRunning())
        m_verdict->setText(hasBoth ? tr("Choose a map and a model. Where the model stands does not matter.")
                                   : tr("Open a map and a model first: File ▸ Open."));
}

void PlacePanel::Start() {
    PlaceQuestion question;
    question.map = dynamic_cast<Grid *>(CurrentNode(m_map));
    question.chains = PolymersOf(CurrentNode(m_model));
    question.options.map = m_map->currentText().toStdString();
    question.options.model = TopOf(CurrentNode(m_model))->GetName();
    if (m_resolution->value() > 0)
        question.options.resolution = m_resolution->value();
    question.options.scope = hosts::PlaceScope(m_scope->currentIndex());
    question.options.invert = m_invert->isChecked();
    if (m_leavesOut->isChecked())
        question.options.minPlddt = m_minPlddt->value();
    question.options.threads = QThread::idealThreadCount();
    m_answer = nullptr;
    m_places->clear();
    m_progress->setRange(0, 0);
    m_timeLeft->clear();
    m_search.Start(question);
    m_verdict->setText(tr("Searching …"));
    UpdateButtons();
}

void PlacePanel::ShowProgress(double share, double secondsLeft) {
    m_progress->setRange(0, 1000);
    m_progress->setValue(int(1000 * share));
    m_timeLeft->setText(Left(secondsLeft));
}

void PlacePanel::ShowAnswer(const std::shared_ptr<const PlaceAnswer> &answer) {
    m_answer = answer;
    const hosts::PlaceRecord &record = answer->record;
    if (!answer->error.empty()) {
        m_verdict->setText(tr("No search: %1.").arg(QString::fromStdString(answer->error)));
        UpdateButtons();
        return;
    }
    QString verdict = QString::fromStdString(hosts::VerdictText(record.result)) + '.';
    verdict[0] = verdict[0].toUpper();
    if (record.result.cancelled)
        verdict.prepend(tr("Cancelled; this is what was found by then. "));
    if (record.result.seemsInverted)
        verdict += tr(" The map's density seems dark: if it is, say so under More and search again.");
    m_verdict->setText(verdict);
    for (std::size_t i = 0; i < record.result.places.size(); ++i) {
        const placement::Place &place = record.result.places[i];
        auto *row = new QTreeWidgetItem(m_places);
        row->setText(Number, QString::number(i + 1));
        row->setText(Sureness, ConfidenceInWords(record, place));
        row->setToolTip(Sureness, tr("probability %1").arg(place.probability, 0, 'f', 3));
        row->setText(Score, QString::number(place.score, 'f', 1));
        row->setText(InDensity, tr("%1 %").arg(100 * place.inDensity, 0, 'f', 0));
        for (const int column : {Number, Score, InDensity})
            row->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
    }
    m_places->setCurrentItem(m_places->topLevelItem(0));
    m_places->setFocus();
    UpdateButtons();
}

void PlacePanel::ShowPlace() {
    const int current = CurrentPlace();
    m_keep->setEnabled(current >= 0);
    if (current < 0) {
        emit placeShown({}, {});
        return;
    }
    const Document::Nodes chains(m_answer->chains.begin(), m_answer->chains.end());
    emit placeShown(chains, MatrixOf(m_answer->record.result.places[std::size_t(current)]));
}

void PlacePanel::Keep() {
    const int current = CurrentPlace();
    if (current < 0)
        return;
    const QString number = QString::number(current + 1);
    const std::string name = m_answer->record.options.model + '-' + number.toStdString();
    const placement::Place &place = m_answer->record.result.places[std::size_t(current)];
    if (!m_document.Make(tr("keep place %1").arg(number),
                         [&] { MakePlacedCopy(name, m_answer->chains, place); }))
        m_verdict->setText(tr("The model accepts no additions at present; try again in a moment."));
    else
        emit placeShown({}, {});
}

int PlacePanel::CurrentPlace() const {
    return m_answer ? m_places->indexOfTopLevelItem(m_places->currentItem()) : -1;
}

} // namespace desktop
