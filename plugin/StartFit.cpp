#include "StartFit.h"

#include "FitRun.h"
#include "Layouts.h"
#include "Parameters.h"
#include "SolutionsList.h"

#include "Collect.h"
#include "Grid.h"
#include "Space.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QSpinBox>
#include <QTreeWidget>

#include <algorithm>

SolutionsList *RDialog;

namespace {

using VARNO::Compound;
using VARNO::Space;

/// A label for a text of the model's, which is never mark-up.
QLabel *NamedChoice(const char *name, QWidget *parent) {
    auto *label = NamedLabel(name, parent);
    label->setTextFormat(Qt::PlainText);
    return label;
}

/// The toolkit would complete a typed 1 to the entry 10.
QComboBox *NamedComboBox(const char *name, QWidget *parent) {
    auto *box = Named<QComboBox>(name, parent);
    box->setEditable(true);
    box->setCompleter(nullptr);
    return box;
}

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
    setObjectName(name ? name : "StartFit");
    setModal(modal);
    StartFitLayout = NamedLayout<QVBoxLayout>("StartFitLayout", 10);
    layout17 = NamedLayout<QVBoxLayout>("layout17");
    StartFitLayout->addLayout(layout17);
    setLayout(StartFitLayout);
    MakeChoices();
    line1_3 = AddLine("line1_3");
    MakeLoading();
    line1 = AddLine("line1");
    MakeSampling();
    MakeRestraints();
    line1_2_2_2 = AddLine("line1_2_2_2");
    MakeOutput();
    line1_2_2 = AddLine("line1_2_2");
    MakeButtons();

    languageChange();
    resize(QSize(397, 537).expandedTo(minimumSizeHint()));
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

void StartFit::MakeChoices() {
    moleculeLabel = NamedLabel("moleculeLabel", this);
    selectedMoleculeLabel = NamedChoice("selectedMoleculeLabel", this);
    moleculeButton = NamedButton("moleculeButton", this);
    densLabel = NamedLabel("densLabel", this);
    selectedDensLabel = NamedChoice("selectedDensLabel", this);
    densButton = NamedButton("densButton", this);
    surfmolLabel = NamedLabel("surfmolLabel", this);
    selectedSurfmolLabel = NamedChoice("selectedSurfmolLabel", this);
    surfmolButton = NamedButton("surfmolButton", this);
    layout9 = NamedLayout<QVBoxLayout>("layout9");
    layout17->addLayout(layout9);
    layout2 = MakeChoice("layout2", moleculeLabel, selectedMoleculeLabel, moleculeButton);
    layout3 = MakeChoice("layout3", densLabel, selectedDensLabel, densButton);
    layout4 = MakeChoice("layout4", surfmolLabel, selectedSurfmolLabel, surfmolButton);
}

QHBoxLayout *StartFit::MakeChoice(const char *layout, QLabel *caption, QLabel *choice, QPushButton *button) {
    auto *row = NamedLayout<QHBoxLayout>(layout);
    row->addWidget(caption);
    row->addWidget(choice, 1);
    row->addWidget(button);
    layout9->addLayout(row);
    return row;
}

QFrame *StartFit::AddLine(const char *name) {
    auto *line = Named<QFrame>(name, this);
    line->setFrameStyle(int(QFrame::HLine) | int(QFrame::Sunken));
    // The dialog's spare height goes to both sides of its lines.
    line->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Expanding);
    layout17->addWidget(line);
    return line;
}

void StartFit::MakeLoading() {
    loadButton = NamedButton("loadButton", this);
    loadButton->setEnabled(false);
    layout42 = NamedLayout<QHBoxLayout>("layout42");
    layout42->addItem(HorizontalSpacer(40));
    layout42->addWidget(loadButton);
    layout42->addItem(HorizontalSpacer(40));
    layout17->addLayout(layout42);
}

void StartFit::MakeSampling() {
    recursionLabel = NamedLabel("recursionLabel", this);
    recursionSpinBox = Named<QSpinBox>("recursionSpinBox", this);
    axlesLabel = NamedLabel("axlesLabel", this);
    selectedAxlesLabel = NamedLabel("selectedAxlesLabel", this);
    rotstepLabel = NamedLabel("rotstepLabel", this);
    rotstepComboBox = NamedComboBox("rotstepComboBox", this);
    transtepLabel = NamedLabel("transtepLabel", this);
    transstepComboBox = NamedComboBox("transstepComboBox", this);
    totalLabel = NamedLabel("totalLabel", this);
    transtepsLabel = NamedLabel("transtepsLabel", this);
    transstepsComboBox = NamedComboBox("transstepsComboBox", this);
    selectedTotalLabel = NamedLabel("selectedTotalLabel", this);
    layout14 = NamedLayout<QGridLayout>("layout14");
    layout14->addWidget(recursionLabel, 0, 0);
    layout14->addWidget(recursionSpinBox, 0, 1);
    layout14->addWidget(axlesLabel, 0, 2);
    layout14->addWidget(selectedAxlesLabel, 0, 3);
    layout14->addWidget(rotstepLabel, 1, 0);
    layout14->addWidget(rotstepComboBox, 1, 1);
    layout14->addWidget(transtepLabel, 2, 0);
    layout14->addWidget(transstepComboBox, 2, 1);
    layout14->addWidget(totalLabel, 2, 2, 1, 2);
    layout14->addWidget(transtepsLabel, 3, 0);
    layout14->addWidget(transstepsComboBox, 3, 1);
    layout14->addWidget(selectedTotalLabel, 3, 2, 1, 2);
    layout17->addLayout(layout14);
}

