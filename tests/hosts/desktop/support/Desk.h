#pragma once

#include "Gui.h"
#include "TemporaryFolder.h"
#include "TestData.h"
#include "Wait.h"

#include "app/MainWindow.h"
#include "document/ModelTree.h"
#include "document/Nodes.h"

#include <QAbstractButton>
#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QTreeView>

#include <gtest/gtest.h>

/// The application's window, and a user in front of it.
class Desk : public testing::Test {
protected:
    Desk() {
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
    }

    static QString Example(const std::string &name) {
        return QString::fromStdString(SourceFolder() + "/examples/" + name);
    }

    /// Waits until files that are being read have come into the model.
    void WaitForFiles() {
        WaitUntil([this] { return !window.IsReading(); });
    }
    void Open(const QStringList &files) {
        window.Open(files);
        WaitForFiles();
    }

    /// Chooses an entry of a menu by its object name, as the mouse does: opens the menu, clicks the entry.
    void Choose(const char *name) {
        auto *action = window.findChild<QAction *>(name);
        ASSERT_TRUE(action) << name;
        ASSERT_TRUE(action->isEnabled()) << name;
        QMenu *menu = nullptr;
        for (QAction *entry : window.menuBar()->actions())
            if (entry->menu()->actions().contains(action))
                menu = entry->menu();
        ASSERT_TRUE(menu) << name;
        menu->popup(window.mapToGlobal(QPoint(20, 20)));
        const QRect place = menu->actionGeometry(action);
        QTest::mouseMove(menu, place.center());
        QTest::mouseClick(menu, Qt::LeftButton, {}, place.center());
        Settle();
    }

    QTreeView *Tree() { return window.findChild<QTreeView *>("modelTree"); }
    desktop::ModelTree *Rows() { return static_cast<desktop::ModelTree *>(Tree()->model()); }

    /// Clicks the row of a node.
    void ClickNode(const VARNO::Compound *node, Qt::KeyboardModifiers keys = {}) {
        const QModelIndex index = Rows()->IndexOf(node);
        ASSERT_TRUE(index.isValid());
        Tree()->scrollTo(index);
        QTest::mouseClick(Tree()->viewport(), Qt::LeftButton, keys, Tree()->visualRect(index).center());
        Settle();
    }

    VARNO::Compound *Top(const std::string &name) {
        for (VARNO::Compound *top : window.GetDocument().Tops())
            if (top->GetName() == name)
                return top;
        ADD_FAILURE() << "nothing is called " << name;
        return nullptr;
    }
    /// A chain of a file's first molecule.
    VARNO::Compound *ChainOf(const std::string &file, const std::string &identifier) {
        VARNO::Compound *top = Top(file);
        return top ? desktop::Below(top).front()->FindChild(identifier) : nullptr;
    }

    template <class Widget>
    Widget *Child(const char *name) {
        auto *widget = window.findChild<Widget *>(name);
        EXPECT_TRUE(widget) << name;
        return widget;
    }

    TemporaryFolder folder;
    desktop::MainWindow window;
};

/// Presses a button of the next message box, and keeps what it said.
class BoxAnswer {
public:
    explicit BoxAnswer(QMessageBox::StandardButton button)
        : m_meanwhile([this, button] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box || !box->isVisible())
                return false;
            name = box->objectName().toStdString();
            text = box->text().toStdString();
            Click(box->button(button));
            return true;
        }) {}

    std::string name, text;

private:
    Meanwhile m_meanwhile;
};
