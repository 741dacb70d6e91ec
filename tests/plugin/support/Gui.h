#pragma once

#include <QFileDialog>
#include <QTimer>
#include <QWidget>

class QComboBox;

/// A user's hands and eyes: events that take the way of the window system's, widgets found by object name.

/// Presses and releases the left button in the middle of the widget, through its window.
void Click(QWidget *widget);
/// Clicks the first item of a view whose text in that column is `text`.
void ClickRow(QWidget *view, int column, const QString &text);
/// Replaces the text of a field by typing.
void Type(QWidget *field, const QString &text);
/// Replaces the text of a field from the clipboard. Typed letter by letter, a path leaves the folders on its
/// way selected in a file dialog.
void Paste(QWidget *field, const QString &text);
/// Presses and releases a key in the widget.
void PressKey(QWidget *widget, Qt::Key key);
/// Closes a window as the button in its frame does.
void CloseByFrame(QWidget *window);
/// Minimises, maximises or restores a window as the buttons in its frame do.
void SetWindowState(QWidget *window, Qt::WindowStates state);
/// Lets the event loop do what is waiting.
void Settle();

/// The first top-level window of that class; null when there is none.
QWidget *FindWindow(const char *className, bool visible = true);
/// The first visible top-level window of that object name; null when there is none.
QWidget *FindNamedWindow(const char *objectName);
/// How many top-level windows of that class exist, visible or not.
int CountWindows(const char *className);

template <class Widget>
Widget *Find(const QWidget *window, const char *name) {
    return window ? window->findChild<Widget *>(name) : nullptr;
}

/// Calls `action` once in each round of whatever event loop runs, until it answers true or the object ends.
class Meanwhile {
public:
    template <class Action>
    explicit Meanwhile(Action action) {
        QObject::connect(&m_timer, &QTimer::timeout, [this, action] {
            // An action that clicks lets events be processed, among them this timer's.
            if (m_acting || m_done)
                return;
            m_acting = true;
            m_done = action();
            m_acting = false;
        });
        m_timer.start(0);
    }
    bool Done() const { return m_done; }

private:
    QTimer m_timer;
    bool m_acting = false, m_done = false;
};

/// Answers the next file dialog by typing a path and Enter, or by clicking "Cancel" for a null path, and
/// keeps what was seen of it.
class FileDialogAnswer {
public:
    explicit FileDialogAnswer(const QString &path);

    bool asked = false;
    QString name, title, directory;
    QStringList filters;
    bool confirmsOverwrite = false, native = false, modal = false;

private:
    bool Answer();

    QString m_path;
    Meanwhile m_meanwhile;
};
