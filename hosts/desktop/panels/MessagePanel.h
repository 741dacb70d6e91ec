#pragma once

#include <QWidget>

class QPlainTextEdit;

namespace desktop {

/// What the application and the plug-ins say on the toolkit's debug and warning channels, with time and
/// level.
class MessagePanel : public QWidget {
    Q_OBJECT

public:
    MessagePanel();
    /// Hands the channels back.
    ~MessagePanel() override;

    /// Adds a line; may be called on any thread.
    void Add(QtMsgType level, const QString &text);

signals:
    /// A warning or worse has come.
    void warned(const QString &text);
    /// A message of that QtMsgType, on the thread that it came on.
    void said(int level, const QString &text);

private:
    void Append(int type, const QString &text);

    QPlainTextEdit *m_text;
};

} // namespace desktop
