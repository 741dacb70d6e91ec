#include "app/MainWindow.h"

#include "app/Saving.h"
#include "app/SettingsDialog.h"
#include "document/Nodes.h"
#include "panels/LookPanel.h"
#include "panels/MessagePanel.h"
#include "panels/ModelPanel.h"
#include "panels/PlacePanel.h"
#include "view/SceneView.h"

#include "formats/files/FileError.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QDockWidget>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QStatusBar>
#include <QStyle>

#include <stdexcept>

using namespace VARNO;

namespace desktop {

namespace {

constexpr int maxRecentFiles = 10;

void ShowError(QWidget *parent, const QString &title, const QString &text) {
    QMessageBox box(QMessageBox::Warning, title, text, QMessageBox::Ok, parent);
    box.setObjectName("errorBox");
    box.setTextInteractionFlags(Qt::TextSelectableByMouse);
    box.exec();
}

} // namespace

MainWindow::MainWindow()
    : m_settings(QSettings::IniFormat, QSettings::UserScope, "varno", "desktop")
    , m_view(new SceneView(m_document))
    , m_model(new ModelPanel(m_document))
    , m_place(new PlacePanel(m_document))
    , m_messages(new MessagePanel) {
    setObjectName("mainWindow");
    setWindowTitle("Varno");
    setAcceptDrops(true);
    setCentralWidget(m_view);
    MakeDocks();
    MakeFileMenu();
    MakeEditMenu();
    MakeViewMenu();
    MakePlaceMenu();
    MakePluginsMenu();
    MakeHelpMenu();
    MakeReadingBar();
    m_autosave = std::make_unique<Autosave>(m_document, *m_view, *m_place);
    connect(&m_document, &Document::arrived, this, &MainWindow::ShowAdded);
    connect(m_view, &SceneView::picked, this, [this](Compound *node, bool adds) {
        m_model->Pick(node, adds);
        statusBar()->showMessage(node ? PathOf(node) : QString());
    });
    connect(m_view, &SceneView::measured, this, [this](Compound *from, Compound *to, double distance) {
        statusBar()->showMessage(
            tr("%1 Å from %2 to %3").arg(distance, 0, 'f', 2).arg(PathOf(from), PathOf(to)));
    });
    connect(m_place, &PlacePanel::placesShown, m_view, &SceneView::ShowGhosts);
    connect(m_messages, &MessagePanel::warned, this,
            [this](const QString &text) { statusBar()->showMessage(text); });
    FollowTheme();
    resize(1280, 800);
    restoreGeometry(m_settings.value("geometry").toByteArray());
    restoreState(m_settings.value("windows").toByteArray());
}

MainWindow::~MainWindow() {
    for (const auto &plugin : m_plugins)
        plugin->Cleanup();
    m_autosave->Finish();
    // The panels let go of the document before it dies.
    delete m_place;
    delete m_model;
    delete takeCentralWidget();
    m_document.Clear();
}

void MainWindow::MakeDocks() {
    setDockOptions(AnimatedDocks | AllowTabbedDocks | AllowNestedDocks);
    MakeDock(tr("Model"), "modelDock", m_model, Qt::LeftDockWidgetArea);
    MakeDock(tr("Appearance"), "lookDock", new LookPanel(m_document), Qt::LeftDockWidgetArea);
    m_placeDock = MakeDock(tr("Place"), "placeDock", m_place, Qt::RightDockWidgetArea);
    m_messagesDock = MakeDock(tr("Messages"), "messagesDock", m_messages, Qt::BottomDockWidgetArea);
    setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);
    setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
    resizeDocks({m_messagesDock}, {110}, Qt::Vertical);
}

QDockWidget *MainWindow::MakeDock(const QString &title, const char *name, QWidget *content,
                                  Qt::DockWidgetArea area) {
    auto *dock = new QDockWidget(title, this);
    dock->setObjectName(name);
    dock->setWidget(content);
    addDockWidget(area, dock);
    return dock;
}

void MainWindow::MakeFileMenu() {
    QMenu *menu = menuBar()->addMenu(tr("&File"));
    QAction *open = menu->addAction(tr("&Open …"), QKeySequence::Open, this, &MainWindow::AskForFiles);
    open->setObjectName("open");
    menu->addAction(tr("Open s&ession …"), this, &MainWindow::AskForSession)->setObjectName("openSession");
    m_recent = menu->addMenu(tr("Open &recent"));
    m_recent->setObjectName("recentFiles");
    menu->addSeparator();
    QAction *save = menu->addAction(tr("&Save as …"), QKeySequence::Save, this, &MainWindow::Save);
    save->setObjectName("save");
    save->setStatusTip(
        tr("Saves what is selected, or the molecules that are shown, as mmCIF or PDB; a map as MRC"));
    menu->addAction(tr("Save session as …"), this, &MainWindow::SaveSessionAs)->setObjectName("saveSession");
    menu->addAction(tr("Save &picture …"), this, &MainWindow::SavePicture)->setObjectName("savePicture");
    menu->addSeparator();
    menu->addAction(tr("&Quit"), QKeySequence::Quit, this, &QWidget::close)->setObjectName("quit");
    connect(m_model, &ModelPanel::saveAsked, this, &MainWindow::Save);
    UpdateRecentFiles();
}

