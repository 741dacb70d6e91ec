#include "panels/PlacePanel.h"

#include "document/Nodes.h"
#include "panels/PlaceForm.h"
#include "place/PlaceJson.h"

#include "DataMaker.h"

#include <QHeaderView>
#include <QJsonArray>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <cmath>

using namespace VARNO;

namespace desktop {

namespace {

/// Model is shown for several ones only, Number is that of the place, or of the copy.
enum PlaceColumn { Number, Model, Sureness, Score, Share, PlaceColumns };

QString Left(double seconds) {
    if (seconds < 90)
        return PlacePanel::tr("%1 s left").arg(std::lround(seconds));
    return PlacePanel::tr("%1 min left").arg(std::lround(seconds / 60));
}

QTreeWidgetItem *RowOf(const PlaceAnswer &answer, const FoundPlace &place) {
    auto *row = new QTreeWidgetItem;
    row->setText(Number, QString::number(place.number));
    row->setText(Model, QString::fromStdString(answer.models[place.model].name));
    row->setToolTip(Model, row->text(Model));
    row->setText(Sureness, place.remark.isEmpty() ? place.sureness : place.sureness + ", " + place.remark);
    row->setToolTip(Sureness, PlacePanel::tr("probability %1").arg(place.probability, 0, 'f', 3) +
                                  (place.remark.isEmpty() ? QString() : '\n' + place.remark));
    row->setText(Score, QString::number(place.score, 'f', 1));
    row->setText(Share, PlacePanel::tr("%1 %").arg(100 * place.share, 0, 'f', answer.isAssembly ? 1 : 0));
    for (const int column : {Number, Score, Share})
        row->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
    return row;
}

} // namespace

PlacePanel::PlacePanel(Document &document)
    : m_document(document)
    , m_form(new PlaceForm(document))
    , m_start(new QPushButton(tr("&Find its place"))) {
    m_start->setObjectName("placeStart");
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_form);
    layout->addWidget(m_start);
    layout->addWidget(MakeProgress());
    layout->addWidget(MakeAnswer(), 1);
    connect(m_start, &QPushButton::clicked, this, &PlacePanel::Start);
    connect(m_form, &PlaceForm::changed, this, &PlacePanel::Update);
    connect(&m_search, &PlaceSearch::progressed, this, &PlacePanel::ShowProgress);
    connect(&m_search, &PlaceSearch::answered, this, &PlacePanel::ShowAnswer);
    Update();
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
    MakeList();
    m_keep = new QPushButton;
    m_keep->setObjectName("placeKeep");
    m_keep->setToolTip(tr("Adds a copy of the model at each chosen place; Undo takes them back"));
    connect(m_keep, &QPushButton::clicked, this, &PlacePanel::Keep);
    auto *layout = new QVBoxLayout(answer);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_verdict);
    layout->addWidget(m_places, 1);
    layout->addWidget(m_keep);
    return answer;
}

void PlacePanel::MakeList() {
    m_places = new QTreeWidget;
    m_places->setObjectName("places");
    m_places->setRootIsDecorated(false);
    m_places->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_places->setHeaderLabels({tr("#"), tr("Model"), tr("How sure"), tr("Score"), tr("In density")});
    m_places->setColumnHidden(Model, true);
    m_places->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_places->header()->setMinimumSectionSize(24);
    m_places->header()->setStretchLastSection(false);
    m_places->header()->setSectionResizeMode(Sureness, QHeaderView::Stretch);
    m_places->setToolTip(tr("A click, or the arrow keys, shows the place in the density; with Ctrl or Shift "
                            "several are chosen"));
    connect(m_places, &QTreeWidget::itemSelectionChanged, this, &PlacePanel::ShowPlaces);
}

void PlacePanel::Update() {
    m_start->setEnabled(m_form->IsComplete() && !m_search.IsRunning());
    m_cancel->setEnabled(m_search.IsRunning());
    m_progressRow->setVisible(m_search.IsRunning());
    const std::size_t chosen = ChosenPlaces().size();
    m_keep->setEnabled(chosen > 0);
    m_keep->setText(chosen > 1 ? tr("&Keep these %1 places").arg(chosen) : tr("&Keep this place"));
    if (!m_answer && !m_search.IsRunning())
        m_verdict->setText(m_form->IsComplete()
                               ? tr("Choose a map and a model. Where the model stands does not matter.")
                               : tr("Open a map and a model first: File ▸ Open."));
}

