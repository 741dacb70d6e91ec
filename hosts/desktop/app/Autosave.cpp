#include "app/Autosave.h"

#include "app/Session.h"

#include "formats/files/FileError.h"

#include <QCoreApplication>
#include <QDir>
#include <QRegularExpression>
#include <QStandardPaths>

#include <csignal>

namespace desktop {

namespace {

QString Folder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/varno";
}

bool IsAlive(qint64 process) {
    return kill(pid_t(process), 0) == 0 || errno != ESRCH;
}

} // namespace

Autosave::Autosave(const Document &document, const SceneView &view, const PlacePanel &place, int milliseconds)
    : m_document(document)
    , m_view(view)
    , m_place(place)
    , m_file(Folder().toStdString() + "/autosave-" + std::to_string(QCoreApplication::applicationPid()) +
             ".json") {
    const auto note = [this] { m_hasChanged = true; };
    connect(&document, &Document::added, this, note);
    connect(&document, &Document::removed, this, note);
    connect(&document, &Document::shownChanged, this, note);
    connect(&document, &Document::lookChanged, this, note);
    connect(&place, &PlacePanel::listed, this, note);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        if (m_hasChanged)
            SaveNow();
    });
    m_timer.start(milliseconds);
}

void Autosave::SaveNow() {
    m_hasChanged = false;
    QDir().mkpath(Folder());
    try {
        SaveSession(m_file, m_document, m_view, m_place);
    } catch (const formats::FileError &error) {
        qWarning("The session is not saved: %s", error.what());
    }
}

void Autosave::Finish() {
    m_timer.stop();
    RemoveSession(m_file);
}

QStringList Autosave::LeftBehind() {
    static const QRegularExpression name("^autosave-(\\d+)\\.json$");
    QStringList left;
    for (const QFileInfo &file : QDir(Folder()).entryInfoList({"autosave-*.json"}, QDir::Files, QDir::Time)) {
        const QRegularExpressionMatch match = name.match(file.fileName());
        if (match.hasMatch() && !IsAlive(match.captured(1).toLongLong()))
            left << file.absoluteFilePath();
    }
    return left;
}

} // namespace desktop
