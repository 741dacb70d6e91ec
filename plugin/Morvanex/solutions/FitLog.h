#pragma once

#include <QFile>
#include <QTextStream>

namespace solutions {

/// A file that knows why it took only a part of what was written: the rest is offered once more, and refused
/// with the reason.
class WholeFile : public QFile {
protected:
    qint64 writeData(const char *data, qint64 size) override;
};

/// The log of accepted poses. Its file is emptied by every fit, whether anything is logged or not. A file
/// that cannot be opened is not reported: the lines are lost.
class FitLog {
public:
    /// Empties or creates the file; lines are kept only when `logging`. An empty name opens nothing.
    void Open(const QString &file, bool logging);

    /// Where poses are to write their lines; only when `IsWriting`.
    QTextStream &Stream() { return m_stream; }
    bool IsWriting() const { return m_writing; }
    /// Brings the lines so far to the file. False, once, when that failed; nothing is written from then on.
    bool Flush();
    QString ErrorText() const { return m_file.errorString(); }

private:
    WholeFile m_file;
    QTextStream m_stream;
    bool m_writing = false;
};

} // namespace solutions
