#pragma once

#include "Compound.h"
#include "Grid.h"
#include "formats/maps/MapVoxels.h"

#include <QFutureWatcher>
#include <QObject>
#include <QStringList>
#include <QThreadPool>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace desktop {

/// What came of reading one file: a structure, a map, or the reason why neither.
struct FileContent {
    std::string file;
    std::unique_ptr<VARNO::Clump> structure;
    std::unique_ptr<VARNO::Grid> map;
    formats::MapStatistics statistics{}; ///< of the map
    std::vector<std::string> warnings;   ///< what was read differently, one sentence each
    std::string error;                   ///< names file, place and value; empty where the file was read
};

/// Reads a structure or a map, recognised by its content, without touching the model. `tell` hears the share
/// of the file that was read; what it throws stops the reading and passes through.
FileContent ReadAnyFile(const std::string &file, const std::function<void(double)> &tell);

/// Reads files one after the other on a thread of its own.
class FileReading : public QObject {
    Q_OBJECT

public:
    FileReading();
    /// Stops what is being read, and waits for that.
    ~FileReading() override;

    /// Adds files to those that wait.
    void Read(const QStringList &files);
    /// Stops the file that is being read and forgets those that wait.
    void Cancel();
    bool IsReading() const { return !m_current.isEmpty(); }

signals:
    void started(const QString &file);
    /// From 0 to 1000, of the file that is being read.
    void progressed(int permille);
    void read(const std::shared_ptr<desktop::FileContent> &file);
    /// All files were read, or reading was stopped.
    void finished();

private:
    void Next();
    void Take();

    QStringList m_waiting;
    QString m_current; ///< empty where nothing is read
    /// Its own: the toolkit paints with the shared one's threads, and waits for them.
    QThreadPool m_pool;
    QFutureWatcher<std::shared_ptr<FileContent>> m_watcher;
};

} // namespace desktop
