#include "Progress.h"

#include "Layouts.h"

#include <QProgressBar>
#include <QPushButton>

Progress::Progress(QWidget *parent, const char *name, bool modal, Qt::WindowFlags flags)
    : QDialog(parent, flags) {
    setObjectName(name ? name : "Progress");
    setModal(modal);
    textLabel = NamedLabel("textLabel", this);
    etaLabel = NamedLabel("etaLabel", this);
    progressBar = Named<QProgressBar>("progressBar", this);
    cancelButton = NamedButton("cancelButton", this);
    cancelButton->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);

    layout21 = NamedLayout<QHBoxLayout>("layout21");
    layout21->addWidget(textLabel);
    layout21->addWidget(etaLabel, 1);
    layout22 = NamedLayout<QHBoxLayout>("layout22");
    layout22->addItem(HorizontalSpacer(140));
    layout22->addWidget(cancelButton);
    layout22->addItem(HorizontalSpacer(150));
    layout24 = NamedLayout<QVBoxLayout>("layout24");
    layout24->addLayout(layout21);
    layout24->addWidget(progressBar);
    layout24->addLayout(layout22);
    ProgressLayout = NamedLayout<QHBoxLayout>("ProgressLayout", 11);
    ProgressLayout->addLayout(layout24);
    setLayout(ProgressLayout);

    languageChange();
    resize(QSize(344, 114).expandedTo(minimumSizeHint()));
    connect(cancelButton, &QPushButton::clicked, this, &Progress::Cancel);
}

void Progress::languageChange() {
    setWindowTitle(tr("Morvanex is working..."));
    textLabel->setText(tr("Fitting in progress... ETA"));
    etaLabel->setText(tr("N/A"));
    cancelButton->setText(tr("Cancel"));
}

void Progress::Cancel() {
    cancelled = true;
}
