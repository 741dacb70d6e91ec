#pragma once

#include <ui_StartFit.h>

#include <QDialog>

class SolutionsList;

/// The plug-in's main window: the user picks target, map and solid from the host's selection, sets how to
/// search, and starts a fit or opens an empty results dialog. The dialog keeps nothing of its own: its slots
/// write the fit parameters. It is disabled from "Apply" until the results dialog is done.
class StartFit : public QDialog, public Ui::StartFit {
    Q_OBJECT

public:
    explicit StartFit(QWidget *parent = nullptr, const char *name = nullptr, bool modal = false,
                      Qt::WindowFlags flags = {});

    /// Deletes the dialog; while its fit runs, cancels the fit, which then deletes the dialog at its end.
    void DeleteWhenIdle();

public slots:
    /// Reads the host's configuration into `Axis`, `gammaStep`, `TCount`, `Step` and into the controls.
    virtual void GetConfig();
    virtual void languageChange();
    /// Runs a fit with the settings of the controls and shows its results.
    virtual void Fit();
    virtual void SelectTarget();
    virtual void SelectMap();
    virtual void SelectSolid();
    virtual void ActivateLog();
    /// Shows how many axes and poses the settings of the controls give.
    virtual void updateTransf();
    /// Copies the controls into the fit parameters.
    virtual void GetSettings();
    /// The results dialog is done: it is deleted, and this dialog is enabled.
    virtual void reEnable();
    /// Opens an empty results dialog, for results on disk.
    virtual void zipToResults();
    virtual void updateLoad();
    virtual void ActivateRestraint();
    virtual void updateApply();

signals:
    /// "Cancel" was pressed; emitted once for each fit that has shown its results so far.
    void exit();

private:
    /// The three choices are rows of their own; captions of one width put them into one column.
    void AlignChoices();
    void ShowFit();
    /// Sorts and shows the new results dialog.
    void OpenResults(int sortColumn, Qt::SortOrder order);

    bool m_fitting = false;
    bool m_retired = false; ///< to be deleted when the fit has ended
};

/// The current results dialog, or where the last one was: the address stays when the dialog is deleted.
extern SolutionsList *RDialog;
