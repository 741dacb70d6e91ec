#pragma once

#include "solutions/Solution.h"

#include <QDialog>

class QHBoxLayout;
class QLabel;
class QPushButton;
class QTreeWidget;
class QVBoxLayout;

/// The results of a fit: one row per entry of `Solutions`, with its rank and score. Rows hold nothing but
/// their two texts; rank r is the r-th solution counted from the end of the list.
class SolutionsList : public QDialog {
    Q_OBJECT

public:
    explicit SolutionsList(QWidget *parent = nullptr, const char *name = nullptr, bool modal = false,
                           Qt::WindowFlags flags = {});

    QLabel *titleLabel;
    QTreeWidget *solutionsListView;
    QPushButton *buildButton;
    QPushButton *loadButton;
    QPushButton *saveButton;
    QPushButton *doneButton;

    using QDialog::done;

signals:
    /// The user has finished with the results; the dialog is closed by then.
    void isDone();

protected:
    QHBoxLayout *layout30;
    QVBoxLayout *layout2;
    QVBoxLayout *layout28;

protected slots:
    virtual void languageChange();

private slots:
    /// Adds a copy of the target to the model for each selected row, in the pose of its solution.
    virtual void build();
    virtual void done();
    /// Replaces `Solutions` by what a file of the user's choice holds. They are emptied in any case, unless a
    /// fit is filling them: then there is a warning and nothing else.
    virtual void load();
    /// Writes `Solutions` to a file of the user's choice.
    virtual void save();

private:
    void MakeListColumn();
    void MakeButtonColumn();
};

/// Memory that a row takes, bytes.
constexpr double bytesOfARow = 640;

/// Refills the dialog's rows from the list: the first entry gets rank n, the last one rank 1, padded with
/// zeros to the width of `top_size`.
void update_list(std::list<SolutionScore> &list, SolutionsList *dialog);
