#include "StartFit.h"

#include "FitRun.h"
#include "Parameters.h"
#include "SolutionsList.h"

#include "Collect.h"
#include "Grid.h"
#include "Space.h"

#include <QApplication>
#include <QTreeWidget>

#include <algorithm>

SolutionsList *RDialog;

namespace {

using VARNO::Compound;
using VARNO::Space;

std::vector<Compound *> SelectedChains() {
    std::vector<Compound *> chains;
    VARNO::GetPeptides(Space::instance(), chains, false);
    return chains;
}

std::vector<Compound *> SelectedGrids() {
    std::vector<Compound *> grids;
    VARNO::GetItems<VARNO::Grid>(Space::instance(), grids, false, nullptr, true);
    return grids;
}

Compound *FirstOf(const std::vector<Compound *> &nodes) {
    return nodes.empty() ? nullptr : nodes.front();
}

/// `RDialog` does not tell: it keeps its address when the dialog is gone.
bool Exists(const SolutionsList *dialog) {
    const QWidgetList windows = QApplication::topLevelWidgets();
    return std::any_of(windows.begin(), windows.end(),
                       [dialog](const QWidget *window) { return window == dialog; });
}

} // namespace

StartFit::StartFit(QWidget *parent, const char *name, bool modal, Qt::WindowFlags flags)
    : QDialog(parent, flags) {
    setupUi(this);
    setObjectName(name ? name : "StartFit");
    setModal(modal);
    // The toolkit would complete a typed 1 to the entry 10.
    for (QComboBox *box : {rotstepComboBox, transstepComboBox, transstepsComboBox, keepComboBox})
        box->setCompleter(nullptr);
    languageChange();
    resize(size().expandedTo(minimumSizeHint()));
    connect(cancelButton, &QPushButton::clicked, this, &StartFit::close);
    connect(moleculeButton, &QPushButton::clicked, this, &StartFit::SelectTarget);
    connect(densButton, &QPushButton::clicked, this, &StartFit::SelectMap);
    connect(surfmolButton, &QPushButton::clicked, this, &StartFit::SelectSolid);
    connect(applyButton, &QPushButton::clicked, this, &StartFit::Fit);
    connect(logfileCheckBox, &QCheckBox::toggled, this, &StartFit::ActivateLog);
    connect(recursionSpinBox, &QSpinBox::textChanged, this, &StartFit::updateTransf);
    connect(rotstepComboBox, &QComboBox::editTextChanged, this, &StartFit::updateTransf);
    connect(transstepsComboBox, &QComboBox::editTextChanged, this, &StartFit::updateTransf);
    connect(loadButton, &QPushButton::clicked, this, &StartFit::zipToResults);
    connect(moleculeButton, &QPushButton::clicked, this, &StartFit::updateLoad);
    connect(restraintfileCheckBox, &QCheckBox::toggled, this, &StartFit::ActivateRestraint);
    connect(densButton, &QPushButton::clicked, this, &StartFit::updateApply);
    connect(moleculeButton, &QPushButton::clicked, this, &StartFit::updateApply);
}

void StartFit::languageChange() {
    retranslateUi(this);
    AlignChoices();
}

void StartFit::AlignChoices() {
    const auto captions = {moleculeLabel, densLabel, surfmolLabel};
    int width = 0;
    for (const QLabel *caption : captions)
        width = std::max(width, caption->sizeHint().width());
    for (QLabel *caption : captions)
        caption->setMinimumWidth(width);
}

void StartFit::SelectTarget() {
    qDebug("Selecting target chain");
    m_Target = FirstOf(SelectedChains());
    selectedMoleculeLabel->setText(
        m_Target ? QString::fromStdString(m_Target->GetParent()->GetLabel() + m_Target->GetCode())
                 : tr("N/A"));
}

void StartFit::SelectMap() {
    qDebug("Selecting density map");
    m_Map = FirstOf(SelectedGrids());
    selectedDensLabel->setText(m_Map ? QString::fromStdString(m_Map->GetLabel()) : tr("N/A"));
}

void StartFit::SelectSolid() {
    qDebug("Selecting static residues");
    m_Solid.clear();
    for (Compound *chain : SelectedChains())
        VARNO::GetGroups(chain, m_Solid, true);
    selectedSurfmolLabel->setText(QString::number(m_Solid.size()));
}

void StartFit::updateLoad() {
    loadButton->setEnabled(m_Target);
}

void StartFit::updateApply() {
    applyButton->setEnabled(m_Target && m_Map);
}

void StartFit::ActivateLog() {
    logfileLabel->setEnabled(logfileCheckBox->isChecked());
    logfileEdit->setEnabled(logfileCheckBox->isChecked());
}

void StartFit::ActivateRestraint() {
    restraintfileLabel->setEnabled(restraintfileCheckBox->isChecked());
    restraintfileEdit->setEnabled(restraintfileCheckBox->isChecked());
}

void StartFit::Fit() {
    setEnabled(false);
    GetSettings();
    m_fitting = true;
    const bool fitted = runfit();
    m_fitting = false;
    if (m_retired)
        deleteLater(); // not at once: the click on "Apply" is still being handled
    else if (fitted)
        ShowFit();
    else
        setEnabled(true);
}

void StartFit::ShowFit() {
    RDialog = new SolutionsList(nullptr, nullptr, false);
    update_list(Solutions, RDialog);
    OpenResults(0, Qt::AscendingOrder);
    connect(cancelButton, &QPushButton::clicked, this, &StartFit::exit);
}

void StartFit::zipToResults() {
    setEnabled(false);
    RDialog = new SolutionsList(nullptr, nullptr, false);
    OpenResults(1, Qt::DescendingOrder);
}

void StartFit::OpenResults(int sortColumn, Qt::SortOrder order) {
    RDialog->solutionsListView->setSortingEnabled(true);
    RDialog->solutionsListView->sortByColumn(sortColumn, order);
    RDialog->show();
    RDialog->raise();
    connect(RDialog, &SolutionsList::isDone, this, &StartFit::reEnable);
}

void StartFit::reEnable() {
    // The dialog asks for its end from inside a click on its own button. The toolkit and the window system go
    // on with that click afterwards, so the dialog, closed by now, is deleted as soon as they are through
    // with it.
    if (Exists(RDialog))
        RDialog->deleteLater();
    setEnabled(true);
}

void StartFit::DeleteWhenIdle() {
    m_retired = m_fitting;
    if (m_fitting)
        StopFit();
    else
        delete this;
}
