#include "SolutionsList.h"

#include "base/Numbers.h"

#include "Builder.h"
#include "FitRun.h"
#include "Parameters.h"
#include "ResultsStorage.h"

#include "DataAdder.h"

#include <QBoxLayout>
#include <QFileDialog>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTreeWidget>

namespace {

using VARNO::Space;

// The widgets are made here and not in a form: the layout "layout30" lies on a widget "layout30", and a form
// gives one of two equal names to another member.

template <class Widget>
Widget *Named(const char *name, QWidget *parent) {
    auto *widget = new Widget(parent);
    widget->setObjectName(name);
    return widget;
}

/// Enter must not press a button that has not the focus, as it would press an automatic default one.
QPushButton *NamedButton(const char *name, QWidget *parent) {
    auto *button = Named<QPushButton>(name, parent);
    button->setAutoDefault(false);
    return button;
}

template <class Layout>
Layout *NamedLayout(const char *name, int margin = 0) {
    auto *layout = new Layout;
    layout->setObjectName(name);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(6);
    return layout;
}

/// The r-th solution from the end of the list; null, with a warning, when there is none.
const SolutionScore *SolutionOfRank(const QString &text) {
    const int rank = text.toInt(nullptr, 10);
    if (rank < 1 || std::size_t(rank) > Solutions.size()) {
        qWarning("There is no solution of rank \"%s\" among the %zu; nothing is built.", qUtf8Printable(text),
                 Solutions.size());
        return nullptr;
    }
    return &*std::next(Solutions.rbegin(), rank - 1);
}

/// Lets the user choose; null when the dialog is cancelled, or deleted meanwhile.
QString RunFileDialog(QFileDialog *dialog) {
    const QPointer<QFileDialog> alive(dialog);
    const bool accepted = dialog->exec() == QDialog::Accepted;
    if (!alive)
        return {};
    // The toolkit shows the completions of a name when it has read the folder, be the dialog closed by then.
    for (QLineEdit *field : dialog->findChildren<QLineEdit *>())
        field->setCompleter(nullptr);
    return accepted ? dialog->selectedFiles().value(0) : QString();
}

} // namespace

SolutionsList::SolutionsList(QWidget *parent, const char *name, bool modal, Qt::WindowFlags flags)
    : QDialog(parent, flags) {
    setObjectName(name ? name : "solutionsDialog");
    setModal(modal);
    QSizePolicy expanding(QSizePolicy::Expanding, QSizePolicy::Expanding);
    expanding.setHeightForWidth(sizePolicy().hasHeightForWidth());
    setSizePolicy(expanding);

    auto *content = Named<QWidget>("layout30", this);
    content->setGeometry(12, 12, 400, 442);
    layout30 = NamedLayout<QHBoxLayout>("layout30", 11);
    content->setLayout(layout30);
    MakeListColumn();
    MakeButtonColumn();

    languageChange();
    resize(QSize(421, 469).expandedTo(minimumSizeHint()));
    connect(doneButton, &QPushButton::clicked, this, &SolutionsList::close);
    connect(buildButton, &QPushButton::clicked, this, &SolutionsList::build);
    connect(doneButton, &QPushButton::clicked, this, qOverload<>(&SolutionsList::done));
    connect(loadButton, &QPushButton::clicked, this, &SolutionsList::load);
    connect(saveButton, &QPushButton::clicked, this, &SolutionsList::save);
}

void SolutionsList::MakeListColumn() {
    titleLabel = Named<QLabel>("titleLabel", this);
    titleLabel->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    solutionsListView = Named<QTreeWidget>("solutionsListView", this);
    solutionsListView->setColumnCount(2);
    solutionsListView->setRootIsDecorated(false);
    solutionsListView->setUniformRowHeights(true);
    solutionsListView->setSelectionMode(QAbstractItemView::MultiSelection);
    solutionsListView->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    layout2 = NamedLayout<QVBoxLayout>("layout2");
    layout2->addWidget(titleLabel);
    layout2->addWidget(solutionsListView);
    layout30->addLayout(layout2);
}

