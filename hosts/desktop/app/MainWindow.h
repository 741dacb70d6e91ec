#pragma once

#include "app/Autosave.h"
#include "app/Session.h"
#include "document/Document.h"
#include "document/FileReading.h"
#include "plugins/Plugin.h"

#include <QMainWindow>
#include <QSettings>

class QAction;
class QLabel;
class QMenu;
class QProgressBar;
class QPushButton;

namespace desktop {

class MessagePanel;
class ModelPanel;
class PlacePanel;
class SceneView;

/// The application's window: the model in three dimensions, and panels around it.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    MainWindow();
    ~MainWindow() override;

    /// Reads files into the model, one after the other, while the window stays alive.
    void Open(const QStringList &files);
    bool IsReading() const { return m_reading.IsReading(); }
    /// Opens what a session file holds, as it was.
    void Restore(const QString &session);
    /// Asks whether to restore what an application that died has left behind, where there is something.
    void OfferToRestore();
    Document &GetDocument() { return m_document; }
    SceneView &View() { return *m_view; }
    PlacePanel &Places() { return *m_place; }

signals:
    /// All files that were to be read have been, or have failed.
    void opened();
    /// The window has been closed, and with it the sessions of the plug-ins; dialogs of theirs may be left.
    void closed();

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void MakeFileMenu();
    void MakeEditMenu();
    void MakeViewMenu();
    void MakePlaceMenu();
    void MakePluginsMenu();
    void MakeHelpMenu();
    void MakeDocks();
    QDockWidget *MakeDock(const QString &title, const char *name, QWidget *content, Qt::DockWidgetArea area);
    void MakeReadingBar();

    void AskForFiles();
    void TakeFile(const std::shared_ptr<FileContent> &file);
    void ShowErrors();
    void Remember(const QString &file);
    void UpdateRecentFiles();
    void Save();
    void SavePicture();
    void AskForSession();
    void SaveSessionAs();
    void EditSettings();
    void FinishRestoring();
    bool MayClose();
    void Start(Plugin &plugin);
    void ShowAdded(const std::vector<VARNO::Compound *> &nodes);
    void ShowAbout();
    void FollowTheme();

    QSettings m_settings;
    Document m_document;
    FileReading m_reading;
    std::vector<std::unique_ptr<Plugin>> m_plugins;
    QStringList m_errors; ///< of the files that are being read
    SceneView *m_view;
    std::optional<SavedSession> m_session; ///< that is being restored
    QString m_restoring;                   ///< its file
    ModelPanel *m_model;
    PlacePanel *m_place;
    MessagePanel *m_messages;
    QDockWidget *m_placeDock, *m_messagesDock;
    QAction *m_perspective = nullptr;
    std::unique_ptr<Autosave> m_autosave;
    QMenu *m_recent;
    QWidget *m_readingBar;
    QLabel *m_readingName;
    QProgressBar *m_readingProgress;
};

} // namespace desktop
