#include "Progress.h"
#include "SolutionsList.h"
#include "StartFit.h"

#include "DialogTest.h"
#include "TestData.h"

#include <QBoxLayout>
#include <QGridLayout>
#include <QMetaEnum>
#include <QTextStream>

namespace {

/// Everything about a dialog that a host, a test or a style sheet can hold on to, but for figures that depend
/// on fonts: the widgets with a name in the order of their parent's children, the layouts with their items,
/// and the order of the Tab key.
class Description {
public:
    static std::string Of(QWidget &dialog) {
        Description description;
        description.AddWidget(dialog, 0);
        description.AddTabOrder(dialog);
        return description.m_text.toStdString();
    }

private:
    void Line(int depth, const QStringList &words) {
        m_text += QString(qsizetype(2) * depth, ' ') + words.join(' ') + '\n';
    }

    static QString Policy(const QSizePolicy &policy) {
        const auto name = [](QSizePolicy::Policy value) {
            return QMetaEnum::fromType<QSizePolicy::Policy>().valueToKey(value);
        };
        return QString("%1/%2").arg(name(policy.horizontalPolicy()), name(policy.verticalPolicy()));
    }

    void AddWidget(QWidget &widget, int depth) {
        QStringList words{widget.metaObject()->className(), widget.objectName(), Policy(widget.sizePolicy())};
        for (const char *property : {"windowTitle", "text", "toolTip"})
            if (const QString text = widget.property(property).toString(); !text.isEmpty())
                words << QString("%1=\"%2\"").arg(property, text);
        for (const char *property : {"enabled", "autoDefault", "editable"})
            if (const QVariant value = widget.property(property); value.isValid())
                words << QString("%1=%2").arg(property, value.toString());
        Line(depth, words);
        for (QObject *child : widget.children())
            if (auto *part = qobject_cast<QWidget *>(child); part && IsNamed(*part))
                AddWidget(*part, depth + 1);
        if (widget.layout())
            AddLayout(*widget.layout(), depth + 1);
    }

    /// The toolkit's parts of a widget have no name, or one of the toolkit's.
    static bool IsNamed(const QWidget &widget) {
        return !widget.objectName().isEmpty() && !widget.objectName().startsWith("qt_");
    }

    void AddLayout(QLayout &layout, int depth) {
        if (layout.objectName().isEmpty())
            return;
        const QMargins margins = layout.contentsMargins();
        Line(depth, {layout.metaObject()->className(), layout.objectName(),
                     QString("margins=%1,%2,%3,%4")
                         .arg(margins.left())
                         .arg(margins.top())
                         .arg(margins.right())
                         .arg(margins.bottom()),
                     QString("spacing=%1").arg(layout.spacing())});
        for (int i = 0; i < layout.count(); ++i)
            AddItem(layout, i, depth + 1);
    }

    void AddItem(QLayout &layout, int i, int depth) {
        QLayoutItem *item = layout.itemAt(i);
        if (item->layout())
            AddLayout(*item->layout(), depth);
        else if (item->widget())
            Line(depth, {Place(layout, i), item->widget()->objectName()});
        else
            Line(depth,
                 {Place(layout, i), "spacer", QString::number(item->sizeHint().width()),
                  QString::number(item->sizeHint().height()), Policy(item->spacerItem()->sizePolicy())});
    }

    static QString Place(const QLayout &layout, int i) {
        if (const auto *box = qobject_cast<const QBoxLayout *>(&layout))
            return QString("stretch=%1").arg(box->stretch(i));
        int row = 0, column = 0, rows = 0, columns = 0;
        dynamic_cast<const QGridLayout &>(layout).getItemPosition(i, &row, &column, &rows, &columns);
        return QString("row=%1 column=%2 span=%3x%4").arg(row).arg(column).arg(rows).arg(columns);
    }

    void AddTabOrder(const QWidget &dialog) {
        QStringList names;
        for (const QWidget *next = dialog.nextInFocusChain(); next != &dialog;
             next = next->nextInFocusChain())
            if (next->focusPolicy() & Qt::TabFocus && IsNamed(*next))
                names << next->objectName();
        Line(0, {"Tab:", names.join(' ')});
    }

    QString m_text;
};

} // namespace

class Trees : public DialogTest {
protected:
    static void ExpectTree(QWidget &dialog, const std::string &name) {
        EXPECT_EQ(Description::Of(dialog),
                  ReadFile(SourceFolder() + "/tests/plugin/dialogs/trees/" + name + ".txt"));
    }
};

TEST_F(Trees, TheSetUpHasEveryWidgetNameOrderAndLayoutAsGiven) {
    StartFit dialog;
    ExpectTree(dialog, "StartFit");
}

TEST_F(Trees, TheProgressDialogHasEveryWidgetNameOrderAndLayoutAsGiven) {
    Progress dialog;
    ExpectTree(dialog, "Progress");
}

TEST_F(Trees, TheResultsHaveEveryWidgetNameOrderAndLayoutAsGiven) {
    SolutionsList dialog;
    ExpectTree(dialog, "SolutionsList");
}
