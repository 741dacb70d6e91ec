#include "ResultsStorage.h"

#include "base/Memory.h"

#include "SolutionsList.h"
#include "solutions/ResultsFile.h"

#include <QBuffer>
#include <QFileDevice>
#include <QFileInfo>

namespace {

void Warn(const QString &file, const QString &problem) {
    qWarning("%s: %s", qUtf8Printable(file), qUtf8Printable(problem));
}

/// Opens a regular file, or a new one. A pipe or a device may wait for ever, or never end.
bool OpenRegular(QFile &file, QIODevice::OpenMode mode) {
    const QFileInfo info(file);
    if (info.exists() && !info.isFile())
        Warn(file.fileName(), "not a regular file");
    else if (!file.open(mode))
        Warn(file.fileName(), file.errorString());
    return file.isOpen();
}

void WarnOfSkipped(const QString &file, const std::vector<qint64> &lines) {
    if (!lines.empty())
        Warn(file, QString("skipped %1 lines with fewer than eight words, the first of them line %2")
                       .arg(lines.size())
                       .arg(lines.front()));
}

std::list<SolutionScore> RefuseForSize(const QString &file) {
    Warn(file, QString("loading it would need more than %1 of memory, three quarters of this machine's")
                   .arg(QString::fromStdString(base::GiB(base::MemoryLimit()))));
    return {};
}

} // namespace

std::list<SolutionScore> LoadResults(const QString &name) {
    QFile file(name);
    if (name.isNull() || !OpenRegular(file, QIODevice::ReadOnly))
        return {};
    // No more than was there at first: another program may still be writing.
    const qint64 size = file.size();
    const double memory = base::MemoryLimit() - double(size);
    if (memory < 0)
        return RefuseForSize(name);
    QByteArray bytes = file.read(size);
    QBuffer text(&bytes);
    text.open(QIODevice::ReadOnly);
    solutions::ResultsRead read = solutions::ReadResults(text, memory, bytesOfARow);
    if (!read.isWhole)
        return RefuseForSize(name);
    WarnOfSkipped(name, read.skippedLines);
    return std::move(read.solutions);
}

void SaveResults(const QString &name, const std::list<SolutionScore> &solutions) {
    QFile file(name);
    if (name.isNull() || !OpenRegular(file, QIODevice::WriteOnly))
        return;
    solutions::WriteResults(file, solutions);
    if (!file.flush())
        Warn(name, file.errorString());
}
