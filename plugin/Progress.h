#pragma once

#include <QDialog>

class QHBoxLayout;
class QLabel;
class QProgressBar;
class QPushButton;
class QVBoxLayout;

/// The window of a running fit: an estimate of the remaining time, a progress bar, and a Cancel button. The
/// search writes the estimate and the bar, and looks at `cancelled` after each axis.
class Progress : public QDialog {
    Q_OBJECT

public:
    explicit Progress(QWidget *parent = nullptr, const char *name = nullptr, bool modal = false,
                      Qt::WindowFlags flags = {});

    QLabel *textLabel;
    QLabel *etaLabel;
    QProgressBar *progressBar;
    QPushButton *cancelButton;
    bool cancelled = false; ///< the user wants the fit to stop

protected:
    QHBoxLayout *ProgressLayout;
    QVBoxLayout *layout24;
    QHBoxLayout *layout21;
    QHBoxLayout *layout22;

protected slots:
    virtual void languageChange();

private slots:
    virtual void Cancel();
};

/// The dialog of the current or the last fit; only a fit writes it. After a fit that ran to its end the
/// dialog is closed but alive, after a cancelled one the pointer dangles.
extern Progress *WhiskyBar;
