#include "solutions/FitLog.h"

#include <filesystem>

namespace solutions {

void FitLog::Open(const QString &file, bool logging) {
    // Opening a pipe that nobody reads would wait for ever.
    std::error_code error;
    if (file.isEmpty() || std::filesystem::is_fifo(file.toStdString(), error))
        return;
    m_file.setFileName(file);
    if (!m_file.open(QIODevice::WriteOnly))
        return;
    m_stream.setDevice(&m_file);
    m_writing = logging;
}

bool FitLog::Flush() {
    if (!m_writing)
        return true;
    m_stream.flush();
    m_writing = m_stream.status() == QTextStream::Ok && m_file.flush();
    return m_writing;
}

} // namespace solutions