void SolutionsList::MakeButtonColumn() {
    buildButton = NamedButton("buildButton", this);
    loadButton = NamedButton("loadButton", this);
    saveButton = NamedButton("saveButton", this);
    doneButton = NamedButton("doneButton", this);
    loadButton->setEnabled(true);
    saveButton->setEnabled(true);
    layout28 = NamedLayout<QVBoxLayout>("layout28");
    layout28->addItem(new QSpacerItem(20, 20, QSizePolicy::Minimum, QSizePolicy::Fixed));
    layout28->addWidget(buildButton);
    layout28->addItem(new QSpacerItem(20, 260, QSizePolicy::Minimum, QSizePolicy::Expanding));
    for (QPushButton *button : {loadButton, saveButton, doneButton})
        layout28->addWidget(button);
    layout30->addLayout(layout28);
}

void SolutionsList::languageChange() {
    setWindowTitle(tr("Morvanex Results"));
    titleLabel->setText(tr("Morvanex results"));
    solutionsListView->setHeaderLabels({tr("Rank"), tr("Score")});
    solutionsListView->clear();
    new QTreeWidgetItem(solutionsListView, {tr("New Item")});
    buildButton->setText(tr("Build"));
    loadButton->setText(tr("Load"));
    saveButton->setText(tr("Save"));
    doneButton->setText(tr("Done"));
}

void SolutionsList::build() {
    const VARNO::DataAdder<Space> batch(Space::instance());
    if (!batch.MayAdd())
        return;
    for (int row = 0; row < solutionsListView->topLevelItemCount(); ++row) {
        const QTreeWidgetItem *item = solutionsListView->topLevelItem(row);
        if (!item->isSelected())
            continue;
        if (!HasTarget())
            return;
        if (const SolutionScore *solution = SolutionOfRank(item->text(0)))
            BuildSolution(*solution, row + 1);
    }
}

void SolutionsList::done() {
    emit isDone();
}

void SolutionsList::load() {
    // Results that an ended session has left open can be clicked while the next one's fit runs.
    if (IsFitting()) {
        qWarning("A fit is running; nothing is loaded.");
        return;
    }
    const QPointer<SolutionsList> self(this);
    auto *dialog = Named<QFileDialog>("open file dialogLoad Morvanex result list", this);
    dialog->setOption(QFileDialog::DontUseNativeDialog);
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setDirectory("/home");
    dialog->setNameFilter("Morvanex (*)");
    const QString file = RunFileDialog(dialog);
    Solutions.clear();
    Solutions = LoadResults(file);
    // The host's loop was alive meanwhile, and may have ended this dialog.
    if (!self)
        return;
    delete dialog;
    update_list(Solutions, this);
}

void SolutionsList::save() {
    // Left to this dialog, which deletes it in the end.
    auto *dialog = Named<QFileDialog>("file dialog", this);
    dialog->setModal(true);
    dialog->setOption(QFileDialog::DontUseNativeDialog);
    dialog->setOption(QFileDialog::DontConfirmOverwrite);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    const QString file = RunFileDialog(dialog);
    qDebug("%s", qUtf8Printable(file));
    SaveResults(file, Solutions);
}

void update_list(std::list<SolutionScore> &list, SolutionsList *dialog) {
    QTreeWidget *view = dialog->solutionsListView;
    view->clear();
    const qsizetype width = QString::number(unsigned(top_size)).size();
    QList<QTreeWidgetItem *> rows;
    std::size_t rank = list.size();
    for (const SolutionScore &solution : list)
        rows << new QTreeWidgetItem(
            {QString::number(rank--).rightJustified(width, '0'), base::GeneralNumber(solution.score)});
    // Rows that come one by one into a sorted view are moved each; together they are sorted once.
    const bool sorted = view->isSortingEnabled();
    view->setSortingEnabled(false);
    view->addTopLevelItems(rows);
    view->setSortingEnabled(sorted);
    view->viewport()->update();
}
