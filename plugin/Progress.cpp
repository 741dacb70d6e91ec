#include "Progress.h"

Progress::Progress(QWidget *parent, const char *name, bool modal, Qt::WindowFlags flags)
    : QDialog(parent, flags) {
    setupUi(this);
    setObjectName(name ? name : "Progress");
    setModal(modal);
    languageChange();
    resize(size().expandedTo(minimumSizeHint()));
    connect(cancelButton, &QPushButton::clicked, this, &Progress::Cancel);
}

void Progress::languageChange() {
    retranslateUi(this);
}

void Progress::Cancel() {
    cancelled = true;
}
