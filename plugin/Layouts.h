#pragma once

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>

/// How every dialog of the plug-in makes its parts: each has an object name, by which hosts and tests find
/// it.

template <class Widget>
Widget *Named(const char *name, QWidget *parent) {
    auto *widget = new Widget(parent);
    widget->setObjectName(name);
    return widget;
}

/// A line of text. It keeps its height, so that rows of a large dialog stay together.
inline QLabel *NamedLabel(const char *name, QWidget *parent) {
    auto *label = Named<QLabel>(name, parent);
    label->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    return label;
}

/// Enter in a field must not press a button, as it would press an automatic default one.
inline QPushButton *NamedButton(const char *name, QWidget *parent) {
    auto *button = Named<QPushButton>(name, parent);
    button->setAutoDefault(false);
    return button;
}

template <class Layout>
Layout *NamedLayout(const char *name, int margin = 0) {
    auto *layout = new Layout;
    layout->setObjectName(name);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(6);
    return layout;
}

/// Takes what room there is beside it.
inline QSpacerItem *HorizontalSpacer(int width) {
    return new QSpacerItem(width, 20, QSizePolicy::Expanding, QSizePolicy::Minimum);
}
