#include "document/FileReading.h"

#include "formats/files/FileError.h"
#include "formats/files/ReadBytes.h"
#include "formats/maps/MapFile.h"
#include "formats/structures/StructureFile.h"

#include <QPromise>
#include <QtConcurrentRun>

namespace desktop {

namespace {

/// Thrown through a reader whose result nobody waits for any more.
struct Stopped {};

constexpr int wholeFile = 1000;

void ReadInThread(QPromise<std::shared_ptr<FileContent>> &promise, const std::string &file) {
    promise.setProgressRange(0, wholeFile);
    try {
        promise.addResult(std::make_shared<FileContent>(ReadAnyFile(file, [&](double share) {
            if (promise.isCanceled())
                throw Stopped();
            promise.setProgressValue(int(wholeFile * share));
        })));
    } catch (const Stopped &) {
        return; // a cancelled future has no result
    }
}

void ReadContent(FileContent &result, const std::function<void(double)> &tell) {
    // A pipe would make the thread wait for ever.
    formats::CheckIsRegular(result.file);
    formats::ByteSource source(result.file);
    if (const auto size = source.StoredSize())
        source.SetWatcher([&tell, all = double(*size)](std::uint64_t bytes) { tell(double(bytes) / all); });
    if (formats::IsMap(source)) {
        formats::MapReport report;
        result.map = formats::ReadFreeMap(source, &report);
        result.statistics = {report.minimum, report.maximum, report.mean, report.deviation};
        result.warnings = std::move(report.warnings);
    } else {
        formats::StructureReport report;
        result.structure = formats::ReadDetachedStructure(source, &report);
        result.warnings = std::move(report.warnings);
    }
}

} // namespace

FileContent ReadAnyFile(const std::string &file, const std::function<void(double)> &tell) {
    FileContent result;
    result.file = file;
    try {
        ReadContent(result, tell);
    } catch (const formats::FileError &error) {
        result.error = error.what();
    }
    return result;
}

FileReading::FileReading() {
    connect(&m_watcher, &QFutureWatcherBase::progressValueChanged, this, &FileReading::progressed);
    connect(&m_watcher, &QFutureWatcherBase::finished, this, &FileReading::Take);
}

FileReading::~FileReading() {
    m_watcher.disconnect(this);
    m_watcher.cancel();
    m_watcher.waitForFinished();
}

void FileReading::Read(const QStringList &files) {
    m_waiting += files;
    if (!IsReading())
        Next();
}

void FileReading::Cancel() {
    m_waiting.clear();
    m_watcher.cancel();
}

void FileReading::Next() {
    m_current = m_waiting.isEmpty() ? QString() : m_waiting.takeFirst();
    if (m_current.isEmpty()) {
        emit finished();
        return;
    }
    emit started(m_current);
    m_watcher.setFuture(QtConcurrent::run(&m_pool, ReadInThread, m_current.toStdString()));
}

void FileReading::Take() {
    const QFuture<std::shared_ptr<FileContent>> future = m_watcher.future();
    if (!future.isCanceled() && future.resultCount() > 0)
        emit read(future.result());
    Next();
}

} // namespace desktop