void PlacePanel::Start() {
    m_places->clear();
    m_answer = nullptr;
    try {
        const PlaceQuestion question = m_form->Question();
        m_search.Start(question);
        m_map = question.map;
    } catch (const std::runtime_error &error) {
        m_answer = std::make_shared<PlaceAnswer>();
        m_answer->error = error.what();
        ShowAnswer(m_answer);
        return;
    }
    m_progress->setRange(0, 0);
    m_timeLeft->clear();
    m_verdict->setText(tr("Searching …"));
    m_verdict->setToolTip({});
    Update();
}

void PlacePanel::ShowProgress(double share, double secondsLeft) {
    m_progress->setRange(0, 1000);
    m_progress->setValue(int(1000 * share));
    m_timeLeft->setText(Left(secondsLeft));
}

void PlacePanel::ShowAnswer(const std::shared_ptr<PlaceAnswer> &answer) {
    m_answer = answer;
    m_verdict->setText(answer->error.empty()
                           ? answer->verdict
                           : tr("No search: %1.").arg(QString::fromStdString(answer->error)));
    m_verdict->setToolTip(answer->details);
    if (answer->mirrored)
        AddMirroredMap();
    ListPlaces();
    Update();
    emit listed();
}

void PlacePanel::ListPlaces() {
    m_places->clear();
    m_places->setColumnHidden(Model, m_answer->models.size() < 2);
    m_places->headerItem()->setText(Share, m_answer->isAssembly ? tr("Explains") : tr("In density"));
    for (const FoundPlace &place : m_answer->places)
        m_places->addTopLevelItem(RowOf(*m_answer, place));
    if (m_answer->places.empty())
        return;
    m_places->setCurrentItem(m_places->topLevelItem(0));
    for (std::size_t i = 1; i < m_answer->together; ++i)
        m_places->topLevelItem(int(i))->setSelected(true);
    m_places->setFocus();
}

/// The places lie in the mirrored map, which is shown in the place of the other one.
void PlacePanel::AddMirroredMap() {
    Grid *mirrored = nullptr;
    if (!m_document.Make(tr("add the mirrored map"),
                         [&] { mirrored = DataMaker::addGrid(nullptr, std::move(m_answer->mirrored)); }))
        return;
    m_document.SetLook(mirrored, m_document.LookOf(m_map));
    m_document.SetShown({mirrored}, true);
    m_document.SetShown({m_map}, false);
}

void PlacePanel::ShowPlaces() {
    Update();
    std::vector<Ghost> ghosts;
    for (const FoundPlace *place : ChosenPlaces()) {
        const std::vector<Chain *> &chains = m_answer->models[place->model].chains;
        ghosts.push_back({{chains.begin(), chains.end()}, MatrixOf(place->motion)});
    }
    emit placesShown(ghosts);
}

void PlacePanel::Keep() {
    const std::vector<const FoundPlace *> chosen = ChosenPlaces();
    const QString what = chosen.size() > 1 ? tr("keep %1 places").arg(chosen.size())
                                           : tr("keep place %1").arg(chosen.front()->number);
    if (!m_document.Make(what, [&] {
            for (const FoundPlace *place : chosen)
                MakePlacedCopy(*m_answer, *place);
        }))
        m_verdict->setText(tr("The model accepts no additions at present; try again in a moment."));
    else
        emit placesShown({});
}

QJsonObject PlacePanel::State(const JsonOfNode &jsonOf) const {
    QJsonObject state{{"question", m_form->State(jsonOf)}};
    if (!m_answer || !m_answer->error.empty())
        return state;
    QJsonArray chosen;
    for (QTreeWidgetItem *row : m_places->selectedItems())
        chosen.append(m_places->indexOfTopLevelItem(row));
    state["answer"] = JsonOf(*m_answer, jsonOf);
    state["chosen"] = chosen;
    return state;
}

void PlacePanel::Restore(const QJsonObject &state, const NodeOfJson &nodeOf) {
    if (m_search.IsRunning())
        return;
    m_form->Restore(state["question"].toObject(), nodeOf);
    const std::shared_ptr<PlaceAnswer> answer = AnswerOf(state["answer"].toObject(), nodeOf);
    if (!answer)
        return;
    ShowAnswer(answer);
    m_places->clearSelection();
    for (const QJsonValue row : state["chosen"].toArray())
        if (QTreeWidgetItem *item = m_places->topLevelItem(row.toInt(-1)))
            item->setSelected(true);
}

/// In the order of the list.
std::vector<const FoundPlace *> PlacePanel::ChosenPlaces() const {
    std::vector<const FoundPlace *> chosen;
    for (int i = 0; i < m_places->topLevelItemCount(); ++i)
        if (m_places->topLevelItem(i)->isSelected())
            chosen.push_back(&m_answer->places[std::size_t(i)]);
    return chosen;
}

} // namespace desktop