void MainWindow::MakeEditMenu() {
    QMenu *menu = menuBar()->addMenu(tr("&Edit"));
    QAction *undo = m_document.UndoStack().createUndoAction(this, tr("&Undo"));
    undo->setObjectName("undo");
    undo->setShortcut(QKeySequence::Undo);
    QAction *redo = m_document.UndoStack().createRedoAction(this, tr("&Redo"));
    redo->setObjectName("redo");
    redo->setShortcut(QKeySequence::Redo);
    menu->addActions({undo, redo});
    menu->addSeparator();
    QAction *remove =
        menu->addAction(tr("Re&move"), QKeySequence::Delete, m_model, &ModelPanel::RemoveSelected);
    remove->setObjectName("remove");
    remove->setStatusTip(tr("Takes what is selected out of the model; Undo puts it back"));
    menu->addAction(tr("&Settings …"), QKeySequence::Preferences, this, &MainWindow::EditSettings)
        ->setObjectName("settings");
    menu->addAction(tr("Select &nothing"), QKeySequence("Esc"), this, [this] { m_document.Select({}); })
        ->setObjectName("selectNothing");
}

void MainWindow::MakeViewMenu() {
    QMenu *menu = menuBar()->addMenu(tr("&View"));
    menu->addAction(tr("&Fit to view"), QKeySequence("F"), m_view, &SceneView::FitToView)
        ->setObjectName("fit");
    menu->addAction(tr("Fit &selection"), QKeySequence("Shift+F"), this,
                    [this] { m_view->FitTo(m_document.Selection()); })
        ->setObjectName("fitSelection");
    m_perspective = menu->addAction(tr("&Perspective"), m_view, &SceneView::SetPerspective);
    m_perspective->setObjectName("perspective");
    m_perspective->setCheckable(true);
    m_perspective->setChecked(true);
    QAction *exact = menu->addAction(tr("E&xact transparency"), m_view, &SceneView::SetExactTransparency);
    exact->setObjectName("exactTransparency");
    exact->setCheckable(true);
    exact->setChecked(true);
    exact->setStatusTip(
        tr("Translucent surfaces one behind the other as they lie; off, large ones turn faster"));
    QAction *measure =
        menu->addAction(tr("&Measure distances"), QKeySequence("M"), m_view, &SceneView::SetMeasuring);
    measure->setObjectName("measure");
    measure->setCheckable(true);
    measure->setStatusTip(tr("Two clicks on atoms or residues measure how far they are from each other"));
    menu->addSeparator();
    for (QDockWidget *dock : findChildren<QDockWidget *>())
        menu->addAction(dock->toggleViewAction());
}

void MainWindow::MakePlaceMenu() {
    QMenu *menu = menuBar()->addMenu(tr("&Place"));
    menu->addAction(tr("&Find a model's place …"), QKeySequence("Ctrl+P"), this,
                    [this] {
                        m_placeDock->show();
                        m_placeDock->raise();
                    })
        ->setObjectName("place");
}

void MainWindow::MakePluginsMenu() {
    QMenu *menu = menuBar()->addMenu(tr("P&lug-ins"));
    menu->setObjectName("plugins");
    menu->setToolTipsVisible(true);
    m_plugins =
        FindPlugins([](const QString &problem) { qWarning("Plug-in skipped: %s", qPrintable(problem)); });
    for (const auto &plugin : m_plugins) {
        QAction *action = menu->addAction(plugin->Name(), this, [this, one = plugin.get()] { Start(*one); });
        action->setObjectName(plugin->Name());
        action->setToolTip(plugin->File());
    }
    if (m_plugins.empty())
        menu->addAction(tr("No plug-in was found"))->setEnabled(false);
}

void MainWindow::MakeHelpMenu() {
    QMenu *menu = menuBar()->addMenu(tr("&Help"));
    menu->addAction(tr("&About Varno"), this, &MainWindow::ShowAbout)->setObjectName("about");
}

