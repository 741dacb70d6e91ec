#include "solutions/FitLog.h"

#include <filesystem>

namespace solutions {

qint64 WholeFile::writeData(const char *data, qint64 size) {
    for (qint64 done = 0; done < size;) {
        const qint64 written = QFile::writeData(data + done, size - done);
        if (written < 0)
            return -1;
        done += written;
    }
    return size;
}

void FitLog::Open(const QString &file, bool logging) {
    // Opening a pipe that nobody reads would wait for ever.
    std::error_code error;
    if (file.isEmpty() || std::filesystem::is_fifo(file.toStdString(), error))
        return;
    m_file.setFileName(file);
    // The stream has a buffer of its own.
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return;
    m_stream.setDevice(&m_file);
    m_writing = logging;
}

bool FitLog::Flush() {
    if (!m_writing)
        return true;
    m_stream.flush();
    m_writing = m_stream.status() == QTextStream::Ok;
    return m_writing;
}

} // namespace solutions
