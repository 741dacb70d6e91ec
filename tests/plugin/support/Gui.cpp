#include "Gui.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>
#include <QWindow>

#include <gtest/gtest.h>

namespace {

void ClickAt(QWidget *widget, const QPoint &position) {
    QWidget *window = widget->window();
    ASSERT_TRUE(widget->isVisible()) << widget->objectName().toStdString() << " is not there to be clicked";
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, widget->mapTo(window, position));
}

} // namespace

void Click(QWidget *widget) {
    ASSERT_TRUE(widget);
    // A check box reaches as far as its label, wider than which the widget may be.
    const QPoint centre = widget->rect().center();
    ClickAt(widget, qobject_cast<QCheckBox *>(widget) ? QPoint(8, centre.y()) : centre);
}

void ClickRow(QWidget *view, int column, const QString &text) {
    auto *tree = qobject_cast<QTreeWidget *>(view);
    ASSERT_TRUE(tree);
    const auto found = tree->findItems(text, Qt::MatchExactly | Qt::MatchCaseSensitive, column);
    ASSERT_FALSE(found.isEmpty()) << "no row " << text.toStdString();
    tree->scrollToItem(found.front());
    ClickAt(tree->viewport(), tree->visualItemRect(found.front()).center());
}

void Type(QWidget *field, const QString &text) {
    ASSERT_TRUE(field && field->isEnabled());
    QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
    if (text.isEmpty())
        QTest::keyClick(field, Qt::Key_Delete);
    QTest::keyClicks(field, text);
}

void Paste(QWidget *field, const QString &text) {
    ASSERT_TRUE(field);
    QApplication::clipboard()->setText(text);
    QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(field, Qt::Key_V, Qt::ControlModifier);
}

void PressKey(QWidget *widget, Qt::Key key) {
    ASSERT_TRUE(widget);
    QTest::keyClick(widget, key);
}

void CloseByFrame(QWidget *window) {
    ASSERT_TRUE(window && window->windowHandle());
    window->windowHandle()->close();
}

void SetWindowState(QWidget *window, Qt::WindowStates state) {
    ASSERT_TRUE(window && window->windowHandle());
    window->windowHandle()->setWindowStates(state);
    Settle();
}

void Settle() {
    QApplication::sendPostedEvents();
    QApplication::processEvents();
}

QWidget *FindWindow(const char *className, bool visible) {
    for (QWidget *window : QApplication::topLevelWidgets())
        if (window->inherits(className) && (!visible || window->isVisible()))
            return window;
    return nullptr;
}

QWidget *FindNamedWindow(const char *objectName) {
    for (QWidget *window : QApplication::topLevelWidgets())
        if (window->objectName() == objectName && window->isVisible())
            return window;
    return nullptr;
}

int CountWindows(const char *className) {
    int count = 0;
    for (const QWidget *window : QApplication::topLevelWidgets())
        count += window->inherits(className);
    return count;
}

FileDialogAnswer::FileDialogAnswer(const QString &path)
    : m_path(path)
    , m_meanwhile([this] { return Answer(); }) {}

bool FileDialogAnswer::Answer() {
    auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
    if (!dialog || !dialog->isVisible())
        return false;
    asked = true;
    name = dialog->objectName();
    title = dialog->windowTitle();
    directory = dialog->directory().path();
    filters = dialog->nameFilters();
    confirmsOverwrite = !dialog->testOption(QFileDialog::DontConfirmOverwrite);
    native = !dialog->testOption(QFileDialog::DontUseNativeDialog);
    modal = dialog->isModal();
    auto *buttons = Find<QDialogButtonBox>(dialog, "buttonBox");
    if (m_path.isNull()) {
        Click(buttons->button(QDialogButtonBox::Cancel));
        return true;
    }
    auto *edit = Find<QLineEdit>(dialog, "fileNameEdit");
    // A list of completions comes up when the folder has been read, at any time, and would take the click.
    edit->setCompleter(nullptr);
    Paste(edit, m_path);
    Click(buttons->buttons().front());
    return true;
}