void MainWindow::MakeReadingBar() {
    m_readingBar = new QWidget;
    m_readingName = new QLabel;
    m_readingProgress = new QProgressBar;
    m_readingProgress->setObjectName("readingProgress");
    m_readingProgress->setRange(0, 1000);
    m_readingProgress->setMaximumWidth(180);
    auto *stop = new QPushButton(tr("Stop"));
    stop->setObjectName("stopReading");
    auto *layout = new QHBoxLayout(m_readingBar);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_readingName);
    layout->addWidget(m_readingProgress);
    layout->addWidget(stop);
    statusBar()->addPermanentWidget(m_readingBar);
    m_readingBar->hide();
    connect(stop, &QPushButton::clicked, &m_reading, &FileReading::Cancel);
    connect(&m_reading, &FileReading::started, this, [this](const QString &file) {
        m_readingName->setText(tr("Reading %1").arg(QFileInfo(file).fileName()));
        m_readingProgress->setValue(0);
        m_readingBar->show();
    });
    connect(&m_reading, &FileReading::progressed, m_readingProgress, &QProgressBar::setValue);
    connect(&m_reading, &FileReading::read, this, &MainWindow::TakeFile);
    connect(&m_reading, &FileReading::finished, this, [this] {
        m_readingBar->hide();
        FinishRestoring();
        ShowErrors();
        emit opened();
    });
}

void MainWindow::Open(const QStringList &files) {
    m_reading.Read(files);
}

void MainWindow::AskForFiles() {
    QFileDialog dialog(this, tr("Open maps and models"), m_settings.value("folder").toString());
    dialog.setObjectName("openDialog");
    dialog.setFileMode(QFileDialog::ExistingFiles);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setNameFilters({tr("Maps and models (*.mrc *.map *.ccp4 *.pdb *.ent *.cif *.mmcif *.gz *.bz2)"),
                           tr("All files (*)")});
    if (dialog.exec() != QDialog::Accepted)
        return;
    m_settings.setValue("folder", dialog.directory().path());
    Open(dialog.selectedFiles());
}

void MainWindow::TakeFile(const std::shared_ptr<FileContent> &file) {
    const QString name = QString::fromStdString(file->file);
    for (const std::string &warning : file->warnings)
        qWarning("%s: %s", file->file.c_str(), warning.c_str());
    if (!file->error.empty()) {
        m_errors << QString::fromStdString(file->error);
        return;
    }
    const QString error = m_document.Add(std::move(*file));
    if (!error.isEmpty())
        m_errors << error;
    else if (m_session)
        m_session->Apply(m_document.Tops().back(), m_document);
    else
        Remember(name);
}

void MainWindow::Restore(const QString &session) {
    try {
        m_session.emplace(session.toStdString());
    } catch (const formats::FileError &error) {
        ShowError(this, tr("The session could not be read"), QString::fromStdString(error.what()));
        return;
    }
    m_restoring = session;
    Open(m_session->Files());
}

void MainWindow::FinishRestoring() {
    if (!m_session)
        return;
    m_session->Apply(*m_place);
    const Viewpoint viewpoint = m_session->GetViewpoint();
    m_session.reset();
    m_view->SetViewpoint(viewpoint);
    m_perspective->setChecked(viewpoint.perspective);
    // What was left behind is in the next one before it goes.
    if (Autosave::LeftBehind().contains(m_restoring)) {
        m_autosave->SaveNow();
        RemoveSession(m_restoring.toStdString());
    }
}

void MainWindow::OfferToRestore() {
    const QStringList left = Autosave::LeftBehind();
    if (left.isEmpty())
        return;
    QMessageBox box(QMessageBox::Question, tr("Restore the last session?"),
                    tr("Varno did not end as it should the last time. Restore what was open then?"),
                    QMessageBox::Yes | QMessageBox::Discard, this);
    box.setObjectName("restoreBox");
    if (box.exec() == QMessageBox::Yes)
        Restore(left.front());
    else
        for (const QString &session : left)
            RemoveSession(session.toStdString());
}

void MainWindow::AskForSession() {
    QFileDialog dialog(this, tr("Open session"), m_settings.value("folder").toString(),
                       tr("Sessions (*.json)"));
    dialog.setObjectName("sessionDialog");
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setFileMode(QFileDialog::ExistingFile);
    if (dialog.exec() == QDialog::Accepted)
        Restore(dialog.selectedFiles().front());
}

void MainWindow::SaveSessionAs() {
    QFileDialog dialog(this, tr("Save session"), m_settings.value("folder").toString(),
                       tr("Sessions (*.json)"));
    dialog.setObjectName("saveSessionDialog");
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setDefaultSuffix("json");
    if (dialog.exec() != QDialog::Accepted)
        return;
    try {
        SaveSession(dialog.selectedFiles().front().toStdString(), m_document, *m_view, *m_place);
    } catch (const formats::FileError &error) {
        ShowError(this, tr("The session could not be written"), QString::fromStdString(error.what()));
    }
}

