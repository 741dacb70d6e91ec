#pragma once

#include <ui_Progress.h>

#include <QDialog>

/// The window of a running fit: an estimate of the remaining time, a progress bar, and a Cancel button. The
/// search writes the estimate and the bar, and looks at `cancelled` after each axis. Its widgets and layouts
/// are members under their object names, see Progress.ui.
class Progress : public QDialog, public Ui::Progress {
    Q_OBJECT

public:
    explicit Progress(QWidget *parent = nullptr, const char *name = nullptr, bool modal = false,
                      Qt::WindowFlags flags = {});

    bool cancelled = false; ///< the user wants the fit to stop

protected slots:
    virtual void languageChange();

private slots:
    virtual void Cancel();
};

/// The dialog of the current or the last fit; only a fit writes it. After a fit that ran to its end the
/// dialog is closed but alive, after a cancelled one the pointer dangles.
extern Progress *WhiskyBar;