void StartFit::MakeRestraints() {
    restraintfileCheckBox = Named<QCheckBox>("restraintfileCheckBox", this);
    restraintfileLabel = NamedLabel("restraintfileLabel", this);
    restraintfileEdit = Named<QLineEdit>("restraintfileEdit", this);
    restraintfileLabel->setEnabled(false);
    restraintfileEdit->setEnabled(false);
    layout16 = NamedLayout<QHBoxLayout>("layout16");
    layout16->addWidget(restraintfileLabel);
    layout16->addWidget(restraintfileEdit);
    layout17->addWidget(restraintfileCheckBox);
    layout17->addLayout(layout16);
}

void StartFit::MakeOutput() {
    keepLabel = NamedLabel("keepLabel", this);
    keepComboBox = NamedComboBox("keepComboBox", this);
    leftoverLabel = NamedLabel("leftoverLabel", this);
    layout15 = NamedLayout<QHBoxLayout>("layout15");
    layout15->addWidget(keepLabel);
    layout15->addWidget(keepComboBox);
    layout15->addWidget(leftoverLabel);
    logfileCheckBox = Named<QCheckBox>("logfileCheckBox", this);
    logfileLabel = NamedLabel("logfileLabel", this);
    logfileEdit = Named<QLineEdit>("logfileEdit", this);
    logfileLabel->setEnabled(false);
    logfileEdit->setEnabled(false);
    layout16_2 = NamedLayout<QHBoxLayout>("layout16_2");
    layout16_2->addWidget(logfileLabel);
    layout16_2->addWidget(logfileEdit);
    layout17->addLayout(layout15);
    layout17->addWidget(logfileCheckBox);
    layout17->addLayout(layout16_2);
}

void StartFit::MakeButtons() {
    applyButton = NamedButton("applyButton", this);
    cancelButton = NamedButton("cancelButton", this);
    helpButton = NamedButton("helpButton", this);
    applyButton->setEnabled(false);
    layout19 = NamedLayout<QHBoxLayout>("layout19");
    layout19->addItem(HorizontalSpacer(40));
    for (QPushButton *button : {applyButton, cancelButton, helpButton})
        layout19->addWidget(button);
    layout17->addLayout(layout19);
}

void StartFit::languageChange() {
    setWindowTitle(tr("Morvanex"));
    moleculeLabel->setText(tr("Fit this molecule"));
    selectedMoleculeLabel->setText(tr("N/A"));
    moleculeButton->setText(tr("Select"));
    densLabel->setText(tr("to this EM density"));
    selectedDensLabel->setText(tr("N/A"));
    densButton->setText(tr("Select"));
    surfmolLabel->setText(tr("contacting surface of"));
    selectedSurfmolLabel->setText(tr("N/A"));
    surfmolButton->setText(tr("Select"));
    loadButton->setText(tr("Load results from disk"));
    recursionLabel->setText(tr("Recursion"));
    axlesLabel->setText(tr("No. of axles"));
    selectedAxlesLabel->setText(tr("N/A"));
    rotstepLabel->setText(tr("Rotational step"));
    transtepLabel->setText(tr("Translational step"));
    totalLabel->setText(tr("Total transformations:"));
    transtepsLabel->setText(tr("No. of trans. steps"));
    selectedTotalLabel->setText(tr("N/A"));
    restraintfileCheckBox->setText(tr("Distance restraints from file"));
    restraintfileLabel->setText(tr("Restraints file:"));
    keepLabel->setText(tr("Keep and show top"));
    keepComboBox->setToolTip(
        tr("The number of highest-scoring solutions that will be saved and can be built interactively."));
    leftoverLabel->setText(tr("solutions."));
    logfileCheckBox->setText(tr("Log all solutions"));
    logfileLabel->setText(tr("Log file:"));
    applyButton->setText(tr("Apply"));
    cancelButton->setText(tr("Cancel"));
    helpButton->setText(tr("Help"));
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