void MainWindow::EditSettings() {
    SettingsDialog(this).exec();
}

/// One dialog for all files that could not be read.
void MainWindow::ShowErrors() {
    if (m_errors.isEmpty())
        return;
    const QStringList errors = std::exchange(m_errors, {});
    ShowError(this, errors.size() == 1 ? tr("A file could not be read") : tr("Some files could not be read"),
              errors.join("\n\n"));
}

void MainWindow::Remember(const QString &file) {
    const QString path = QFileInfo(file).absoluteFilePath();
    QStringList files = m_settings.value("recentFiles").toStringList();
    files.removeAll(path);
    files.prepend(path);
    m_settings.setValue("recentFiles", QStringList(files.mid(0, maxRecentFiles)));
    UpdateRecentFiles();
}

void MainWindow::UpdateRecentFiles() {
    m_recent->clear();
    const QStringList files = m_settings.value("recentFiles").toStringList();
    for (const QString &file : files)
        m_recent->addAction(QDir::toNativeSeparators(file), this, [this, file] { Open({file}); });
    m_recent->setEnabled(!files.isEmpty());
}

void MainWindow::Save() {
    try {
        SaveAsAsked(this, m_document);
    } catch (const formats::FileError &error) {
        ShowError(this, tr("The file could not be written"), QString::fromStdString(error.what()));
    }
}

void MainWindow::SavePicture() {
    QFileDialog dialog(this, tr("Save picture"));
    dialog.setObjectName("pictureDialog");
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setNameFilter(tr("Pictures (*.png)"));
    dialog.setDefaultSuffix("png");
    if (dialog.exec() != QDialog::Accepted)
        return;
    const QString file = dialog.selectedFiles().front();
    if (!m_view->Picture().save(file))
        ShowError(this, tr("The picture could not be written"), tr("%1 cannot be written.").arg(file));
}

bool MainWindow::MayClose() {
    QStringList lost;
    for (const Compound *node : m_document.Unsaved())
        lost << NameOf(node);
    if (m_place->IsSearching())
        lost << tr("the search that is running");
    if (lost.isEmpty())
        return true;
    QMessageBox box(QMessageBox::Question, tr("Quit without saving?"),
                    tr("These would be lost:\n\n%1").arg(lost.join("\n")),
                    QMessageBox::Discard | QMessageBox::Cancel, this);
    box.setObjectName("unsavedBox");
    box.setDefaultButton(QMessageBox::Cancel);
    return box.exec() == QMessageBox::Discard;
}

void MainWindow::Start(Plugin &plugin) {
    try {
        plugin.Execute();
    } catch (const std::runtime_error &error) {
        ShowError(this, tr("The plug-in cannot be started"), QString::fromStdString(error.what()));
    }
}

/// What comes from a file is seen with all the rest; what was built or placed is looked at.
void MainWindow::ShowAdded(const std::vector<Compound *> &nodes) {
    std::vector<Compound *> built;
    for (Compound *node : nodes)
        if (m_document.FileOf(node).empty() && !Drawn(node).empty() && !dynamic_cast<Grid *>(node))
            built.push_back(node);
    if (built.empty())
        m_view->FitToView();
    else
        m_view->FitTo(built);
}

void MainWindow::ShowAbout() {
    QMessageBox box(
        QMessageBox::NoIcon, tr("About Varno"),
        tr("Varno %1\n\nShows density maps and models, and finds where models belong.\n\nQt %2, VTK %3\n"
           "BSD 3-Clause licence")
            .arg(MORVANEX_VERSION, qVersion(), MORVANEX_VTK_VERSION),
        QMessageBox::Ok, this);
    box.setObjectName("aboutBox");
    box.exec();
}

void MainWindow::FollowTheme() {
    m_view->SetDark(palette().color(QPalette::Window).lightnessF() < 0.5F);
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event) {
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent *event) {
    QStringList files;
    for (const QUrl &url : event->mimeData()->urls())
        if (url.isLocalFile())
            files << url.toLocalFile();
    Open(files);
    event->acceptProposedAction();
}

void MainWindow::closeEvent(QCloseEvent *event) {
    if (!MayClose()) {
        event->ignore();
        return;
    }
    m_reading.Cancel();
    // A fit that runs inside a plug-in's dialog ends before the windows do.
    for (const auto &plugin : m_plugins)
        plugin->Cleanup();
    m_autosave->Finish();
    m_settings.setValue("geometry", saveGeometry());
    m_settings.setValue("windows", saveState());
    event->accept();
    emit closed();
}

void MainWindow::changeEvent(QEvent *event) {
    if (event->type() == QEvent::PaletteChange)
        FollowTheme();
    QMainWindow::changeEvent(event);
}

} // namespace desktop
