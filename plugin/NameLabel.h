#pragma once

#include <QLabel>

/// A label for a name from the model, as plain text. A name that is wider than the label is painted with its
/// middle left out, and the tool tip shows it whole; `text()` is the name in any case. So a long name does
/// not widen a dialog.
class NameLabel : public QLabel {
public:
    using QLabel::QLabel;

    /// As wide as the name, at most as a short one.
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};
